#include "persistence/sqlite_report.h"

#include <sqlite3.h>

#include <cstdarg>
#include <cstdio>
#include <string>

namespace persistence {

namespace {

// Named in every report, so that readers of logs can search for one text whatever file checks.
constexpr char kSource[] = "src/verifier/databases_merger/fe_database/compilation_database";

}  // namespace

void reportSqlite(int rc, int expected, sqlite3* connection, sqlite3_stmt* whileExecuting,
                  std::source_location where) {
  std::fprintf(stderr, "orvalesca: sqlite error:%s:%s:%d: rc=%d (expected rc=%d) %s\n", "unknown",
               kSource, static_cast<int>(where.line()), rc, expected, sqlite3_errmsg(connection));
  if (whileExecuting == nullptr) return;
  char* sql = sqlite3_expanded_sql(whileExecuting);
  std::fprintf(stderr, "While executing %s\n", sql != nullptr ? sql : "");
  sqlite3_free(sql);
}

void reportMessage(const char* format, ...) {
  // One write, so that lines of several processes or threads do not mix.
  std::string line = "orvalesca: ";
  std::va_list arguments;
  va_start(arguments, format);
  char* message = sqlite3_vmprintf(format, arguments);
  va_end(arguments);
  if (message != nullptr) line += message;
  sqlite3_free(message);
  line += '\n';
  std::fputs(line.c_str(), stderr);
}

}  // namespace persistence
