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
  const std::set<std::string> foreign = foreignViewNames(options.file, options.waitSeconds);
  if (options.drop) {
    dropSearchIndexes(db);
    dropViews(db, foreign);
  } else {
    makeSearchIndexes(db, known);
    makeViews(db, foreign);
  }
  if (!db.lastFailure().reason.empty() || !db.commitTransaction()) {
    throw std::runtime_error(options.file + ": the file is unchanged: " + failureOf(db));
  }
  return kDone;
}

}  // namespace fe_db_tools
