#include <future>

#include "fe_db_fixture.h"

namespace fe_db_tests {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;

/// Runs in the test's directory, so that file names are short.
struct Merge : FeDbProgram {
  /// A file of its own, a name that all share, and a header whose kind tells which unit was first.
  void unit(const std::string& name, int kind = 1) const {
    const std::string files = "('" + name + ".c', 2), ('h.h', " + std::to_string(kind) + ")";
    compilationFile(path(name), "INSERT INTO File (Path, Kind) VALUES " + files +
                                    "; INSERT INTO Identifier (Name, Count) VALUES ('shared', 1)");
  }
  ProgramResult merge(Words words, const std::string& input = "") const {
    words.insert(words.begin(), "merge");
    return feDb(words, {.standardInput = input, .directory = path(".")});
  }
  std::string merged(const Words& words, const std::string& input = "") const {
    const ProgramResult result = merge(words, input);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors, "");
    return result.output;
  }
  void expectFailure(const Words& words, const std::string& message) const {
    const ProgramResult result = merge(words);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, ContainsRegex("fe_db: " + message));
  }
  std::string dumpOf(const std::string& name) const { return outputOf({"dump", path(name)}); }
  std::string indexes(const std::string& name) const {
    return rows(path(name),
                "SELECT name FROM sqlite_schema WHERE sql LIKE 'CREATE INDEX%' ORDER BY 1");
  }
  std::string files(const std::string& name) const {
    return rows(path(name), "SELECT Path, Kind FROM File ORDER BY 1; SELECT Count FROM Identifier");
  }
};

struct UsageCase {
  const char* rule;
  const char* words;
  const char* message;
  int exitCode = 2;
};

struct MergeUsage : Merge, testing::WithParamInterface<UsageCase> {};

TEST_P(MergeUsage, IsRefusedAndNothingIsTouched) {
  unit("a"), unit("b");
  fs::create_hard_link(path("a"), path("hard"));
  fs::create_symlink("a", path("soft"));
  fileHolding("blank.list", "\n\n");
  fileHolding("twice.list", "a\n./a\n");
  const std::string before = bytesOf(path("a"));
  std::istringstream words(GetParam().words);
  const ProgramResult result = merge({std::istream_iterator<std::string>(words), {}});
  EXPECT_EQ(result.exitCode, GetParam().exitCode);
  EXPECT_THAT(result.errors,
              MatchesRegex("fe_db: [^\n]*" + std::string(GetParam().message) + "[^\n]*\n"));
  EXPECT_EQ(bytesOf(path("a")), before);
  EXPECT_EQ(entries(path(".")), 6);
}

constexpr UsageCase kUsageCases[] = {{"NoTarget", "", ""},
                                     {"NoSource", "t", ""},
                                     {"ListOfBlankLines", "t @blank.list", ""},
                                     {"NothingOnStandardInput", "t -", ""},
                                     {"ListThatIsNotThere", "t @no.list", "no.list: ", 1},
                                     {"SourceTwice", "t a b a", "a and a "},
                                     {"SourceTwiceInAList", "t @twice.list", "a and ./a "},
                                     {"SourceTwiceByAHardLink", "t a hard", "a and hard "},
                                     {"SourceTwiceByASymbolicLink", "t a soft", "a and soft "},
                                     {"TargetIsASource", "./a b a", "./a and a "},
                                     {"TargetIsAHardLinkOfASource", "hard a", "hard and a "},
                                     {"TargetIsASymbolicLinkToASource", "soft a", "soft and a "}};
INSTANTIATE_TEST_SUITE_P(Cases, MergeUsage, testing::ValuesIn(kUsageCases), kRuleName);

TEST_F(Merge, TargetThatIsNotThere_IsMadeInTheStoredFormat) {
  unit("a"), merged({"t", "a"});
  EXPECT_EQ(rows(path("t"), "PRAGMA page_size; PRAGMA user_version"), "32768\n1\n");
  EXPECT_EQ(entries(path(".")), 2);
}

TEST_F(Merge, ListsAndNames_AreMergedInTheOrderGiven_WhatTheTargetHoldsFirst) {
  unit("a b", 5), unit("c", 6), unit("d", 7), unit("t4", 8);
  const std::string list = fileHolding("list", "\na b\n\n./c");  // no newline at its end
  const std::string windows = fileHolding("windows", "\r\na b\r\n./c\r\n");
  merged({"t1", "@list", "d"}), merged({"t2", "-", "d"}, list), merged({"t3", "d", "@list"});
  merged({"t4", "c"});
  EXPECT_EQ(files("t1"), "a b.c|2\nc.c|2\nd.c|2\nh.h|5\n3\n");
  merged({"t5", "@windows", "d"}), merged({"t6", "-", "d"}, windows);
  for (const char* same : {"t2", "t5", "t6"}) EXPECT_EQ(files(same), files("t1"));
  EXPECT_EQ(files("t3"), "a b.c|2\nc.c|2\nd.c|2\nh.h|7\n3\n");
  EXPECT_EQ(files("t4"), "c.c|2\nh.h|8\nt4.c|2\n2\n");
}

TEST_F(Merge, Indexes_AreMadeUnlessForbidden_OthersStay) {
  unit("a");
  outputOf({"init", path("with")});  // has some
  execute(path("with"), "CREATE INDEX A_Own ON File (Kind)");
  fs::copy_file(path("with"), path("without"));
  merged({"--index", "with", "a"}), merged({"--no-index", "without", "a"});
  merged({"new with", "a"}), merged({"--no-index", "new without", "a"});
  EXPECT_THAT(indexes("new with"), AllOf(HasSubstr("_Key_Index"), HasSubstr("_Identifier_")));
  EXPECT_EQ(indexes("new without"), "");
  EXPECT_EQ(indexes("with"), "A_Own\n" + indexes("new with"));
  EXPECT_EQ(indexes("without"), "A_Own\n");
  for (const char* name : {"without", "new without"}) EXPECT_EQ(dumpOf(name), dumpOf("new with"));
}

TEST_F(Merge, Output_IsASummary_BehindTheSizesOfTheTablesOnDemand) {
  unit("a"), unit("b");
  const std::string summary = "[^\n]*2 sources[^\n0-9]*6 facts[^\n0-9]*4 [^\n]*\n";
  EXPECT_THAT(merged({"t", "a", "b"}), MatchesRegex(summary));
  EXPECT_THAT(merged({"--debug", "t2", "a", "b"}),
              MatchesRegex("File:3\nIdentifiers:1\nFunctions:0\nCallPoints:0\nEnumConstants:0\n"
                           "Type:0\nFields:0\nLabels:0\nMacros:0\nTypeReferences:0\nVariables:0\n"
                           "ExternalIdentifier:0\n" +
                           summary));
  EXPECT_THAT(outputOf({"merge", "--help"}), AllOf(HasSubstr("@LIST"), HasSubstr("--jobs")));
}

TEST_F(Merge, TargetThatAnotherWriterHolds_IsLeftAloneWhenTheWaitIsOver) {
  unit("a"), unit("t");
  const std::string before = bytesOf(path("t"));
  const RawConnection writer(path("t"));
  writer.rows("BEGIN IMMEDIATE");
  expectFailure({"--wait", "0", "t", "a"}, "t: [^\n]*locked");
  EXPECT_TRUE(bytesOf(path("t")) == before);
}

TEST_F(Merge, RowsLeftOut_AreOneLinePerTable_AndFailAStrictMerge) {
  const std::string names = "INSERT INTO Identifier (Name) VALUES ('x'), (''); INSERT INTO Label ";
  compilationFile(path("x"), names +
                                 "(IdentifierId, DeclFileId) VALUES (1, 7), (1, 8); "
                                 "INSERT INTO Function (IdentifierId) VALUES (1), (1)");
  compilationFile(path("unnamed"), names + "(IdentifierId) VALUES (2), (2)");
  const ProgramResult plain = merge({"t", "x"}), strict = merge({"--strict", "s", "x"});
  EXPECT_EQ(plain.exitCode, 0);
  EXPECT_EQ(strict.exitCode, 1);
  EXPECT_THAT(plain.errors,
              MatchesRegex(".* x: [^\n]*Function[^\n]*\n[^\n]* x: [^\n]*Label[^\n]*\n"));
  EXPECT_EQ(strict.errors, plain.errors);
  EXPECT_EQ(dumpOf("t"), dumpOf("s"));
  EXPECT_EQ(merge({"--strict", "u", "unnamed"}).exitCode, 0);
}

/// The tables are emptied and written anew, and what they are made as decides what is left.
struct LossCase {
  std::string rule;  ///< the table, before a '_' if there is one
  std::string sql;
  const char* reason;
};

constexpr char kNoRowId[] = "Id is not the row id \\(not declared INTEGER PRIMARY KEY\\)";

LossCase copied(const std::string& table) {
  return {table,
          "CREATE TABLE T AS SELECT * FROM " + table + "; DROP TABLE " + table +
              "; ALTER TABLE T RENAME TO " + table,
          kNoRowId};
}

LossCase label(const std::string& rule, const std::string& id, const std::string& end,
               const char* reason = kNoRowId) {
  return {"Label_" + rule,
          "DROP TABLE Label; CREATE " + id + ", IdentifierId, DeclFileId, DeclLineNum, DeclColNum" +
              end,
          reason};
}

struct MergeLoss : Merge, testing::WithParamInterface<LossCase> {};

TEST_P(MergeLoss, IsRefusedBeforeAnyWork_AsIsAnIndex) {
  const auto& [rule, sql, reason] = GetParam();
  const std::string table = rule.substr(0, rule.find('_'));
  unit("a"), unit("t");
  execute(path("t"), sql);
  const std::string before = bytesOf(path("t"));
  for (const Words& words : std::vector<Words>{{"merge", "t", "a"}, {"index", "t"}}) {
    const ProgramResult result = feDb(words, {.directory = path(".")});
    EXPECT_EQ(result.exitCode, 1) << words[0];
    EXPECT_THAT(result.errors, MatchesRegex("fe_db: t: its table " + table +
                                            " cannot be rewritten without data loss: [^\n]*" +
                                            reason + "; merge the file into a new one instead\n"));
    EXPECT_TRUE(bytesOf(path("t")) == before);
    EXPECT_EQ(entries(path(".")), 2);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, MergeLoss,
    testing::Values(
        copied("File"), copied("Identifier"), copied("Macro"), copied("MacroInvocation"),
        copied("Type"), copied("Variable"), copied("Function"), copied("ExternalIdentifier"),
        copied("Field"), copied("EnumConstant"), copied("Label"), copied("CallPoint"),
        label("Int", "TABLE Label (LabelId INT PRIMARY KEY", ")"),
        label("Descending", "TABLE \"LABEL\" (labelID INTEGER PRIMARY KEY DESC", ")"),
        label("OfSeveral", "TABLE Label (LabelId INTEGER",
              ", PRIMARY KEY (LabelId, IdentifierId))"),
        label("OtherKey", "TABLE Label (LabelId INTEGER, Key INTEGER PRIMARY KEY", ")"),
        label("WithoutRowId", "TABLE Label (LabelId INTEGER PRIMARY KEY", ") WITHOUT ROWID"),
        label("Virtual", "VIRTUAL TABLE Label USING fts5 (LabelId", ")", "it is a virtual table"),
        LossCase{"TypeReference_OwnRowId", "ALTER TABLE TypeReference ADD COLUMN \"ROWID\" INTEGER",
                 "rowid is not the .*"}),
    kRuleName);

TEST_F(Merge, SourceWhoseTablesHaveNoRowIds_IsReadAllTheSame) {
  unit("a");
  for (const char* table : {"File", "Identifier", "Function", "Label"}) {
    execute(path("a"), copied(table).sql);
  }
  merged({"new", "a"});
  EXPECT_EQ(files("new"), files("a"));
}

struct MergeKeeps : Merge, testing::WithParamInterface<LossCase> {};

TEST_P(MergeKeeps, WhatHasRowIds_HoweverItIsDeclared) {
  unit("a"), unit("t");
  fs::copy_file(path("t"), path("plain"));
  execute(path("t"), GetParam().sql);
  for (const char* target : {"t", "plain"}) {
    execute(path(target), "INSERT INTO Label VALUES (7, 1, 1, 2, 3)");
    merged({target, "a"});
  }
  EXPECT_EQ(dumpOf("t"), dumpOf("plain"));
  EXPECT_EQ(rows(path("t"), "SELECT typeof(LabelId) FROM Label"), "integer\n");
}

INSTANTIATE_TEST_SUITE_P(
    Cases, MergeKeeps,
    testing::Values(
        label("QuotedNames", "TABLE \"label\" (\"LABELID\" \"INTEGER\" PRIMARY KEY", ")"),
        label("TableConstraint", "TABLE Label (LabelId INTEGER", ", PRIMARY KEY (LabelId DESC))"),
        LossCase{"TypeReference_NamedRowId",
                 "DROP TABLE TypeReference; CREATE TABLE TypeReference (rowid INTEGER "
                 "PRIMARY KEY, DeclaredType, ReferencedType)",
                 ""}),
    kRuleName);

TEST_F(Merge, TriggersOfATarget_AreReportedOnce) {
  unit("a"), unit("t");
  for (const char* event : {"INSERT", "DELETE"}) {
    execute(path("t"), std::string("CREATE TRIGGER ") + event + "_T AFTER " + event +
                           " ON Label BEGIN DELETE FROM Field; END");
  }
  const ProgramResult result = merge({"t", "a"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.errors, MatchesRegex("fe_db: t: triggers do not run in a merge: 2; "
                                          "rebuild what they maintain, [^\n]*\n"));
  EXPECT_EQ(merged({"t2", "t"}).find("trigger"), std::string::npos);  // sources are only read
}

TEST_F(Merge, TwoAtOnce_AreBothStored_InSomeOrder) {
  unit("a", 5), unit("b", 6), unit("old", 7);
  for (const bool isNew : {true, false, true, false}) {
    fs::remove(path("t"));
    if (!isNew) fs::copy_file(path("old"), path("t"));
    auto other = std::async(std::launch::async, [&] { merged({"t", "a"}); });
    merged({"t", "b"});
    other.get();
    EXPECT_THAT(files("t"), MatchesRegex(isNew ? "a.c.2\nb.c.2\nh.h.[56]\n2\n"
                                               : "a.c.2\nb.c.2\nh.h.7\nold.c.2\n3\n"));
  }
}

std::string manyLabels(int number) {
  return "INSERT INTO Identifier (Name) VALUES ('x'); WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL "
         "SELECT i + 1 FROM n LIMIT " +
         std::to_string(number) +
         ") INSERT INTO Label "
         "(IdentifierId, DeclLineNum, DeclColNum) SELECT 1, i, i FROM n";
}

/// What SQLite leaves of a write that fails in the middle, a journal too, is taken back at once.
TEST_F(Merge, OntoADiskThatGetsFull_LeavesTheFileAsItWasAndNothingBesideIt) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "processes are slow there; what is looked for is in the other pass";
#endif
  unit("t");
  execute(path("t"), "PRAGMA page_size=4096; VACUUM");  // more pages, more writes
  compilationFile(path("a"), manyLabels(3000));
  fs::create_directory(path("d"));
  int failed = 0;
  for (int call = 20, exitCode = 1; exitCode == 1; call += 40, ++failed) {
    fs::copy_file(path("t"), path("d/t"), fs::copy_options::overwrite_existing);
    const ProgramResult result =
        feDb({"merge", path("d/t"), path("a")},
             {.environment = {{"LD_PRELOAD", FAULT_POINTS},
                              {"FAULTS_BELOW", path("d")},
                              {"FAULTS_CACHE", "8"},
                              {"FAULTS_LOG", fileHolding("log", std::string(8, '\0'))},
                              {"FAULTS_HOW", "ENOSPC+"},
                              {"FAULTS_AT", std::to_string(call)}}});
    exitCode = result.exitCode;
    if (exitCode == 0) break;
    EXPECT_EQ(exitCode, 1) << call;
    EXPECT_THAT(result.errors, HasSubstr("fe_db: " + path("d/t") + ": ")) << call;
    EXPECT_TRUE(bytesOf(path("d/t")) == bytesOf(path("t"))) << call;
    EXPECT_EQ(entries(path("d")), 1) << call;
  }
  EXPECT_GT(failed, 5);
}

/// Whatever the limit: the program says what has no room, and the target is whole or as it was.
TEST_F(Merge, WithoutMemory_NamesTheFile) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer needs more address space than any limit here";
#endif
  unit("t");
  compilationFile(path("a"), manyLabels(200'000));
  const std::string before = bytesOf(path("t"));
  int refused = 0;
  for (int megabytes = 24; refused == 0 || megabytes < 64; megabytes += 4) {
    const ProgramResult result = runProgram(
        {"bash", "-c", "ulimit -v " + std::to_string(megabytes * 1024) + "; exec \"$0\" merge t a",
         FE_DB_PROGRAM},
        {.directory = path(".")});
    ASSERT_EQ(result.signal, 0) << megabytes;
    if (result.exitCode == 127) continue;  // not even the libraries had room
    if (result.exitCode == 0) break;
    ++refused;
    EXPECT_TRUE(bytesOf(path("t")) == before) << megabytes;
    EXPECT_THAT(result.errors, MatchesRegex("(orvalesca: [^\n]*\n|fe_db: [at]: [^\n]*\n)+"));
  }
  EXPECT_GT(refused, 0);
}

}  // namespace
}  // namespace fe_db_tests
