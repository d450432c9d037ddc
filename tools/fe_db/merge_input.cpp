#include "merge_input.h"

#include <algorithm>
#include <stdexcept>

#include "output.h"
#include "read_only_file.h"

namespace fe_db_tools {

using orvalesca::databases_merger::CompilationDatabase;
using orvalesca::databases_merger::CompilationDataMerger;

namespace {

ReadOnlyFile openCompilation(const std::string& path, int waitSeconds) {
  ReadOnlyFile file(path, waitSeconds);
  if (!file.isCompilationDatabase()) {
    throw std::runtime_error(
        path + ": it is a preprocessing database; a compilation database is required");
  }
  return file;
}

}  // namespace

void checkMergeInput(const std::string& path, int waitSeconds) {
  openCompilation(path, waitSeconds);
}

void checkWritable(const std::string& path, int waitSeconds) {
  openCompilation(path, waitSeconds).requireWritable();
}

void checkMergeTarget(const std::string& path, int waitSeconds) {
  const ReadOnlyFile file = openCompilation(path, waitSeconds);
  file.requireWritable();
  if (const auto triggers =
          file.number("SELECT count(*) FROM sqlite_schema WHERE type='trigger'")) {
    report(path + ": triggers do not run in a merge: " + std::to_string(triggers) +
           "; rebuild what they maintain, a full-text index for instance");
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
                             "; create the file again or restore a copy");
  }
}

std::string failureOf(const CompilationDatabase& db) {
  const auto& [table, reason] = db.lastFailure();
  return table.empty() ? reason : "table " + table + ": " + reason;
}

}  // namespace fe_db_tools
