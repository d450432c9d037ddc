#include "canonical_rows.h"

#include <new>
#include <string>

#include "line_query.h"

namespace fe_db_tools {
namespace {

/// State of the SQL function of one table: the query, and the line that it builds.
struct LineFunction {
  explicit LineFunction(const Table& table) : query(table) {}
  LineQuery query;
  std::string line;
};

void buildLine(sqlite3_context* context, int, sqlite3_value** cells) {
  auto& function = *static_cast<LineFunction*>(sqlite3_user_data(context));
  try {
    function.line.clear();
    function.query.appendLine(function.line, cells);
  } catch (const std::bad_alloc&) {
    return sqlite3_result_error_nomem(context);
  }
  // A blob: its order is that of the bytes, whatever encoding the file has.
  sqlite3_result_blob64(context, function.line.data(), function.line.size(), SQLITE_TRANSIENT);
}

void deleteFunction(void* function) { delete static_cast<LineFunction*>(function); }

}  // namespace

CanonicalRows::CanonicalRows(const ReadOnlyFile& file, const Table& table) : file(file) {
  if (!file.has(table)) return;
  auto* function = new LineFunction(table);
  const std::string name = "line_of_" + std::string(table.name);
  const std::string sql = "SELECT " + name + "(" + function->query.getColumns() + ") FROM " +
                          function->query.getTables() + " ORDER BY 1";
  // No schema may call it, with other arguments. SQLite owns it from here on, also when it refuses.
  sqlite3_create_function_v2(file.getConnection(), name.c_str(), -1,
                             SQLITE_UTF8 | SQLITE_DIRECTONLY, function, buildLine, nullptr, nullptr,
                             deleteFunction);
  statement = file.prepare(sql);
}

bool CanonicalRows::next() {
  if (!statement || !file.step(statement)) return false;
  const void* bytes = sqlite3_column_blob(statement.get(), 0);
  const int size = sqlite3_column_bytes(statement.get(), 0);
  line = {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
  return true;
}

}  // namespace fe_db_tools
