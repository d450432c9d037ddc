#include <set>
#include <stdexcept>

#include "fe_db/compilation_data.h"
#include "index_changes.h"
#include "merge_input.h"
#include "read_only_file.h"
#include "subcommands.h"

namespace fe_db_tools {
namespace {

using orvalesca::databases_merger::CompilationData;
using orvalesca::databases_merger::CompilationDatabase;

/// The texts of the file's own indexes: an index of a known name may still be a different one.
std::set<std::string> indexTexts(const std::string& path, int waitSeconds) {
  const ReadOnlyFile file(path, waitSeconds);
  const Statement texts =
      file.prepare("SELECT sql FROM sqlite_schema WHERE type='index' AND sql IS NOT NULL");
  std::set<std::string> known;
  while (file.step(texts)) {
    known.emplace(reinterpret_cast<const char*>(sqlite3_column_text(texts.get(), 0)));
  }
  return known;
}

}  // namespace

int makeIndexes(const IndexOptions& options) {
  checkWritable(options.file, options.waitSeconds);
  const std::set<std::string> known = indexTexts(options.file, options.waitSeconds);
  CompilationData data(options.file, "");
  CompilationDatabase& db = data.getCompDb();
  db.setBusyTimeout(busyTimeoutOf(options.waitSeconds));
  if (!db.quick_connect(/*readOnly=*/false) || !db.beginTransaction()) {
    throw std::runtime_error(options.file +
                             ": cannot be locked for writing; check that it is writable and that "
                             "no other program is writing it, or increase --wait");
  }
  if (options.extensions) addExtensions(db);
  options.drop ? dropSearchIndexes(db) : makeSearchIndexes(db, known);
  if (!db.lastFailure().reason.empty() || !db.commitTransaction()) {
    throw std::runtime_error(options.file + ": the file is unchanged: " + failureOf(db));
  }
  return kDone;
}

}  // namespace fe_db_tools
