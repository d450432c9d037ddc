#pragma once

#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "tables.h"

namespace fe_db_tools {

struct StatementDeleter {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, StatementDeleter>;

/// SQLite could not read the file: its result code, and its reason without the file's name.
struct ReadError : std::runtime_error {
  ReadError(const std::string& what, int resultCode, std::string sqliteReason)
      : std::runtime_error(what), code(resultCode), reason(std::move(sqliteReason)) {}
  int code;
  std::string reason;
};

/// Whether a file that lacks a table or a column is refused.
enum class MissingSchema { refused, accepted };

/// Milliseconds for SQLite, which counts them in an int: a wait of weeks is one of days.
constexpr int busyTimeoutOf(int waitSeconds) {
  return 1000 * std::clamp(waitSeconds, 0, 1'000'000);
}

/// A snapshot of a database file: one read transaction lasts as long as the object.
/// Every failure is a std::runtime_error that names the file, what is wrong and what to do.
class ReadOnlyFile {
 public:
  /// Waits up to `waitSeconds` while another program writes. A file that has none of the nine
  /// compilation tables is a preprocessing file. Missing tables or columns throw unless accepted.
  ReadOnlyFile(std::string path, int waitSeconds, MissingSchema missing = MissingSchema::refused);

  const std::string& getPath() const { return path; }
  sqlite3* getConnection() const { return connection.get(); }

  /// A file of this kind has the table; for one that it may lack: this file has it, and what its
  /// rows mean nothing without.
  bool has(const Table& table) const {
    if (!table.isExtension) return isCompilation || !table.onlyInCompilation;
    return isCompilation && tableExists(table.name) &&
           (table.id != TableId::unitFile || tableExists(tableOf(TableId::unit).name));
  }
  void require(const Table& table) const;
  bool isCompilationDatabase() const { return isCompilation; }
  /// "rowid" is a column of every table that has row ids.
  bool hasColumn(const Table& table, std::string_view column) const;
  /// The tables and columns that this file lacks, one sentence each.
  std::vector<std::string> findMissingSchema() const;
  /// Why a program that rewrites the table would lose what it holds, the ids above all; or empty.
  /// REQUIRES: the table lacks no column.
  std::string reasonNotToWrite(const Table& table) const;
  /// Throws if there is such a reason for one of the tables, or no permission to write.
  void requireWritable() const;

  Statement prepare(const std::string& sql) const;
  /// True for a row, false after the last.
  bool step(const Statement& statement) const;
  sqlite3_int64 number(const std::string& sql) const;

 private:
  void open(int flags, int waitSeconds);
  bool begin();
  void readColumns();
  bool tableExists(std::string_view name) const;
  void requirePermission() const;
  std::string missing(const Table& table) const;
  std::string missing(const Table& table, std::string_view column) const;
  [[noreturn]] void fail(const std::string& what) const;
  [[noreturn]] void failWithReason() const;

  struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
  };
  std::string path;
  std::unique_ptr<sqlite3, Closer> connection;
  std::map<std::string, std::set<std::string>> columns;  ///< of our tables; in lower case
  bool isCompilation = false;
};

}  // namespace fe_db_tools
