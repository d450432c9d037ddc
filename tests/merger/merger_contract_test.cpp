#include <stdexcept>
#include <thread>

#include "fe_db/compilation_data.h"
#include "merge_fixture.h"

namespace fe_db_tests {
namespace {

// clang-format off
/// A row in every merged table.
constexpr char kRows[] =
    "INSERT INTO File VALUES (5,'a.h',1,2,0); INSERT INTO Identifier VALUES (5,'x',3,4);"
    "INSERT INTO Function VALUES (5,5,5,5,1,1,1,0,2,1,9); INSERT INTO Label VALUES (5,5,5,6,6);"
    "INSERT INTO CallPoint VALUES (5,5,2,2,1,5,5); INSERT INTO EnumConstant VALUES (5,5,5,3,3);"
    "INSERT INTO Type VALUES (5,5,0,1,0,5,4,4,4,1,2); INSERT INTO TypeReference VALUES (5,5);"
    "INSERT INTO Macro VALUES (5,5,5,7,7,1,5,0,1,0,0,0,''); INSERT INTO Field VALUES (5,5,5,5,5,1);"
    "INSERT INTO Variable VALUES (5,5,5,8,8,5,1,1,1);"
    "INSERT INTO ExternalIdentifier VALUES (5,5,1,5)";

struct Case : NamedCase {
  std::string sql;
};
struct Merger : MergeTest, testing::WithParamInterface<Case> {
  const std::string target = file("target.db", kRows), source = file("source.db", kRows);
};
struct UnreadableSource : Merger {};

TEST_P(UnreadableSource, IsNotFoldedAndItsTargetNotRewritten) {
  !GetParam().sql.empty() ? execute(source, GetParam().sql)
                            : std::filesystem::resize_file(source, 10 * 32'768);
  const std::string before = dump(target);
  Loaded merger(target, /*isTarget=*/true), damaged(source);
  EXPECT_TRUE(damaged.db.hasFailed() && !damaged.db.lastFailure().reason.empty());
  takeReports();
  merger.mergeCompilationTables(damaged);
  EXPECT_THAT(takeReports(), testing::HasSubstr(source));
  EXPECT_FALSE(rewrite(merger));
  EXPECT_THAT(takeReports(), testing::HasSubstr(target));
  merger.beginTransaction();
  EXPECT_TRUE(merger.db.execute("DELETE FROM Label"));
  merger.commitTransaction();
  EXPECT_NE(takeReports(), "");
  EXPECT_EQ(dump(target), before);
}

INSTANTIATE_TEST_SUITE_P(Cases, UnreadableSource, testing::Values(
    Case{"Truncated", ""}, Case{"TableMissing", "DROP TABLE Label"},
    Case{"ColumnMissing", "ALTER TABLE Type DROP COLUMN RefTagCount"},
    Case{"RowIdZero", "UPDATE Field SET FieldId=0"},
    Case{"DamagedPage", "PRAGMA writable_schema=ON; UPDATE sqlite_schema SET rootpage=(SELECT "
         "rootpage FROM sqlite_schema WHERE tbl_name='File' AND type='index') WHERE name='Label'"}),
    caseName);

/// Labels of one line exclude each other, and the clause decides what becomes of the second.
std::string labelsUnique(const std::string& clause) {
  return "CREATE TABLE Own (LabelId INTEGER PRIMARY KEY, IdentifierId, DeclFileId, DeclLineNum "
         "UNIQUE ON CONFLICT " + clause + ", DeclColNum); INSERT INTO Own SELECT LabelId, "
         "IdentifierId, DeclFileId, DeclLineNum, DeclColNum FROM Label; "
         "DROP TABLE Label; ALTER TABLE Own RENAME TO Label";
}

struct RefusedRow : Merger {};

TEST_P(RefusedRow, FailsTheTransaction) {
  execute(target, GetParam().sql);
  execute(source, "UPDATE File SET Path='b.h'");
  const std::string before = dump(target);
  EXPECT_FALSE(merge(target, {source}));
  EXPECT_NE(takeReports(), "");
  EXPECT_EQ(dump(target), before);
}

INSTANTIATE_TEST_SUITE_P(Cases, RefusedRow, testing::Values(
    Case{"UniqueIndex", "CREATE UNIQUE INDEX Own ON Label (DeclLineNum)"},
    Case{"Rollback", labelsUnique("ROLLBACK")}, Case{"Ignored", labelsUnique("IGNORE")},
    Case{"Replaced", labelsUnique("REPLACE")},
    Case{"IdThatIsNoRowId", "CREATE TABLE Copy AS SELECT * FROM Field; DROP TABLE Field; "
         "ALTER TABLE Copy RENAME TO Field"},
    Case{"NoIdLeft", "UPDATE sqlite_sequence SET seq=9223372036854775807"}), caseName);

// clang-format on

TEST_F(Merger, TriggersOfTheTarget_ChangeNothing) {
  execute(target,
          "CREATE TRIGGER D AFTER INSERT ON Label BEGIN DELETE FROM Field; END;"
          "CREATE TRIGGER I BEFORE INSERT ON Type BEGIN SELECT RAISE(IGNORE); END;"
          "CREATE TRIGGER K BEFORE DELETE ON Type BEGIN SELECT RAISE(IGNORE); END");
  EXPECT_TRUE(merge(target, {source}));
  EXPECT_EQ(rows(target, "SELECT (SELECT count(*) FROM Field), (SELECT count(*) FROM Type)"),
            "1|1\n");
}

TEST_F(Merger, MergedIntoItselfOrTwice_IsReportedAndDoesNothing) {
  Loaded merger(target, /*isTarget=*/true), other(source);
  merger.mergeCompilationTables(other);
  merger.mergeCompilationTables(other);
  merger.mergeCompilationTables(merger);
  EXPECT_EQ(lineCount(takeReports()), 2);
  EXPECT_TRUE(rewrite(merger));
  EXPECT_EQ(rows(target, "SELECT Count FROM Identifier; SELECT RefCount FROM Field"), "9\n2\n");
}

TEST_F(Merger, NewIdsAreAboveAllEverGiven_AndMacroUsesStay) {
  execute(target,
          "UPDATE sqlite_sequence SET seq=1000; INSERT INTO MacroInvocation (MacroId) VALUES (5);"
          "INSERT INTO MacroInvocationCodeOrigin (FileId) VALUES (5);"
          "INSERT INTO MacroExpansion (FileId) VALUES (5)");
  execute(source, "UPDATE Macro SET MacroId=9000, DeclLineNum=1");
  EXPECT_TRUE(merge(target, {source}));
  EXPECT_EQ(rows(target,
                 "SELECT sum(MacroId) FROM Macro; SELECT F.FileId, IdentifierId, U.MacroId, "
                 "O.FileId, E.FileId FROM File F, Identifier, MacroInvocation U, "
                 "MacroInvocationCodeOrigin O, MacroExpansion E"),
            "2003\n1001|1001|5|5|5\n");
}

// The order of rows is open to the model of the random merges.
TEST_F(Merger, MacrosOfAName_KeepTheOrderOfTheirGroup) {
  const std::string columns =
      "DELETE FROM Macro; INSERT INTO Macro (IdentifierId, DeclLineNum) VALUES ";
  execute(target, columns + "(5, 1), (5, 2), (5, 3)");
  execute(source, columns + "(5, 4), (5, 5), (5, 6)");
  EXPECT_TRUE(merge(target, {source}));
  EXPECT_EQ(
      rows(target, "SELECT group_concat(DeclLineNum) FROM (SELECT * FROM Macro ORDER BY MacroId)"),
      "1,5,6,4,3,2\n");
}

TEST_F(Merger, MergedFileMergedAgain_CountsItsFieldsAgain) {
  const std::string field =
      "INSERT INTO Identifier VALUES (1, 'x', 2, 0); INSERT INTO Field "
      "(IdentifierId) VALUES (1)";
  const std::string a = file("a.db", field), part = file("part.db", ""), top = file("top.db", "");
  EXPECT_TRUE(merge(part, {a, a}) && merge(top, {part}));
  EXPECT_EQ(rows(part, "SELECT Count FROM Identifier"), "6\n");
  EXPECT_EQ(rows(top, "SELECT Count FROM Identifier"), "7\n");
}

TEST_F(Merger, TablesThatTheProcessHasLoaded_AreReadAgainInEachThread) {
  const auto data = orvalesca::databases_merger::CompilationData::newInstance(source, "");
  data->setDataNeededForDbLink();
  EXPECT_TRUE(data->getCompDb().quick_connect(/*readOnly=*/true));
  EXPECT_TRUE(data->loadFromDB(/*fromCompDb=*/true));
  std::optional<Loaded> first;
  std::thread other([&] { first.emplace(source); });
  const Loaded second(source);
  other.join();
  Loaded merger(target, /*isTarget=*/true);
  merger.mergeCompilationTables(*first);
  merger.mergeCompilationTables(second);
  EXPECT_TRUE(rewrite(merger));
  EXPECT_EQ(rows(target, "SELECT RefCount FROM Type; SELECT RefCount FROM Macro"), "3\n3\n");
}

TEST_F(Merger, NeverOpened_IsDestroyedSilently) {
  CompilationDataMerger merger(path("none.db"));
  EXPECT_THROW(CompilationDataMerger(""), std::invalid_argument);
}

}  // namespace
}  // namespace fe_db_tests
