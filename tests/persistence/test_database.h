#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <string>

#include "persistence/database.h"
#include "persistence/statement.h"
#include "tests/support/quiet_test.h"
#include "tests/support/sql_rows.h"

namespace fe_db_tests {

inline constexpr char kQueue[] = "FE_DB_TEST_QUEUE";

/// A derived class with one statement, as the library's own databases are.
class TestDatabase : public persistence::Database {
 public:
  explicit TestDatabase(const std::string& path, bool mustHaveTables = true, bool shared = false)
      : Database(path, kQueue, shared) {
    mustExist = mustHaveTables;
  }
  bool prepareStatements() override {
    ++prepared;
    return prepareAnswer;
  }
  void finalizeStatements() override {
    ++finalized;
    insert.finalize(connection);
  }
  sqlite3* raw() const { return connection; }
  void add(int value) {
    insert.prepare(connection);
    insert.bind(connection, value);
    insert.exec(connection);
  }

  persistence::DatabaseStatement insert{"INSERT INTO T (A) VALUES (?)"};
  int prepared = 0;
  int finalized = 0;
  bool prepareAnswer = true;
};

class DatabaseTest : public QuietTest {
 protected:
  /// A database with one table T (A UNIQUE), empty.
  std::string databaseWithTable(const std::string& name = "t.db") const {
    execute(path(name), "CREATE TABLE T (A INTEGER UNIQUE)");
    return path(name);
  }
};

/// How many open file descriptors of this process lead to the file.
inline int openDescriptors(const std::string& path) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    count += std::filesystem::read_symlink(entry, gone) == path;
  }
  return count;
}

}  // namespace fe_db_tests
