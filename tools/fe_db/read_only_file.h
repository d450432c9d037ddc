#pragma once

#include <sqlite3.h>

#include <memory>
#include <span>
#include <string>

#include "tables.h"

namespace fe_db_tools {

struct StatementDeleter {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, StatementDeleter>;

/// A database file as it is at one moment: one read transaction lasts as long as the object.
/// Every failure is a std::runtime_error that names the file, what is wrong and what to do.
class ReadOnlyFile {
 public:
  /// Waits up to `waitSeconds` while another program writes. Throws as well when the file lacks a
  /// table or a column; one that has none of the nine compilation tables is a preprocessing file.
  ReadOnlyFile(std::string path, int waitSeconds);

  const std::string& path() const { return path_; }
  sqlite3* connection() const { return connection_.get(); }

  /// The tables that a file of this kind has.
  std::span<const Table> tables() const;
  bool has(const Table& table) const { return isCompilation_ || !table.onlyInCompilation; }
  void require(const Table& table) const;

  Statement prepare(const std::string& sql) const;
  /// True for a row, false behind the last.
  bool step(const Statement& statement) const;
  sqlite3_int64 number(const std::string& sql) const;

 private:
  void open(int flags, int waitSeconds);
  bool begin();
  void checkTables();
  bool tableExists(std::string_view name) const;
  void checkColumns(const Table& table) const;
  [[noreturn]] void fail(const std::string& what) const;
  [[noreturn]] void failWithReason() const;

  struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
  };
  std::string path_;
  std::unique_ptr<sqlite3, Closer> connection_;
  bool isCompilation_ = false;
};

}  // namespace fe_db_tools
