#include "merge_input.h"

#include <algorithm>
#include <stdexcept>

#include "read_only_file.h"

namespace fe_db_tools {

using orvalesca::databases_merger::CompilationDatabase;
using orvalesca::databases_merger::CompilationDataMerger;

void checkMergeInput(const std::string& path, int waitSeconds) {
  const ReadOnlyFile file(path, waitSeconds);
  if (!file.has(tableOf(TableId::type))) {
    throw std::runtime_error(path + ": it is a preprocessing database; give compilation databases");
  }
}

CompilationDatabase& openMergeInput(CompilationDataMerger& merger, const std::string& path,
                                    int waitSeconds) {
  CompilationDatabase& db = merger.openDB();
  if (!db.isConnected()) throw std::runtime_error(path + ": cannot be opened");
  db.setBusyTimeout(busyTimeoutOf(waitSeconds));
  return db;
}

void loadMergeInput(CompilationDataMerger& merger, const CompilationDatabase& db,
                    const std::string& path) {
  merger.loadDataFromDB();
  if (db.hasFailed()) {
    throw std::runtime_error(path + ": cannot be read to its end: " + failureOf(db) +
                             "; make the file anew or take a copy");
  }
}

std::string failureOf(const CompilationDatabase& db) {
  const auto& [table, reason] = db.lastFailure();
  return table.empty() ? reason : "table " + table + ": " + reason;
}

}  // namespace fe_db_tools
