#include <functional>

#include "tests/persistence/test_database.h"

/// A transaction that SQLite rolls back by itself commits nothing, not even what came before.
namespace fe_db_tests {
namespace {

using testing::HasSubstr;

struct Breaker : NamedCase {
  /// Makes the next statement fail in a way that ends the transaction.
  std::function<void(TestDatabase&)> run;
};

class FailedTransaction : public DatabaseTest, public testing::WithParamInterface<Breaker> {
 protected:
  FailedTransaction() : db(databaseWithTable()) {
    execute(db.getPath(), "CREATE TABLE U (A INTEGER UNIQUE ON CONFLICT ROLLBACK, B)");
    execute(db.getPath(), "INSERT INTO U VALUES (1, 'before')");
    EXPECT_TRUE(db.quick_connect(false));
    before = dump(db.getPath());
  }
  /// Begins, writes a row, and breaks the transaction.
  void breakTransaction() {
    ASSERT_TRUE(db.beginTransaction());
    db.add(1);
    GetParam().run(db);
    ASSERT_NE(takeReports(), "") << "the cause is reported";
    ASSERT_NE(sqlite3_get_autocommit(db.raw()), 0) << "SQLite has not rolled back";
  }

  TestDatabase db;
  std::string before;
};

const Breaker kConstraint = {"Constraint", [](TestDatabase& db) {
                               EXPECT_FALSE(db.execute("INSERT INTO U VALUES (1, 'again')"));
                             }};
const Breaker kStatement = {"StatementConstraint", [](TestDatabase& db) {
                              persistence::DatabaseStatement insert("INSERT INTO U VALUES (1, 2)");
                              insert.prepare(db.raw());
                              insert.exec(db.raw());
                              EXPECT_EQ(insert.result(), SQLITE_CONSTRAINT);
                              insert.finalize(db.raw());
                            }};
const Breaker kFull = {"DatabaseFull", [](TestDatabase& db) {
                         EXPECT_TRUE(db.execute("PRAGMA max_page_count=1"));
                         EXPECT_FALSE(db.execute("INSERT INTO U VALUES (2, zeroblob(1000000))"));
                       }};

TEST_P(FailedTransaction, NothingMoreIsWrittenOneLineSaysSoAndCommitAnswersFalse) {
  breakTransaction();
  for (int value = 2; value <= 4; ++value) {
    db.add(value);
    EXPECT_EQ(db.insert.result(), SQLITE_ABORT);
  }
  EXPECT_FALSE(db.execute("INSERT INTO T VALUES (5)"));
  EXPECT_FALSE(db.commitTransaction());
  expectOneLine({db.getPath()});
  EXPECT_EQ(dump(db.getPath()), before);
  // Behind it failures are reported again, and the next one writes.
  ASSERT_TRUE(db.execute("PRAGMA max_page_count=1000"));
  db.add(6);
  db.add(6);
  EXPECT_THAT(takeReports(), HasSubstr("UNIQUE constraint failed: T.A"));
  ASSERT_TRUE(db.beginTransaction());
  db.add(7);
  EXPECT_TRUE(db.commitTransaction());
  EXPECT_EQ(rows(db.getPath(), "SELECT A FROM T"), "6\n7\n");
}

TEST_P(FailedTransaction, CommitRightAfterTheFailure_AnswersFalse) {
  breakTransaction();
  EXPECT_FALSE(db.commitTransaction());
  EXPECT_LE(lineCount(takeReports()), 1);
}

INSTANTIATE_TEST_SUITE_P(By, FailedTransaction, testing::Values(kConstraint, kStatement, kFull),
                         caseName);

using FailedWrite = DatabaseTest;

// The file may be written and its directory not: SQLite cannot make a journal and rolls nothing
// back. Once the journal can be made, what follows would be committed without the first row.
TEST_F(FailedWrite, WithoutARollbackOfSqlite_FailsTheTransactionAllTheSame) {
  const std::string file = databaseWithTable();
  const std::string journal = file + "-journal";
  const std::function<void(TestDatabase&)> writes[] = {
      [](TestDatabase& db) { db.add(1); },
      [](TestDatabase& db) { EXPECT_FALSE(db.execute("INSERT INTO T VALUES (1)")); },
  };
  for (const auto& write : writes) {
    TestDatabase db(file);
    ASSERT_TRUE(db.quick_connect(false));
    ASSERT_TRUE(db.beginTransaction());
    std::filesystem::create_directory(journal);
    write(db);
    EXPECT_THAT(takeReports(), HasSubstr("unable to open database file"));
    EXPECT_EQ(sqlite3_get_autocommit(db.raw()), 0) << "SQLite has rolled back";
    std::filesystem::remove(journal);
    db.add(2);
    EXPECT_EQ(db.insert.result(), SQLITE_ABORT);
    EXPECT_FALSE(db.commitTransaction());
    expectOneLine({file, "nothing more is written"});
    EXPECT_EQ(rows(file, "SELECT A FROM T"), "");
  }
}

TEST_F(FailedWrite, RefusedRow_LeavesTheRestOfTheTransaction) {
  TestDatabase db(databaseWithTable());
  execute(db.getPath(), "CREATE TABLE U (I INTEGER PRIMARY KEY)");
  ASSERT_TRUE(db.quick_connect(false));
  ASSERT_TRUE(db.beginTransaction());
  db.add(1);
  db.add(1);
  EXPECT_FALSE(db.execute("INSERT INTO U VALUES ('no number')"));
  EXPECT_FALSE(db.execute("INSERT INTO T VALUES (zeroblob(2000000000))"));
  EXPECT_EQ(lineCount(takeReports()), 3);
  db.add(2);
  EXPECT_TRUE(db.commitTransaction());
  EXPECT_EQ(rows(db.getPath(), "SELECT A FROM T"), "1\n2\n");
}

}  // namespace
}  // namespace fe_db_tests
