#include "compilation_schema.h"

#include <sqlite3.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

#include "fe_db/schema.h"
#include "new_file.h"
#include "search_indexes.h"
#include "tables.h"

namespace fe_db_tools {
namespace {

namespace schema = orvalesca::databases_merger::schema;

/// Of a table that only a compilation database has. Its id goes without AUTOINCREMENT, which costs
/// a quarter of the writing time: no row of these is named by an id from outside the file.
std::string creationOf(const Table& table) {
  std::string columns;
  const auto add = [&columns](std::string_view name, std::string_view type) {
    columns.append(columns.empty() ? "" : ", ").append(name).append(" ").append(type);
  };
  if (table.rowId != "rowid") add(table.rowId, "INTEGER PRIMARY KEY");
  for (const Column& column : table.columns) add(column.name, column.declaredType);
  return "CREATE TABLE " + std::string(table.name) + " (" + columns + ")";
}

/// An empty database is built in memory and written out as one piece: nothing but complete files
/// ever appears in the file system, and no journal beside them.
class SchemaBuilder {
 public:
  SchemaBuilder() {
    sqlite3* opened = nullptr;
    const int rc = sqlite3_open(":memory:", &opened);
    connection.reset(opened);
    if (rc != SQLITE_OK) fail();
    run(schema::kPageSize);  // only a database without a page takes it
    run("BEGIN");
    for (const char* table : schema::kSharedTables) run(table);
  }

  void run(const std::string& sql) {
    if (sqlite3_exec(connection.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail();
  }

  /// The bytes of the file.
  std::string commit() {
    run("COMMIT");
    sqlite3_int64 size = 0;
    const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> image(
        sqlite3_serialize(connection.get(), "main", &size, 0), sqlite3_free);
    if (!image) throw std::bad_alloc();
    return {reinterpret_cast<const char*>(image.get()), static_cast<std::size_t>(size)};
  }

 private:
  [[noreturn]] void fail() const {
    throw std::runtime_error(std::string("cannot build an empty database: ") +
                             sqlite3_errmsg(connection.get()));
  }

  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> connection{nullptr, sqlite3_close};
};

}  // namespace

std::string emptyCompilationDatabase(KeyIndexes indexes) {
  SchemaBuilder builder;
  for (const Table& table : kTables) {
    if (table.onlyInCompilation) builder.run(creationOf(table));
  }
  if (indexes == KeyIndexes::yes) {
    for (const SearchIndex& index : keyIndexes()) builder.run(index.sql);
  }
  builder.run("PRAGMA user_version=1");
  return builder.commit();
}

void createCompilationDatabase(const std::string& path, KeyIndexes indexes) {
  writeNewFile(path, emptyCompilationDatabase(indexes));
}

void createPreprocessingDatabase(const std::string& path) {
  SchemaBuilder builder;
  for (const char* sql : schema::kPreprocessingIndexesAndViews) builder.run(sql);
  writeNewFile(path, builder.commit());
}

std::vector<ExtensionTable> extensionTables() {
  std::vector<ExtensionTable> tables;
  for (const Table& table : kTables) {
    if (table.isExtension) tables.push_back({table.name, creationOf(table)});
  }
  return tables;
}

std::size_t countRows(const std::string& path) {
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
  const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> connection(opened, sqlite3_close);
  const auto check = [&](int result) {
    if (result == SQLITE_OK) return;
    throw std::runtime_error(path + ": cannot be read: " + sqlite3_errmsg(opened));
  };
  check(code);
  std::vector<std::string> tables;
  const auto addName = [](void* names, int, char** row, char**) {
    static_cast<std::vector<std::string>*>(names)->emplace_back(row[0]);
    return 0;
  };
  check(sqlite3_exec(opened,
                     "SELECT name FROM sqlite_schema WHERE type = 'table' AND "
                     "name NOT LIKE 'sqlite%'",
                     addName, &tables, nullptr));
  std::size_t rows = 0;
  const auto addCount = [](void* sum, int, char** row, char**) {
    *static_cast<std::size_t*>(sum) += std::strtoull(row[0], nullptr, 10);
    return 0;
  };
  for (const std::string& table : tables) {
    const std::string sql = "SELECT count(*) FROM \"" + table + '"';
    check(sqlite3_exec(opened, sql.c_str(), addCount, &rows, nullptr));
  }
  return rows;
}

}  // namespace fe_db_tools
