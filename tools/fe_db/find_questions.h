#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "finding.h"
#include "read_only_file.h"

namespace fe_db_tools {

/// What narrows an answer: everything that is given has to be met.
struct FindFilter {
  std::vector<std::string> words;   ///< kinds of what nothing uses; none: all
  std::optional<std::string> name;  ///< the identifier or, of a function, its name in the source
  std::optional<std::size_t> minLength;
  std::optional<int> refCount;
  std::optional<std::uint32_t> linkage;
  bool defined = false;
  std::optional<std::string> fileGlob;
};

/// One search, and what it has found so far: in no order, each element once.
struct Search {
  const FindFilter& filter;
  dm::CompilationData& data;  ///< connected to the file
  const ReadOnlyFile& file;
  std::vector<Finding> findings = {};
  std::unordered_set<const void*> found = {};
  unsigned long passedOver = 0;  ///< ids that the file lists and has no row of
  std::unordered_map<long long, dm::CallPoint> calls = {};        ///< by their row ids
  std::map<std::string, Statement, std::less<>> statements = {};  ///< by their texts
};

struct Question {
  std::string_view text;
  std::string_view words;    ///< what may follow it; a NAME has to
  std::string_view options;  ///< which it takes, beside those of all questions
  void (*ask)(Search&);
};
std::span<const Question> findQuestions();

}  // namespace fe_db_tools
