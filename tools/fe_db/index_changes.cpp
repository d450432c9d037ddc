#include "index_changes.h"

#include "compilation_schema.h"
#include "output.h"
#include "read_only_file.h"
#include "search_indexes.h"
#include "views.h"

namespace fe_db_tools {

using orvalesca::databases_merger::CompilationDatabase;

namespace {

bool drop(CompilationDatabase& db, const SearchIndex& index) {
  return db.execute("DROP INDEX IF EXISTS " + std::string(index.name));
}

/// In the text of each view, by which a later version of the program knows it.
constexpr char kMark[] = "/* made by fe_db */ ";

std::vector<View> viewsOf(const CompilationDatabase& db) {
  std::set<std::string, std::less<>> tables;
  for (const Table& table : kTables) {
    if (db.hasTable(table.name)) tables.emplace(table.name);
  }
  return viewsFor(tables, DamagedRows::leftOut);
}

std::set<std::string> textsOf(const std::string& path, int waitSeconds, const std::string& sql) {
  const ReadOnlyFile file(path, waitSeconds);
  const Statement rows = file.prepare(sql);
  std::set<std::string> texts;
  while (file.step(rows)) {
    texts.emplace(reinterpret_cast<const char*>(sqlite3_column_text(rows.get(), 0)));
  }
  return texts;
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

std::set<std::string> indexTexts(const std::string& path, int waitSeconds) {
  return textsOf(path, waitSeconds,
                 "SELECT sql FROM sqlite_schema WHERE type='index' AND sql IS NOT NULL");
}

std::set<std::string> foreignViewNames(const std::string& path, int waitSeconds) {
  return textsOf(path, waitSeconds,
                 "SELECT lower(name) FROM sqlite_schema WHERE name LIKE 'fe~_%' ESCAPE '~' AND NOT"
                 " (type='view' AND instr(sql, '" +
                     std::string(kMark) + "'))");
}

void dropViews(CompilationDatabase& db, const std::set<std::string>& foreign) {
  for (const View& view : viewsOf(db)) {
    if (foreign.count(view.name) == 0 && !db.execute("DROP VIEW IF EXISTS " + view.name)) return;
  }
}

void makeViews(CompilationDatabase& db, const std::set<std::string>& foreign) {
  if (!db.lastFailure().reason.empty()) return;
  for (const View& view : viewsOf(db)) {
    if (foreign.count(view.name) != 0) {
      report("the view " + view.name + " is not made: the file has something else of this name");
    } else if (!db.execute("DROP VIEW IF EXISTS " + view.name) ||
               !db.execute("CREATE VIEW " + view.name + " AS " + kMark + view.select)) {
      return;
    }
  }
}

void addExtensions(CompilationDatabase& db) {
  for (const ExtensionTable& table : extensionTables()) {
    if (!db.hasTable(table.name) && !db.execute(table.sql)) return;
  }
}

}  // namespace fe_db_tools
