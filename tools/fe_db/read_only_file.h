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

/// What becomes of a file that lacks a table or a column.
enum class Gaps { refused, accepted };

/// Milliseconds for SQLite, which counts them in an int: a wait of weeks is one of days.
constexpr int busyTimeoutOf(int waitSeconds) {
  return 1000 * std::clamp(waitSeconds, 0, 1'000'000);
}

/// A database file as it is at one moment: one read transaction lasts as long as the object.
/// Every failure is a std::runtime_error that names the file, what is wrong and what to do.
class ReadOnlyFile {
 public:
  /// Waits up to `waitSeconds` while another program writes. A file that has none of the nine
  /// compilation tables is a preprocessing file. One with gaps throws, unless they are accepted.
  ReadOnlyFile(std::string path, int waitSeconds, Gaps gaps = Gaps::refused);

  const std::string& path() const { return path_; }
  sqlite3* connection() const { return connection_.get(); }

  /// A file of this kind has the table; for one that it may lack: this file has it, and what its
  /// rows mean nothing without.
  bool has(const Table& table) const {
    if (!table.isExtension) return isCompilation_ || !table.onlyInCompilation;
    return isCompilation_ && tableExists(table.name) &&
           (table.id != TableId::unitFile || tableExists(tableOf(TableId::unit).name));
  }
  void require(const Table& table) const;
  bool isCompilation() const { return isCompilation_; }
  /// "rowid" is one, of every table that has row ids.
  bool hasColumn(const Table& table, std::string_view column) const;
  /// What a file of this kind has and this one lacks, a sentence for each table or column.
  std::vector<std::string> findGaps() const;
  /// Why a program that rewrites the table would lose what it holds, the ids above all; or empty.
  /// REQUIRES: the table has no gap.
  std::string reasonNotToWrite(const Table& table) const;
  /// Throws when there is such a reason for one of the tables, or no permission to write.
  void requireWritable() const;

  Statement prepare(const std::string& sql) const;
  /// True for a row, false behind the last.
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
  std::string path_;
  std::unique_ptr<sqlite3, Closer> connection_;
  std::map<std::string, std::set<std::string>> columns_;  ///< of our tables; in lower case
  bool isCompilation_ = false;
};

}  // namespace fe_db_tools
