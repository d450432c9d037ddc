#include "persistence/sqlite_report.h"

#include <sqlite3.h>

#include <cstdarg>
#include <cstdio>
#include <string>

#include "formatted.h"
#include "persistence/escaped_text.h"

namespace persistence {

namespace {

// Named in every report, so that readers of logs can search for one text whatever file checks.
constexpr char kSource[] = "src/verifier/databases_merger/fe_database/compilation_database";

}  // namespace

void reportSqlite(int rc, int expected, sqlite3* connection, sqlite3_stmt* whileExecuting,
                  int line) {
  std::fprintf(stderr, "orvalesca: sqlite error:%s:%s:%d: rc=%d (expected rc=%d) %s\n", "unknown",
               kSource, line, rc, expected, escaped(sqlite3_errmsg(connection)).c_str());
  if (whileExecuting == nullptr) return;
  char* sql = sqlite3_expanded_sql(whileExecuting);
  std::fprintf(stderr, "While executing %s\n", escaped(sql != nullptr ? sql : "").c_str());
  sqlite3_free(sql);
}

void reportQuery(const char* sql) { std::fprintf(stderr, "Error: executing SQL query:%s\n", sql); }

void reportMessage(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  // One write, so that lines of several processes or threads do not mix.
  const std::string line = "orvalesca: " + escaped(formatted(format, arguments)) + '\n';
  va_end(arguments);
  std::fputs(line.c_str(), stderr);
}

}  // namespace persistence
