#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "facts_file.h"
#include "named_entities.h"
#include "subcommands.h"

namespace fe_db_tools {

/// What a question is about.
enum class Argument { none, name, file, fileOrNone, kinds };

/// A question whose names are resolved.
struct Request {
  const FactsFile& file;
  const FindFilter& filter;
  std::vector<NamedEntity> entities;  ///< what NAME or --name means
  std::vector<long long> files;       ///< what FILE means
  std::vector<long long> inFiles;     ///< what --file means
};

struct Question {
  std::string_view text;
  Argument argument;
  std::string_view kinds;                             ///< of the argument: the possible ones
  std::string_view options;                           ///< in addition to those of all questions
  orvalesca::databases_merger::IdentifierKind names;  ///< what NAME or --name can mean
  std::string_view table;                             ///< the extension table that it asks, if any
  /// The SELECT with the columns of an answer; see answers.h.
  std::string (*select)(const Request&);
};

std::span<const Question> findQuestions();

}  // namespace fe_db_tools
