#include <functional>
#include <future>
#include <optional>
#include <vector>

#include "tests/persistence/test_database.h"

namespace fe_db_tests {
namespace {

using testing::HasSubstr;

struct RefusedFile : NamedCase {
  std::function<void(const std::string&)> make;
  bool mustHaveTables;
  bool readOnly;
  const char* reason;
};

class DatabaseRefusal : public DatabaseTest, public testing::WithParamInterface<RefusedFile> {};

TEST_P(DatabaseRefusal, ConnectAnswersFalseWithOneLineNamingPathAndReason) {
  const std::string file = path("it.db");
  GetParam().make(file);
  TestDatabase db(file, GetParam().mustHaveTables);
  EXPECT_FALSE(db.quick_connect(GetParam().readOnly));
  EXPECT_FALSE(db.isConnected());
  EXPECT_EQ(openDescriptors(file), 0);
  EXPECT_EQ(db.prepared, 0);
  expectOneLine({file, GetParam().reason});
}

const auto nothing = [](const std::string&) {};
const auto text = [](const std::string& path) { std::ofstream(path) << std::string(5000, 'x'); };
const auto folder = [](const std::string& path) { std::filesystem::create_directory(path); };
const auto empty = [](const std::string& path) { std::ofstream{path}; };
const auto tableless = [](const std::string& path) { execute(path, "PRAGMA user_version=1"); };

INSTANTIATE_TEST_SUITE_P(
    Files, DatabaseRefusal,
    testing::Values(RefusedFile{"Missing", nothing, true, false, "unable to open"},
                    RefusedFile{"MissingForReading", nothing, false, true, "unable to open"},
                    RefusedFile{"NoDatabase", text, true, false, "not a database"},
                    RefusedFile{"NoDatabaseForReading", text, true, true, "not a database"},
                    RefusedFile{"NoDatabaseThatMayBeCreated", text, false, false, "not a database"},
                    RefusedFile{"Directory", folder, true, false, "unable to open"},
                    RefusedFile{"Empty", empty, true, false, "table"},
                    RefusedFile{"WithoutTable", tableless, true, false, "table"}),
    caseName);

TEST_F(DatabaseTest, MissingFileThatMayBeCreated_ConnectsAndPreparesNothing) {
  TestDatabase db(path("new.db"), /*mustHaveTables=*/false);
  EXPECT_TRUE(db.quick_connect(false));
  EXPECT_TRUE(db.isConnected());
  EXPECT_EQ(db.prepared, 0);
}

TEST_F(DatabaseTest, PrepareStatementsAnsweringFalse_MakesConnectFail) {
  TestDatabase db(databaseWithTable());
  db.prepareAnswer = false;
  EXPECT_FALSE(db.quick_connect(false));
  EXPECT_EQ(db.prepared, 1);
  takeReports();  // whether a line is due is the derived class's business
}

TEST_F(DatabaseTest, ConnectedAgain_StatementsAreCompiledAnew) {
  TestDatabase db(databaseWithTable());
  for (int round = 1; round <= 2; ++round) {
    ASSERT_TRUE(db.quick_connect(false));
    db.add(round);
    EXPECT_EQ(db.lastInsertRowID(), round);
    db.disconnect();
    EXPECT_FALSE(db.isConnected());
    EXPECT_EQ(db.prepared, round);
    EXPECT_EQ(db.finalized, round);
  }
  db.disconnect();
  EXPECT_EQ(rows(db.getPath(), "SELECT A FROM T"), "1\n2\n");
}

TEST_F(DatabaseTest, ReadOnlyConnection_ReadsAndRefusesWrites) {
  TestDatabase db(databaseWithTable());
  ASSERT_TRUE(db.quick_connect(true));
  EXPECT_TRUE(db.beginReading());
  EXPECT_TRUE(db.execute("SELECT * FROM T"));
  EXPECT_FALSE(db.execute("INSERT INTO T VALUES (1)"));
  EXPECT_THAT(takeReports(), HasSubstr("readonly"));
  EXPECT_TRUE(db.commitTransaction());
  EXPECT_FALSE(db.beginTransaction());
  expectOneLine({db.getPath()});
  EXPECT_EQ(rows(db.getPath(), "SELECT * FROM T"), "");
}

TEST_F(DatabaseTest, EveryOperationWithoutConnection_ReportsOnceAndAnswersFalse) {
  TestDatabase db(databaseWithTable());
  const std::vector<std::pair<const char*, std::function<long long()>>> operations = {
      {"beginTransaction", [&] { return db.beginTransaction(); }},
      {"beginReading", [&] { return db.beginReading(); }},
      {"commitTransaction", [&] { return db.commitTransaction(); }},
      {"rollbackTransaction", [&] { return db.rollbackTransaction(); }},
      {"lastInsertRowID", [&] { return db.lastInsertRowID(); }},
      {"execute", [&] { return db.execute("SELECT 1"); }},
  };
  for (const bool afterDisconnect : {false, true}) {
    if (afterDisconnect) {
      ASSERT_TRUE(db.quick_connect(false));
      db.disconnect();
    }
    for (const auto& [name, operation] : operations) {
      EXPECT_EQ(operation(), 0) << name;
      expectOneLine({db.getPath(), name});
    }
    db.setBusyTimeout(10);
    db.disconnect();
  }
}

TEST_F(DatabaseTest, BeginWhileOpenAndEndWithoutBegin_AreRefused) {
  TestDatabase db(databaseWithTable());
  ASSERT_TRUE(db.quick_connect(false));
  EXPECT_FALSE(db.commitTransaction());
  expectOneLine();
  EXPECT_FALSE(db.rollbackTransaction());
  expectOneLine();
  ASSERT_TRUE(db.beginTransaction());
  db.add(9);
  EXPECT_TRUE(db.rollbackTransaction());
  ASSERT_TRUE(db.beginTransaction());
  db.add(1);
  EXPECT_FALSE(db.beginTransaction());
  expectOneLine();
  db.add(2);
  EXPECT_TRUE(db.commitTransaction());
  EXPECT_EQ(rows(db.getPath(), "SELECT A FROM T"), "1\n2\n");
}

TEST_F(DatabaseTest, DestroyedInATransactionWithAnActiveStatement_RollsBackAndCloses) {
  const std::string file = databaseWithTable();
  execute(file, "INSERT INTO T VALUES (7), (8)");
  {
    std::optional<TestDatabase> db(file);
    ASSERT_TRUE(db->quick_connect(false));
    ASSERT_TRUE(db->beginTransaction());
    db->add(1);
    // Nobody will finalize this one: the derived part of the object is gone by then.
    sqlite3_stmt* forgotten = nullptr;
    ASSERT_EQ(sqlite3_prepare_v2(db->raw(), "SELECT A FROM T", -1, &forgotten, nullptr), SQLITE_OK);
    ASSERT_EQ(sqlite3_step(forgotten), SQLITE_ROW);
  }
  EXPECT_EQ(openDescriptors(file), 0);
  EXPECT_EQ(rows(file, "SELECT A FROM T"), "7\n8\n");
  execute(file, "INSERT INTO T VALUES (9)");
}

TEST_F(DatabaseTest, Closing_FinalizesWhatTheLayerCompiledAndLeavesSqliteItsOwn) {
  const std::string file = databaseWithTable();
  execute(file, "CREATE VIRTUAL TABLE V USING fts5(Name); INSERT INTO V VALUES ('one'), ('two')");
  for (const bool isDestroyed : {false, true}) {
    std::optional<TestDatabase> db(file);
    ASSERT_TRUE(db->quick_connect(false));
    // The virtual table compiles statements for itself on the same connection.
    EXPECT_TRUE(db->execute("INSERT INTO V VALUES ('three')"));
    persistence::DatabaseStatement open("SELECT rowid FROM V");
    open.prepare(db->raw());
    ASSERT_EQ(open.step(), SQLITE_ROW);
    {
      persistence::DatabaseStatement endsBefore("SELECT rowid FROM V");
      endsBefore.prepare(db->raw());
    }
    isDestroyed ? db.reset() : db->disconnect();
    EXPECT_EQ(openDescriptors(file), 0);
    EXPECT_EQ(open.step(), SQLITE_MISUSE) << "it is finalized";
  }
  EXPECT_EQ(rows(file, "SELECT count(*) FROM V"), "4\n");
}

TEST_F(DatabaseTest, TriggersOfTheFile_DoNotRun) {
  const std::string file = databaseWithTable();
  execute(file,
          "CREATE TRIGGER Doubles AFTER INSERT ON T BEGIN INSERT INTO T VALUES (NEW.A + 10); END;"
          "CREATE TRIGGER Drops BEFORE INSERT ON T WHEN NEW.A = 2 BEGIN SELECT RAISE(IGNORE); END");
  TestDatabase db(file);
  ASSERT_TRUE(db.quick_connect(false));
  db.add(1);
  db.add(2);
  EXPECT_EQ(rows(file, "SELECT A FROM T"), "1\n2\n");
}

TEST_F(DatabaseTest, BeginOnAFileWithoutPages_LeavesThePageSizeOpen) {
  TestDatabase db(path("new.db"), /*mustHaveTables=*/false);
  ASSERT_TRUE(db.quick_connect(false));
  ASSERT_TRUE(db.beginTransaction());
  EXPECT_TRUE(db.execute("PRAGMA page_size=32768"));
  EXPECT_TRUE(db.execute("CREATE TABLE T (A)"));
  EXPECT_TRUE(db.commitTransaction());
  EXPECT_EQ(rows(db.getPath(), "PRAGMA page_size"), "32768\n");
}

/// The environment variable names a lock file for the life of a test.
class QueueTest : public DatabaseTest {
 protected:
  QueueTest() { setQueue(path("queue.lock")); }
  ~QueueTest() override { unsetenv(kQueue); }
  static void setQueue(const std::string& value) { setenv(kQueue, value.c_str(), 1); }

  /// A connected writer on a file of its own, so that SQLite's locks play no part.
  struct Writer : TestDatabase {
    Writer(const QueueTest& test, const std::string& name, bool shared)
        : TestDatabase(test.databaseWithTable(name), true, shared) {
      EXPECT_TRUE(quick_connect(false));
      setBusyTimeout(20);
    }
  };
};

TEST_F(QueueTest, SharedWriters_ExcludeEachOtherUntilTheFirstEnds) {
  Writer second(*this, "second.db", /*shared=*/true);
  const std::vector<std::pair<const char*, std::function<void(std::optional<Writer>&)>>> ends = {
      {"commit", [](auto& first) { EXPECT_TRUE(first->commitTransaction()); }},
      {"rollback", [](auto& first) { EXPECT_TRUE(first->rollbackTransaction()); }},
      {"disconnect", [](auto& first) { first->disconnect(); }},
      {"destruction", [](auto& first) { first.reset(); }},
  };
  for (const auto& [name, end] : ends) {
    std::optional<Writer> first(std::in_place, *this, std::string(name) + ".db", true);
    ASSERT_TRUE(first->beginTransaction()) << name;
    EXPECT_FALSE(second.beginTransaction()) << name;
    expectOneLine();
    end(first);
    EXPECT_TRUE(second.beginTransaction()) << name;
    EXPECT_TRUE(second.commitTransaction()) << name;
  }
}

TEST_F(QueueTest, ReaderAndUnsharedWriter_TakeNoQueueLock_NorDoesAnyoneWhenTheVariableIsEmpty) {
  Writer first(*this, "first.db", true);
  Writer reader(*this, "reader.db", true);
  Writer unshared(*this, "unshared.db", false);
  Writer withoutQueue(*this, "without.db", true);
  ASSERT_TRUE(first.beginTransaction());
  EXPECT_TRUE(reader.beginReading());
  EXPECT_TRUE(unshared.beginTransaction());
  setQueue("");
  EXPECT_TRUE(withoutQueue.beginTransaction());
}

TEST_F(QueueTest, LockFileThatCannotBeMade_RefusesTheTransaction) {
  setQueue(path("missing/queue.lock"));
  Writer writer(*this, "it.db", true);
  EXPECT_FALSE(writer.beginTransaction());
  expectOneLine({path("missing/queue.lock")});
}

TEST_F(QueueTest, RefusedWriteLock_GivesTheQueueLockBack) {
  Writer writer(*this, "it.db", true);
  Writer other(*this, "other.db", true);
  RawConnection holder(writer.getPath());
  holder.rows("BEGIN IMMEDIATE");
  EXPECT_FALSE(writer.beginTransaction());
  expectOneLine();
  EXPECT_TRUE(other.beginTransaction());
}

TEST_F(QueueTest, QueueLockAndWriteLock_ShareOneTimeout) {
  // The queue is free at 0.8 of the timeout and the file at 1.4: each wait alone would fit.
  using namespace std::chrono_literals;
  Writer queueHolder(*this, "other.db", true);
  Writer writer(*this, "it.db", true);
  writer.setBusyTimeout(1500);
  RawConnection fileHolder(writer.getPath());
  fileHolder.rows("BEGIN EXCLUSIVE");
  ASSERT_TRUE(queueHolder.beginTransaction());
  std::promise<void> started;
  auto waiting = std::async(std::launch::async, [&] {
    started.set_value();
    return writer.beginTransaction();
  });
  started.get_future().wait();
  const auto start = std::chrono::steady_clock::now();
  std::this_thread::sleep_until(start + 1200ms);
  EXPECT_TRUE(queueHolder.commitTransaction());
  std::this_thread::sleep_until(start + 2100ms);
  fileHolder.rows("COMMIT");
  EXPECT_FALSE(waiting.get());
  expectOneLine();
}

}  // namespace
}  // namespace fe_db_tests
