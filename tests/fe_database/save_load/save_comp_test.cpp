#include "tests/fe_database/save_load/save_load_test.h"

namespace fe_db_tests {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class SaveToCompDb : public SaveLoadTest {
 protected:
  /// The file holds what a first dataset saved; `data` is a new, empty one.
  void saveFilledAndOpenAgain() {
    fill();
    ASSERT_TRUE(saveToCompDb());
    openAgain();
  }
};

TEST_F(SaveToCompDb, WithoutAFlag_RunsNothing) {
  fill();
  EXPECT_TRUE(data->saveToCompDB());
  EXPECT_THAT(trace.take(), IsEmpty());
  EXPECT_EQ(content(compFile), "");
}

// Equal facts give equal files, and what was seen together lies together.
TEST_F(SaveToCompDb, Rows_StandInTheOrderOfFirstSights_MacrosOfANameTogether_VariablesSorted) {
  File* file = &data->emplaceFile("z.h", {}, {});
  for (const char* name : {"m", "b", "z", "a", "b", "k"}) {
    const std::uint32_t line = static_cast<std::uint32_t>(100 - name[0] % 32);
    data->emplaceField(name, {file, line, 1}, true, 0);
    data->emplaceVariable(name, {file, line, 9}, nullptr, false, LinkageKind::None, true);
  }
  for (const std::uint32_t line : {1, 2, 3}) data->emplaceMacro("b", {file, line, 1}, true, 0);
  data->emplaceMacro("a", {file, 4, 1}, true, 0);
  data->emplaceMacro("b", {file, 5, 1}, true, 0);
  EXPECT_TRUE(saveToCompDb());
  EXPECT_EQ(rows("SELECT Name FROM Identifier ORDER BY IdentifierId"), "m\nb\nz\na\nk\n");
  const std::string inOrder = " JOIN Identifier USING (IdentifierId) ORDER BY ";
  EXPECT_EQ(rows("SELECT Name FROM Field" + inOrder + "FieldId"), "m\nb\nz\na\nk\n");
  EXPECT_EQ(rows("SELECT Name FROM Variable" + inOrder + "VariableId"), "z\nm\nk\nb\na\n");
  EXPECT_EQ(rows("SELECT Name, DeclLineNum FROM Macro" + inOrder + "MacroId"),
            "b|1\nb|5\nb|3\nb|2\na|4\n");
}

TEST_F(SaveToCompDb, TransactionThatCannotBegin_ChangesNothing) {
  const std::string expected = contentOfASave();
  fill();
  db().setBusyTimeout(0);
  const RawConnection other(compFile);
  other.rows("BEGIN IMMEDIATE");
  EXPECT_FALSE(saveToCompDb());
  expectOneLine();
  ASSERT_NE(data->getFile("a.c"), nullptr);
  EXPECT_EQ(data->getFile("a.c")->getId(), 0);
  EXPECT_FALSE(Identifier::isPreLoaded || Type::isPreLoaded || File::isLoaded);
  other.rows("COMMIT");
  EXPECT_TRUE(saveToCompDb());
  EXPECT_EQ(content(compFile), expected);
}

TEST_F(SaveToCompDb, Repeated_LeavesTheRowsThatTheFirstSaveLeft) {
  fill();
  ASSERT_TRUE(saveToCompDb());
  openAgain();
  // The same macro without a reference, with another text, and undefined: dirty, nothing to add.
  File* a = &data->emplaceFile("a.c", {}, {});
  Macro& macro = data->emplaceMacro("M", {a, 10, 9}, true, 0);
  macro.setText("another");
  macro.setValue(std::uint64_t{9});
  Identifier* m = data->getIdentifier("M");
  data->emplaceMacro(m, {a, 10, 9}, {}, /*isDefined=*/false, true, 0, "", true, false, false,
                     false);
  ASSERT_TRUE(macro.dirty);
  ASSERT_TRUE(saveToCompDb());
  const std::string macros = "SELECT MacroId, RefCount, Text FROM Macro ORDER BY MacroId";
  const std::string before = rows(macros);
  EXPECT_THAT(before, testing::HasSubstr("|5|7u\n"));
  EXPECT_TRUE(saveToCompDb());
  EXPECT_EQ(rows(macros), before);
  data->resetIds(db());
  EXPECT_TRUE(saveToCompDb());
  EXPECT_EQ(rows(macros), before);
  data->emplaceMacro("M", {a, 10, 9}, true, 3);
  EXPECT_TRUE(saveToCompDb());
  EXPECT_THAT(rows(macros), testing::HasSubstr("|8|another\n"));
}

/// What others have written into the file before this dataset saves the first time.
constexpr char kStored[] =
    "INSERT INTO File VALUES (1, 'a.c', 1, 0, 0);"
    "INSERT INTO Identifier VALUES (1, 'f', 3, 2), (2, 'T', 2, 1), (3, 'v', 1, 4);"
    "INSERT INTO Function VALUES (1, 1, 1, 1, 4, 1, 1, 1, 0, 1, 5);"
    "INSERT INTO Variable VALUES (1, 3, 1, 6, 1, NULL, 1, 1, 7);"
    // Nothing keeps two rows of one key out of this table.
    "INSERT INTO Type VALUES (1, 2, 0, 0, 0, 1, 2, 1, 4, 3, 1), (2, 2, 0, 0, 0, 1, 2, 1, 4, 10, 2)";

// In the file a row can hold what the dataset has never loaded or found to be otherwise.
TEST_F(SaveToCompDb, Repeated_WithOrWithoutResetIds_RewritesNothingThatCountedNothing) {
  execute(kStored);
  for (const bool isLoaded : {false, true}) {
    openAgain();
    data->setDataNeededForDbLink();
    EXPECT_TRUE(!isLoaded || data->loadFromDB(/*fromCompDb=*/true));
    const Localization place{&data->emplaceFile("a.c", {}, {}), 4, 1};
    data->emplaceFunction(data->emplaceIdentifier("f", {}, false, 0), nullptr, place,
                          /*isDefined=*/false, /*isSpecial=*/false, EffectKind::Unknown,
                          LinkageKind::None, /*accumulate=*/false);
    data->emplaceVariable(data->emplaceIdentifier("v", {}, false, 0), {place.file, 6, 1}, nullptr,
                          /*isDefined=*/false, LinkageKind::None, /*accumulate=*/true, 0);
    ASSERT_TRUE(data->saveToCompDB());
    const std::string before = dump(compFile);
    EXPECT_THAT(before, HasSubstr("\nFunction|1|1|1|1|1|4|1|1|1|0|1|5"));
    for (const bool isReset : {false, true, true}) {
      if (isReset) data->resetIds(db());
      EXPECT_TRUE(data->saveToCompDB());
      EXPECT_EQ(dump(compFile), before) << isLoaded << isReset;
    }
  }
}

TEST_F(SaveToCompDb, Repeated_WritesWhatHasCountedSince) {
  execute(kStored);
  data->setDataNeededForDbLink();
  EXPECT_TRUE(data->loadFromDB(/*fromCompDb=*/true));
  ASSERT_TRUE(data->saveToCompDB());
  data->resetIds(db());
  const Localization place{data->getFile("a.c"), 4, 1};
  Function* const f = data->getFunction("f", place);
  Variable* const v = data->getVariable({place.file, 6, 1}, data->getIdentifier("v"));
  ASSERT_TRUE(f != nullptr && v != nullptr);
  f->setRefCount(2);
  v->setRefCount(8);
  EXPECT_TRUE(data->saveToCompDB());
  EXPECT_EQ(rows("SELECT RefCount FROM Function; SELECT RefCount FROM Variable"), "7\n8\n");
  f->setRefCount(9);
  EXPECT_TRUE(data->saveToCompDB());
  EXPECT_EQ(rows("SELECT RefCount FROM Function"), "9\n");
}

// Types are folded by every save, and written only when the data for linking is asked for.
TEST_F(SaveToCompDb, Repeated_WithMoreTables_WritesWhatTheFirstOnlyFolded) {
  execute(kStored);
  data->setPropagateMacroInfo();
  data->emplaceType(data->emplaceIdentifier("T", {}, false, 0), false, at("a.c", 2, 1),
                    TypeKind::Tagged4, true, 100, 0, false, false);
  ASSERT_TRUE(data->saveToCompDB());
  data->resetIds(db());
  EXPECT_TRUE(saveToCompDb());
  EXPECT_EQ(rows("SELECT TypeId, RefCount FROM Type"), "1|3\n2|113\n");
}

TEST_F(SaveToCompDb, Repeated_FoldsInRowsOfOthersOnce) {
  fill();
  ASSERT_TRUE(saveToCompDb());
  execute("INSERT INTO Identifier (Name, Count, Kind) VALUES ('other', 4, 2)");
  const std::string before = dump(compFile);
  EXPECT_TRUE(saveToCompDb());
  EXPECT_TRUE(saveToCompDb());
  EXPECT_EQ(dump(compFile), before);
  ASSERT_NE(data->getIdentifier("other"), nullptr);
  EXPECT_EQ(data->getIdentifier("other")->getCount(), 4u);
}

TEST_F(SaveToCompDb, RefusedRow_IsReportedAndNothingElseTakesItsPlace) {
  execute("ALTER TABLE Function ADD COLUMN Own CHECK (DeclLineNum <> 4)");
  fill();
  EXPECT_TRUE(saveToCompDb());
  expectOneSqliteError("rc=19 (expected rc=101) CHECK constraint failed: DeclLineNum <> 4\n");
  EXPECT_EQ(function("f", at("a.c", 4, 1))->getId(), 0);
  EXPECT_EQ(rows("SELECT DeclLineNum FROM Function"), "5\n");
  EXPECT_EQ(rows("SELECT CallerId FROM CallPoint"), "0\n");
  EXPECT_EQ(db().lastFailure().table, "Function");
}

TEST_F(SaveToCompDb, TransactionThatSqliteRolledBack_CommitsNothing) {
  execute(
      "DROP TABLE Field; CREATE TABLE Field (FieldId INTEGER PRIMARY KEY, IdentifierId, "
      "DeclFileId, DeclLineNum, DeclColNum, RefCount, Own NOT NULL ON CONFLICT ROLLBACK)");
  const std::string before = dump(compFile);
  fill();
  EXPECT_FALSE(saveToCompDb());
  EXPECT_EQ(dump(compFile), before);
  expectOneSqliteError("NOT NULL constraint failed: Field.Own\n");
}

// --- A failure that is over when the save is tried again.

struct FailedSave : SaveToCompDb, testing::WithParamInterface<bool> {};

// A new file: nothing stored has joined what is in memory, so a second try gives the whole.
TEST_P(FailedSave, OfANewFile_CanBeTriedAgain) {
  const std::string expected = contentOfASave();
  failJournalAt("INSERT INTO File", compFile, /*once=*/GetParam());
  fill();
  EXPECT_FALSE(saveToCompDb());
  EXPECT_THAT(takeReports(), HasSubstr("unable to open database file"));
  letJournalBe(compFile);
  EXPECT_EQ(content(compFile), "");
  EXPECT_FALSE(Identifier::isPreLoaded || Type::isPreLoaded || File::isLoaded);
  EXPECT_TRUE(data->saveToCompDB());
  EXPECT_EQ(content(compFile), expected);
}

TEST_P(FailedSave, OfAFilledFile_IsRefusedFromThenOnWithOneReport) {
  saveFilledAndOpenAgain();
  const std::string before = dump(compFile);
  failJournalAt("UPDATE Identifier", compFile, /*once=*/GetParam());
  fill();
  EXPECT_FALSE(saveToCompDb());
  EXPECT_NE(takeReports(), "");
  letJournalBe(compFile);
  for (const bool isReset : {false, true}) {
    if (isReset) data->resetIds(db());
    EXPECT_FALSE(data->saveToCompDB());
    expectOneLine({compFile, "saveToCompDB: refused"});
  }
  EXPECT_EQ(dump(compFile), before);
  // What is in the file is whole, and another dataset extends it.
  openAgain();
  fill();
  EXPECT_TRUE(saveToCompDb());
  EXPECT_EQ(rows("SELECT Count FROM Identifier WHERE Name='var'"), "4\n");
}

INSTANTIATE_TEST_SUITE_P(Journal, FailedSave, testing::Values(false, true),
                         [](const auto& test) { return test.param ? "FailsOnce" : "Fails"; });

TEST_F(SaveToCompDb, LookUpThatFails_FailsTheSave) {
  saveFilledAndOpenAgain();
  sqlite3* const own = trace.connection();
  const std::string before = dump(compFile);
  // A look-up that cannot be made must not pass for one that found nothing.
  bool isLookUp = false;
  trace.onStatement = [&](const std::string& sql) {
    isLookUp = sql.starts_with("SELECT VariableId");
  };
  const auto stopIf = [](void* it) { return *static_cast<bool*>(it) ? 1 : 0; };
  sqlite3_progress_handler(own, 1, stopIf, &isLookUp);
  fill();
  EXPECT_FALSE(saveToCompDb());
  EXPECT_NE(takeReports(), "");
  trace.onStatement = nullptr;
  EXPECT_EQ(dump(compFile), before);
}

TEST_F(SaveToCompDb, PreLoadedMacros_AreInsertedWithoutLookUp) {
  Macro::isPreLoaded = true;
  fill();
  EXPECT_TRUE(saveToCompDb());
  const std::vector<std::string> statements = trace.take();
  EXPECT_THAT(statements, Contains(HasSubstr("INSERT INTO Macro ")));
  EXPECT_THAT(statements, Not(Contains(HasSubstr("FROM Macro WHERE"))));
}

}  // namespace
}  // namespace fe_db_tests
