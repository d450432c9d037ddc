#pragma once

#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

/// The thinnest layer between a program and SQLite's own interface: what the floors and the
/// alternatives are written with. Every failure throws std::runtime_error.
namespace fe_db_benchmarks {

class Connection;

/// A prepared statement. Parameters count from 1, columns from 0.
class Statement {
 public:
  Statement(Connection& connection, const std::string& sql);

  void bind(int parameter, long long value) { check(sqlite3_bind_int64(get(), parameter, value)); }
  /// `text` is not copied: it must outlive the next step.
  void bind(int parameter, std::string_view text) {
    check(sqlite3_bind_text(get(), parameter, text.data(), static_cast<int>(text.size()),
                            SQLITE_STATIC));
  }
  void bindNull(int parameter) { check(sqlite3_bind_null(get(), parameter)); }

  /// True if there is a row.
  bool step() {
    const int rc = sqlite3_step(get());
    if (rc != SQLITE_ROW && rc != SQLITE_DONE) check(rc);
    return rc == SQLITE_ROW;
  }
  /// Runs a statement without rows, and makes it ready for the next values.
  void run() {
    step();
    check(sqlite3_reset(get()));
  }
  void reset() { check(sqlite3_reset(get())); }

  bool isNull(int column) const { return sqlite3_column_type(get(), column) == SQLITE_NULL; }
  long long number(int column) const { return sqlite3_column_int64(get(), column); }
  /// Valid until the next step.
  std::string_view text(int column) const {
    const auto* start = reinterpret_cast<const char*>(sqlite3_column_text(get(), column));
    if (start == nullptr) return {};
    return {start, static_cast<std::size_t>(sqlite3_column_bytes(get(), column))};
  }

  sqlite3_stmt* get() const { return statement_.get(); }

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };

  void check(int rc) const {
    if (rc != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(sqlite3_db_handle(get())));
  }

  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

/// A file that exists, or ":memory:". Opened the way the library opens one: without SQLite's own
/// mutex.
class Connection {
 public:
  explicit Connection(const std::string& path, int flags = SQLITE_OPEN_READWRITE) {
    sqlite3* opened = nullptr;
    const int rc =
        sqlite3_open_v2(path.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, /*vfs=*/nullptr);
    connection_.reset(opened);
    if (rc != SQLITE_OK) throw std::runtime_error(path + ": " + sqlite3_errmsg(opened));
  }

  void execute(const std::string& sql) {
    if (sqlite3_exec(get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
      throw std::runtime_error(sql + ": " + sqlite3_errmsg(get()));
    }
  }

  sqlite3* get() const { return connection_.get(); }

 private:
  struct Close {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
  };

  std::unique_ptr<sqlite3, Close> connection_;
};

inline Statement::Statement(Connection& connection, const std::string& sql) {
  sqlite3_stmt* prepared = nullptr;
  if (sqlite3_prepare_v2(connection.get(), sql.c_str(), -1, &prepared, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sql + ": " + sqlite3_errmsg(connection.get()));
  }
  statement_.reset(prepared);
}

}  // namespace fe_db_benchmarks
