#pragma once

#include <deque>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fe_db/compilation_data_merger.h"

namespace fe_db_tools {

/// A file to be merged, read completely; or why it could not be.
struct Source {
  std::string failure;  ///< for the user, with the path; empty when every row was read
  std::unique_ptr<orvalesca::databases_merger::CompilationDataMerger> merger = nullptr;
  unsigned long long facts = 0;
  bool isComplete = true;  ///< no row and no reference was skipped
};

/// Reads sources in their order, as many ahead of the one asked for as there are jobs, each in a
/// thread of its own. One job: no thread, each is read when it is asked for.
class SourceReader {
 public:
  SourceReader(std::vector<std::string> paths, std::size_t jobs, int waitSeconds)
      : paths(std::move(paths)), jobs(jobs), waitSeconds(waitSeconds) {}

  /// Nothing after the last.
  std::optional<Source> next();

 private:
  std::vector<std::string> paths;
  std::size_t jobs;
  int waitSeconds;
  std::size_t started = 0;
  std::deque<std::future<Source>> ahead;
};

}  // namespace fe_db_tools
