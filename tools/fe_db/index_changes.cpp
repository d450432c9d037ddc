#include "index_changes.h"

#include "compilation_schema.h"
#include "search_indexes.h"

namespace fe_db_tools {

using orvalesca::databases_merger::CompilationDatabase;

namespace {

bool drop(CompilationDatabase& db, const SearchIndex& index) {
  return db.execute("DROP INDEX IF EXISTS " + std::string(index.name));
}

}  // namespace

void dropSearchIndexes(CompilationDatabase& db) {
  everySearchIndex(
      [&](const SearchIndex& index) { return !db.hasTable(index.table) || drop(db, index); });
}

void makeSearchIndexes(CompilationDatabase& db, const std::set<std::string>& known) {
  const bool isDone = everySearchIndex([&](const SearchIndex& index) {
    if (!db.hasTable(index.table)) return true;
    // A different index may have the name.
    return known.count(index.sql) != 0 || (drop(db, index) && db.execute(index.sql));
  });
  // What fails fails the transaction.
  if (isDone) (void)db.execute(kLengthIndexHint);
}

void addExtensions(CompilationDatabase& db) {
  for (const ExtensionTable& table : extensionTables()) {
    if (!db.hasTable(table.name) && !db.execute(table.sql)) return;
  }
}

}  // namespace fe_db_tools
