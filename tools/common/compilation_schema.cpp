#include "compilation_schema.h"

#include <sqlite3.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

#include "fe_db/schema.h"
#include "new_file.h"
#include "search_indexes.h"

namespace fe_db_tools {
namespace {

namespace schema = orvalesca::databases_merger::schema;

/// The tables that only a compilation database has. Columns stand in the order in which the
/// library writes them. Their ids go without AUTOINCREMENT, which costs a quarter of the writing
/// time: no row of theirs is named by an id from outside the file.
constexpr std::array<const char*, 9> kCompilationTables = {
    "CREATE TABLE Type (TypeId INTEGER PRIMARY KEY, IdentifierId INTEGER, Unnamed BOOL, Local "
    "BOOL, Incomplete BOOL, DeclFileId INTEGER, DeclLineNum INTEGER, DeclColNum INTEGER, Kind "
    "INTEGER, RefCount INTEGER, RefTagCount INTEGER)",
    "CREATE TABLE TypeReference (DeclaredType INTEGER, ReferencedType INTEGER)",
    "CREATE TABLE Variable (VariableId INTEGER PRIMARY KEY, IdentifierId INTEGER, DeclFileId "
    "INTEGER, DeclLineNum INTEGER, DeclColNum INTEGER, TypeId INTEGER, isDefined BOOL, Linkage "
    "INTEGER, RefCount INTEGER)",
    "CREATE TABLE Function (FunctionId INTEGER PRIMARY KEY, IdentifierId INTEGER, SourceNameId "
    "INTEGER, DeclFileId INTEGER, DeclLineNum INTEGER, DeclColNum INTEGER, isDefined BOOL, "
    "isSpecial BOOL, Effect INTEGER, Linkage INTEGER, RefCount INTEGER)",
    "CREATE TABLE ExternalIdentifier (ExternalIdentifierId INTEGER PRIMARY KEY, IdentifierId "
    "INTEGER, Kind INTEGER, EntityId INTEGER)",
    "CREATE TABLE Field (FieldId INTEGER PRIMARY KEY, IdentifierId INTEGER, DeclFileId INTEGER, "
    "DeclLineNum INTEGER, DeclColNum INTEGER, RefCount INTEGER)",
    "CREATE TABLE EnumConstant (EnumConstantId INTEGER PRIMARY KEY, IdentifierId INTEGER, "
    "DeclFileId INTEGER, DeclLineNum INTEGER, DeclColNum INTEGER)",
    "CREATE TABLE Label (LabelId INTEGER PRIMARY KEY, IdentifierId INTEGER, DeclFileId INTEGER, "
    "DeclLineNum INTEGER, DeclColNum INTEGER)",
    "CREATE TABLE CallPoint (CallPointId INTEGER PRIMARY KEY, FileId INTEGER, LineNum INTEGER, "
    "ColNum INTEGER, IsValueUsed BOOL, CallerId INTEGER, CalleeId INTEGER)",
};

/// An empty database is built in memory and written out as one piece: nothing but complete files
/// ever stands in the file system, and no journal beside them.
class SchemaBuilder {
 public:
  SchemaBuilder() {
    sqlite3* connection = nullptr;
    const int rc = sqlite3_open(":memory:", &connection);
    connection_.reset(connection);
    if (rc != SQLITE_OK) fail();
    run(schema::kPageSize);  // only a database without a page takes it
    run("BEGIN");
    for (const char* table : schema::kSharedTables) run(table);
  }

  void run(const char* sql) {
    if (sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) fail();
  }

  /// The bytes of the file.
  std::string commit() {
    run("COMMIT");
    sqlite3_int64 size = 0;
    const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> image(
        sqlite3_serialize(connection_.get(), "main", &size, 0), sqlite3_free);
    if (!image) throw std::bad_alloc();
    return {reinterpret_cast<const char*>(image.get()), static_cast<std::size_t>(size)};
  }

 private:
  [[noreturn]] void fail() const {
    throw std::runtime_error(std::string("cannot build an empty database: ") +
                             sqlite3_errmsg(connection_.get()));
  }

  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> connection_{nullptr, sqlite3_close};
};

}  // namespace

std::string emptyCompilationDatabase(KeyIndexes indexes) {
  SchemaBuilder builder;
  for (const char* table : kCompilationTables) builder.run(table);
  if (indexes == KeyIndexes::yes) {
    for (const SearchIndex& index : kKeyIndexes) builder.run(index.sql);
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

std::size_t countRows(const std::string& path) {
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
  const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> connection(opened, sqlite3_close);
  if (code != SQLITE_OK) return 0;
  std::vector<std::string> tables;
  const auto addName = [](void* names, int, char** row, char**) {
    static_cast<std::vector<std::string>*>(names)->emplace_back(row[0]);
    return 0;
  };
  sqlite3_exec(opened,
               "SELECT name FROM sqlite_schema WHERE type = 'table' AND "
               "name NOT LIKE 'sqlite%'",
               addName, &tables, nullptr);
  std::size_t rows = 0;
  const auto addCount = [](void* sum, int, char** row, char**) {
    *static_cast<std::size_t*>(sum) += std::strtoull(row[0], nullptr, 10);
    return 0;
  };
  for (const std::string& table : tables) {
    const std::string sql = "SELECT count(*) FROM \"" + table + '"';
    sqlite3_exec(opened, sql.c_str(), addCount, &rows, nullptr);
  }
  return rows;
}

}  // namespace fe_db_tools
