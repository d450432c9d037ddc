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
  // If no thread can be started, the source is read when it is needed.
  const auto launch = jobs > 1 ? std::launch::async | std::launch::deferred : std::launch::deferred;
  while (started < paths.size() && ahead.size() < jobs) {
    ahead.push_back(std::async(launch, readSource, paths[started++], waitSeconds));
  }
  if (ahead.empty()) return std::nullopt;
  std::future<Source> source = std::move(ahead.front());
  ahead.pop_front();
  return source.get();
}

}  // namespace fe_db_tools
