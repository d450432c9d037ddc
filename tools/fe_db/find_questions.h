#pragma once

#include <map>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "finding.h"
#include "read_only_file.h"
#include "subcommands.h"

namespace fe_db_tools {

/// One search and its results so far: in no order, each element once.
struct Search {
  const FindFilter& filter;
  dm::CompilationData& data;  ///< connected to the file
  const ReadOnlyFile& file;
  std::vector<Finding> findings = {};
  std::unordered_set<const void*> found = {};
  unsigned long skipped = 0;  ///< ids that the file lists without having their rows
  std::unordered_map<long long, dm::CallPoint> calls = {};        ///< by their row ids
  std::map<std::string, Statement, std::less<>> statements = {};  ///< by their texts
};

struct Question {
  std::string_view text;
  std::string_view words;    ///< its possible arguments; a NAME is required
  std::string_view options;  ///< in addition to those of all questions
  void (*ask)(Search&);
};
std::span<const Question> findQuestions();

}  // namespace fe_db_tools
