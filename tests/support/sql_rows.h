#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>

/// What a database file holds, read and written past the library.
namespace fe_db_tests {

/// A plain connection; closes itself.
class RawConnection {
 public:
  explicit RawConnection(const std::string& path) {
    if (sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) != SQLITE_OK) {
      ADD_FAILURE() << path << ": " << sqlite3_errmsg(handle);
    }
    sqlite3_busy_timeout(handle, 60'000);
    sqlite3_trace_v2(handle, 0, nullptr, nullptr);
  }
  ~RawConnection() { sqlite3_close(handle); }
  RawConnection(const RawConnection&) = delete;
  RawConnection& operator=(const RawConnection&) = delete;

  /// The rows of a query, or of several: columns separated by '|', a newline behind each row,
  /// NULL as "NULL".
  std::string rows(const std::string& sql) const {
    std::string text;
    char* error = nullptr;
    if (sqlite3_exec(handle, sql.c_str(), appendRow, &text, &error) != SQLITE_OK) {
      ADD_FAILURE() << sql << ": " << error;
    }
    sqlite3_free(error);
    return text;
  }

  sqlite3* get() const { return handle; }

 private:
  static int appendRow(void* text, int columns, char** values, char**) {
    for (int i = 0; i < columns; ++i) {
      if (i > 0) *static_cast<std::string*>(text) += '|';
      *static_cast<std::string*>(text) += values[i] != nullptr ? values[i] : "NULL";
    }
    *static_cast<std::string*>(text) += '\n';
    return 0;
  }

  sqlite3* handle = nullptr;
};

inline std::string rows(const std::string& path, const std::string& sql) {
  return RawConnection(path).rows(sql);
}

inline void execute(const std::string& path, const std::string& sql) {
  EXPECT_EQ(rows(path, sql), "");
}

/// Schema and rows of every table, ids included.
inline std::string dump(const std::string& path) {
  const RawConnection connection(path);
  std::string text = connection.rows("SELECT sql FROM sqlite_schema ORDER BY name");
  const std::string selects = connection.rows(
      "SELECT 'SELECT ''' || name || ''', rowid, * FROM ' || name || ';' FROM sqlite_schema "
      "WHERE type = 'table' ORDER BY name");
  return text + connection.rows(selects);
}

inline std::string integrity(const std::string& path) {
  return rows(path, "PRAGMA integrity_check");
}

}  // namespace fe_db_tests
