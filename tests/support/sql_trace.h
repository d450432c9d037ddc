#pragma once

#include <sqlite3.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace fe_db_tests {

/// Records the text of every statement that runs on connections opened while it lives, except on a
/// RawConnection. One at a time.
class SqlTrace {
 public:
  SqlTrace() {
    current = this;
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(install));
  }
  ~SqlTrace() {
    sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(install));
    current = nullptr;
  }
  SqlTrace(const SqlTrace&) = delete;
  SqlTrace& operator=(const SqlTrace&) = delete;

  /// What ran since the last call.
  std::vector<std::string> take() { return std::exchange(statements, {}); }
  /// The connection opened last.
  sqlite3* connection() const { return latest; }
  /// Called with each text, before the statement runs.
  std::function<void(const std::string&)> onStatement;

 private:
  static int install(sqlite3* connection, char**, const void*) {
    current->latest = connection;
    return sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, record, nullptr);
  }
  static int record(unsigned, void*, void*, void* sql) {
    if (current == nullptr) return 0;
    current->statements.push_back(static_cast<const char*>(sql));
    if (current->onStatement) current->onStatement(current->statements.back());
    return 0;
  }

  static inline SqlTrace* current = nullptr;
  std::vector<std::string> statements;
  sqlite3* latest = nullptr;
};

}  // namespace fe_db_tests
