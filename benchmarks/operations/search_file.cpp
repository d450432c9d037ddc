#include "search_file.h"

#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>

#include "compilation_schema.h"
#include "search_indexes.h"

namespace {

std::set<std::string> made;

/// One row of each table for each n. `wanted` rows share identifier 1 and a count; `rare` ones have
/// a long name. A file has a thousand facts.
std::string rowView(std::int64_t rows) {
  const std::string all = std::to_string(rows);
  const std::string step = std::to_string(rows / kFew);
  return "CREATE TEMP VIEW Row AS"
         " WITH RECURSIVE Number(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM Number WHERE n < " +
         all + ") SELECT n, n / 1000 + 1 AS file, n % 1000 + 1 AS line, iif(n % " + step +
         " = 1, 1, n) AS name, iif(n % " + step + " = 1, 7, 1) AS count, n % " + step +
         " = 2 AS rare, n % (" + step + " / 10) = 2 AS harmless, " + all +
         " / 10 AS functions FROM Number";
}

/// Ten calls of each function of the first tenth, one of which drops the value; kFew of these
/// functions are harmless.
constexpr const char* kRows[] = {
    "INSERT INTO File SELECT file, '/usr/include/project/header_' || file || '.h', 2, 1, 0"
    " FROM Row GROUP BY file",
    "INSERT INTO Identifier SELECT n, CASE WHEN n = 1 THEN 'wanted'"
    " WHEN rare THEN 'a_name_longer_than_all_the_others_' || n ELSE 'name_' || n END,"
    " iif(rare, 9, 1), iif(rare, 2, 8) FROM Row",
    "INSERT INTO Macro SELECT n, name, file, line, 5, count, NULL, 0, 1, 0, 0, 0, '(1 << 4)'"
    " FROM Row",
    "INSERT INTO Type SELECT n, name, 0, 0, 0, file, line, 5, 64, count, count FROM Row",
    "INSERT INTO TypeReference SELECT n, n % 1000 + 1 FROM Row",
    "INSERT INTO Variable SELECT n, name, file, line, 5, n % 1000 + 1, 1, NOT rare,"
    " iif(rare, 9, count) FROM Row",
    "INSERT INTO Function SELECT n, name, name, file, line, 5, 1, 0, iif(harmless, 0, 2), 1, count"
    " FROM Row",
    "INSERT INTO ExternalIdentifier SELECT n, name, 0, n FROM Row",
    "INSERT INTO Field SELECT n, name, file, line, 5, count FROM Row",
    "INSERT INTO EnumConstant SELECT n, name, file, line, 5 FROM Row",
    "INSERT INTO Label SELECT n, name, file, line, 5 FROM Row",
    "INSERT INTO CallPoint SELECT n, file, line, 5, n % 10 != 0, n * 7 % functions + 1,"
    " (n - 1) / 10 + 1 FROM Row",
};

void run(sqlite3* db, const std::string& sql) {
  if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) return;
  std::fprintf(stderr, "bench_operations: %s: %s\n", sql.c_str(), sqlite3_errmsg(db));
  removeSearchFiles();
  std::exit(1);
}

}  // namespace

std::string searchFile(std::int64_t rows) {
  const std::string name = "fe_db_bench_search_" + std::to_string(rows) + ".db";
  const std::string path = (std::filesystem::temp_directory_path() / name).string();
  if (!made.insert(path).second) return path;
  std::filesystem::remove(path);
  fe_db_tools::createCompilationDatabase(path, fe_db_tools::KeyIndexes::no);
  sqlite3* db = nullptr;
  sqlite3_open(path.c_str(), &db);
  run(db, "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA cache_size=-262144; BEGIN");
  run(db, rowView(rows));
  for (const char* sql : kRows) run(db, sql);
  fe_db_tools::eachSearchIndex([&](const auto& index) { run(db, index.sql); });
  run(db, fe_db_tools::kLengthIndexHint);
  run(db, "COMMIT");
  sqlite3_close(db);
  return path;
}

void removeSearchFiles() {
  for (const std::string& path : made) std::filesystem::remove(path);
  made.clear();
}
