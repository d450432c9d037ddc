#include <memory>
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

struct IndexOptions {
  std::string file;
  bool drop = false;
  bool extensions = false;
  int waitSeconds = kDefaultWaitSeconds;
};

/// The texts of the file's own indexes: one by a known name may be another index all the same.
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

}  // namespace

void addIndex(CLI::App& program, Action& action) {
  auto options = std::make_shared<IndexOptions>();
  CLI::App* command = program.add_subcommand(
      "index", "Create the search indexes of a compilation database if they are missing");
  command->footer(
      "With the indexes, `fe_db find` and the searches of the library take as long in a large "
      "file\n"
      "as in a small one. They do not change any answer. They slow down saving.");
  command->add_option("FILE", options->file, "The database file")->required();
  command->add_flag("--drop", options->drop, "Drop the indexes instead");
  command->add_flag("--extensions", options->extensions,
                    "Also add the empty tables of the cross-reference that the file lacks");
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, &action] {
    action = namingFiles(options->file, [options] { return makeIndexes(*options); });
  });
}

}  // namespace fe_db_tools
