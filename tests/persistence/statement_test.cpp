#include <limits>
#include <vector>

#include "tests/persistence/test_database.h"

namespace fe_db_tests {
namespace {

using persistence::DatabaseStatement;

class StatementTest : public DatabaseTest {
 protected:
  StatementTest() : db(databaseWithTable()) { EXPECT_TRUE(db.quick_connect(false)); }
  ~StatementTest() override {
    for (DatabaseStatement* statement : {&insert, &select, &broken}) statement->finalize(db.raw());
  }
  template <class... Values>
  void bind(DatabaseStatement& statement, const Values&... values) {
    (statement.bind(db.raw(), values), ...);
  }
  /// Inserts a row.
  template <class Value>
  void run(DatabaseStatement& statement, const Value& value) {
    statement.prepare(db.raw());
    bind(statement, value);
    statement.exec(db.raw());
  }
  std::string content() const { return rows(db.getPath(), "SELECT A FROM T ORDER BY A"); }

  TestDatabase db;
  DatabaseStatement insert{"INSERT INTO T (A) VALUES (?)"};
  DatabaseStatement select{std::string_view("SELECT A FROM T WHERE A BETWEEN ? AND ?"), false};
  DatabaseStatement broken{"SELECT A FROM Nowhere"};
};

TEST_F(StatementTest, PreparedAgainBetweenTwoRows_GoesOnWithTheNextRow) {
  execute(db.getPath(), "INSERT INTO T VALUES (1), (2)");
  select.prepare(db.raw());
  select.prepare(db.raw());
  bind(select, 1, 2);
  for (const long long expected : {1, 2}) {
    ASSERT_EQ(select.step(), SQLITE_ROW);
    select.prepare(db.raw());
    long long value = 0;
    select.column(value);
    EXPECT_EQ(value, expected);
  }
  EXPECT_EQ(select.step(), SQLITE_DONE);
}

TEST_F(StatementTest, ExecAgainWithNewBindings_InsertsARowEachTimeWithTheWholeNumber) {
  const long long least = std::numeric_limits<long long>::min();
  run(insert, least);
  EXPECT_EQ(insert.result(), SQLITE_DONE);
  run(insert, 1ULL << 62);
  insert.finalize(db.raw());
  run(insert, -1);
  EXPECT_EQ(content(), "-9223372036854775808\n-1\n4611686018427387904\n");
}

TEST_F(StatementTest, BindAfterReset_FillsTheParametersFromTheFirstOn) {
  execute(db.getPath(), "INSERT INTO T VALUES (1), (5), (9)");
  select.prepare(db.raw());
  bind(select, 1, 1);
  ASSERT_EQ(select.step(), SQLITE_ROW);
  select.reset(db.raw());
  bind(select, 4, 6);
  ASSERT_EQ(select.step(), SQLITE_ROW);
  long long value = 0;
  select.column(value);
  EXPECT_EQ(value, 5);
  EXPECT_EQ(select.step(), SQLITE_DONE);
}

TEST_F(StatementTest, BindBeyondTheLastParameter_IsReportedWithTheStatement) {
  insert.prepare(db.raw());
  bind(insert, 3, 4);
  EXPECT_THAT(takeReports(), isReport(SQLITE_RANGE, SQLITE_OK, ".*",
                                      "While executing INSERT INTO T \\(A\\) VALUES \\(3\\)\n"));
  insert.exec(db.raw());
  EXPECT_EQ(content(), "3\n");
}

TEST_F(StatementTest, Copy_HasTheTextAndIsNotCompiled) {
  insert.prepare(db.raw());
  bind(insert, 1);
  std::vector<DatabaseStatement> copies(1, insert);
  EXPECT_EQ(copies[0].getText(), insert.getText());
  EXPECT_EQ(copies[0].step(), SQLITE_MISUSE);
  insert.finalize(db.raw());
  run(copies[0], 2);
  copies[0].finalize(db.raw());
  EXPECT_EQ(content(), "2\n");
}

TEST_F(StatementTest, FailedCompilation_IsReportedOnceUntilFinalize) {
  for (int round = 0; round < 2; ++round) {
    broken.prepare(db.raw());
    expectOneSqliteError("rc=1 (expected rc=0) no such table: Nowhere");
    broken.prepare(db.raw());
    broken.exec(db.raw());
    broken.reset(db.raw());
    EXPECT_THAT(broken.step(), testing::AllOf(testing::Ne(SQLITE_ROW), testing::Ne(SQLITE_DONE)));
    EXPECT_EQ(takeReports(), "") << round;
    broken.finalize(db.raw());
  }
}

TEST_F(StatementTest, ReportsOfAHostileSchema_AreEscaped) {
  execute(db.getPath(), "CREATE TABLE H (\"\x1b[2J\" UNIQUE); INSERT INTO H VALUES (1)");
  EXPECT_FALSE(db.execute("INSERT INTO H VALUES (1)"));
  const std::string report = takeReports();
  EXPECT_THAT(report, testing::HasSubstr("H.\\x1b[2J"));
  EXPECT_EQ(report.find('\x1b'), std::string::npos);
}

TEST_F(StatementTest, ExecOfARefusedRow_ReportsOnceAndIsReadyForTheNext) {
  execute(db.getPath(), "INSERT INTO T VALUES (1)");
  run(insert, 1);
  EXPECT_EQ(insert.result(), SQLITE_CONSTRAINT);
  expectOneSqliteError("rc=19 (expected rc=101) UNIQUE constraint failed: T.A\n");
  run(insert, 2);
  EXPECT_EQ(insert.result(), SQLITE_DONE);
  EXPECT_EQ(content(), "1\n2\n");
  // The caller of step() reports; reset says nothing a second time.
  bind(insert, 1);
  EXPECT_EQ(insert.step(), SQLITE_CONSTRAINT);
  insert.reset(db.raw());
  EXPECT_EQ(takeReports(), "");
}

}  // namespace
}  // namespace fe_db_tests
