#include "fe_db/schema.h"
#include "tests/fe_database/save_load/save_load_test.h"

namespace fe_db_tests {
namespace {

using testing::HasSubstr;
using testing::Not;

using AddTables = SaveLoadTest;
using SaveToPpDb = SaveLoadTest;

TEST_F(AddTables, NewFile_GetsThePageSizeAndTheTextsOfTheSchema) {
  ASSERT_TRUE(data->getPpDb().quick_connect(false));
  EXPECT_TRUE(data->getPpDb().addTables());
  EXPECT_EQ(ppRows("PRAGMA page_size"), "32768\n");
  std::string expected;
  // SQLite keeps a text as it is but for the clause that asks whether the thing is there.
  const auto expect = [&expected](std::string text) {
    const std::string clause = "IF NOT EXISTS ";
    if (const auto at = text.find(clause); at != std::string::npos) text.erase(at, clause.size());
    expected += text + '\n';
  };
  for (const char* text : schema::kSharedTables) expect(text);
  for (const char* text : schema::kPreprocessingIndexesAndViews) expect(text);
  EXPECT_EQ(ppRows("SELECT sql FROM sqlite_schema WHERE sql NOTNULL AND name NOT LIKE 'sqlite_%'"),
            expected);
}

TEST_F(AddTables, Twice_ChangesNothingAndSucceedsInSilence) {
  connectPp();
  fill();
  ASSERT_TRUE(data->saveToPpDB());
  const std::string before = dump(ppFile);
  EXPECT_TRUE(data->getPpDb().addTables());
  EXPECT_EQ(dump(ppFile), before);
}

TEST_F(AddTables, LockedFile_AnswersFalseAndMakesNothing) {
  const RawConnection other(ppFile);
  other.rows("CREATE TABLE Other (A); BEGIN IMMEDIATE");
  data->getPpDb().setBusyTimeout(0);
  ASSERT_TRUE(data->getPpDb().quick_connect(false));
  takeReports();  // a file with a table of its own and without ours
  EXPECT_FALSE(data->getPpDb().addTables());
  expectOneLine();
  EXPECT_EQ(ppRows("SELECT name FROM sqlite_schema"), "Other\n");
}

TEST_F(SaveToPpDb, Views_NameWhatTheRowsReferTo_AndNothingIsSoughtToWriteThem) {
  connectPp();
  fill();
  EXPECT_TRUE(data->saveToPpDB());
  EXPECT_THAT(trace.take(), Not(testing::Contains(HasSubstr("SELECT"))));
  EXPECT_EQ(ppRows("SELECT File, DeclLineNum, DeclColNum, Macro, RefCount, Value, ValueIsSigned, "
                   "Text FROM MacroView ORDER BY Macro"),
            "a.c|10|9|M|5|7|0|7u\nNULL|0|3|PREDEFINED|0|NULL|0|\n");
  EXPECT_EQ(ppRows("SELECT * FROM MacroInvocationView"), "1|a.c|11|2|M|110|4|6\n");
  EXPECT_EQ(ppRows("SELECT * FROM MacroInvocationCodeOriginView"),
            "a.c|10|11|4|6|0|7u|1|a.c|11|2|M|110|4|6\n"
            "command line(col=1) or predefined macro(col=3)|0|3|6|7|1|;|1|a.c|11|2|M|110|4|6\n");
}

TEST_F(SaveToPpDb, FailedSave_CommitsNothing_AndCanBeTriedAgain) {
  connectPp();
  fill();
  ASSERT_TRUE(data->saveToPpDB());
  const std::string expected = dump(ppFile);
  for (const bool fails : {false, true}) {
    SCOPED_TRACE(fails ? "the first row" : "the commit, for a reader");
    std::filesystem::remove(ppFile);
    openAgain();
    connectPp().setBusyTimeout(0);
    fill();
    const std::string before = dump(ppFile);
    {
      const RawConnection reader(ppFile);
      if (fails) {
        failJournalAt("INSERT INTO File", ppFile, /*once=*/true);
      } else {
        reader.rows("BEGIN; SELECT count(*) FROM File");
      }
      EXPECT_FALSE(data->saveToPpDB());
      EXPECT_NE(takeReports(), "");
    }
    letJournalBe(ppFile);
    EXPECT_EQ(dump(ppFile), before);
    EXPECT_TRUE(data->saveToPpDB());
    EXPECT_EQ(dump(ppFile), expected);
  }
}

// Rows of an earlier save keep their ids, and what was seen since is written by the second try.
TEST_F(SaveToPpDb, FailedFurtherSave_CanBeTriedAgain) {
  connectPp();
  fill();
  ASSERT_TRUE(data->saveToPpDB());
  data->emplaceIdentifier("f", IdentifierKind::Function, /*accumulate=*/true, 2);
  data->emplaceFile("new.c", {}, {});
  failJournalAt("INSERT INTO File", ppFile, /*once=*/false);
  EXPECT_FALSE(data->saveToPpDB());
  EXPECT_NE(takeReports(), "");
  letJournalBe(ppFile);
  EXPECT_TRUE(data->saveToPpDB());
  EXPECT_EQ(ppRows("SELECT FileId, Path FROM File; SELECT Count FROM Identifier WHERE Name='f'"),
            "1|a.c\n2|a.h\n3|new.c\n5\n");
}

TEST_F(AddTables, WithoutAJournal_AnswersFalse) {
  failJournalAt("CREATE TABLE", ppFile, /*once=*/false);
  ASSERT_TRUE(data->getPpDb().quick_connect(false));
  EXPECT_FALSE(data->getPpDb().addTables());
  EXPECT_THAT(takeReports(), HasSubstr("cannot make the tables: unable to open database file"));
  letJournalBe(ppFile);
}

// --- Databases that are not there.

TEST_F(SaveLoadTest, OperationWithoutDatabase_IsReportedByOneLineAndAnswersFalse) {
  const struct {
    const char* name;
    bool onCompDb;
    bool (*run)(CompilationData&);
  } operations[] = {
      {"saveToCompDB", true, [](auto& data) { return data.saveToCompDB(); }},
      {"saveToPpDB", false, [](auto& data) { return data.saveToPpDB(); }},
      {"loadFromDB", true, [](auto& data) { return data.loadFromDB(true); }},
      {"loadFromDB", false, [](auto& data) { return data.loadFromDB(false); }},
      {"preLoadFromDB", true, [](auto& data) { return data.preLoadFromDB(true); }},
      {"preLoadFromDB", false, [](auto& data) { return data.preLoadFromDB(false); }},
  };
  const auto none = CompilationData::newInstance("", "");
  db().disconnect();
  for (CompilationData* const dataset : {none.get(), data.get()}) {
    dataset->setPropagateMacroInfo();
    for (const auto& [name, onCompDb, run] : operations) {
      SCOPED_TRACE(name);
      EXPECT_FALSE(run(*dataset));
      if (dataset == none.get()) {
        expectOneLine({name, onCompDb ? "no compilation database" : "no preprocessing database"});
      } else {
        expectOneLine({onCompDb ? compFile : ppFile});
      }
    }
  }
}

}  // namespace
}  // namespace fe_db_tests
