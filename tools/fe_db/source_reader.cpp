#include "source_reader.h"

#include <new>
#include <stdexcept>

#include "fe_db/compilation_database.h"
#include "merge_input.h"

namespace fe_db_tools {
namespace {

using orvalesca::databases_merger::CompilationDatabase;
using orvalesca::databases_merger::CompilationDataMerger;

Source readSource(const std::string& path, int waitSeconds) {
  Source source;
  try {
    checkMergeInput(path, waitSeconds);
    auto merger = std::make_unique<CompilationDataMerger>(path);
    CompilationDatabase& db = openMergeInput(*merger, path, waitSeconds);
    if (!db.beginReading()) throw std::runtime_error(path + ": cannot be read");
    loadMergeInput(*merger, db, path);
    source.facts = db.countRowsListed();
    source.isComplete = db.leftOutRows().empty() && db.lostReferences().empty();
    merger->closeDB();
    source.merger = std::move(merger);
  } catch (const std::runtime_error& error) {
    source.failure = error.what();
  } catch (const std::bad_alloc&) {
    source.failure = path + ": not enough memory to read it; try fewer --jobs";
  }
  return source;
}

}  // namespace

std::optional<Source> SourceReader::next() {
  // Without a thread to be had, what is asked for is read all the same.
  const auto launch =
      jobs_ > 1 ? std::launch::async | std::launch::deferred : std::launch::deferred;
  while (started_ < paths_.size() && ahead_.size() < jobs_) {
    ahead_.push_back(std::async(launch, readSource, paths_[started_++], waitSeconds_));
  }
  if (ahead_.empty()) return std::nullopt;
  std::future<Source> source = std::move(ahead_.front());
  ahead_.pop_front();
  return source.get();
}

}  // namespace fe_db_tools
