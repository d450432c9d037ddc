#include <future>

#include "fe_db_fixture.h"
#include "support/cross_reference.h"

namespace fe_db_tests {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

/// Files of units, merged by the program. Runs in the test's directory.
struct Units : FeDbProgram {
  /// A file with units of these names, and a name that counts once for each.
  void unit(const std::string& file, const std::vector<std::string>& units) const {
    std::string sql =
        "INSERT INTO Identifier VALUES (1, 'x', " + std::to_string(units.size()) + ", 0);";
    for (std::size_t i = 0; i < units.size(); ++i) {
      const std::string id = std::to_string(i + 1), name = units[i];
      sql += "INSERT INTO File VALUES (" + id + ",'" + name + "',0,0,0);";
      sql += "INSERT INTO Unit VALUES (" + id + ",'" + name + "'," + id + ",'/b','cc -c " + name +
             "','/b/" + name + ".o','test','','',0);";
      sql += "INSERT INTO UnitFile VALUES (" + id + "," + id + ");";
    }
    compilationFile(path(file), sql);
  }
  void legacy(const std::string& file, const std::string& name) const {
    compilationFile(path(file), "INSERT INTO File VALUES (1,'" + name + "',0,0,0);" +
                                    "INSERT INTO Identifier VALUES (1, 'x', 1, 0)");
    keepExtensions(path(file), 0);
  }
  ProgramResult run(std::vector<std::string> words) const {
    return feDb(words, {.directory = path(".")});
  }
  ProgramResult merge(const std::string& words) const {
    std::istringstream in("merge " + words);
    return run({std::istream_iterator<std::string>(in), {}});
  }
  void merged(const std::string& words) const {
    const ProgramResult result = merge(words);
    EXPECT_EQ(result.exitCode, 0) << words;
    EXPECT_EQ(result.errors, "") << words;
  }
  std::string count(const std::string& file) const {
    return rows(path(file), "SELECT Count FROM Identifier");
  }
};

struct KnownUnitCase {
  const char* rule;
  const char* words;  ///< the target `t` has a and b; `ab`, `b`, `c`, `bc` are files of those
  int exitCode;
  const char* count;  ///< of occurrences in `t` afterwards
  const char* message = "";
};

struct KnownUnit : Units, testing::WithParamInterface<KnownUnitCase> {};

TEST_P(KnownUnit, DoesNotCountTwiceUnlessAskedTo) {
  unit("a", {"a"}), unit("b", {"b"}), unit("c", {"c"}), unit("bc", {"b", "c"});
  merged("t a b");
  merged("ab a b");
  const std::string before = dump(path("t"));
  const ProgramResult result = merge(GetParam().words);
  EXPECT_EQ(result.exitCode, GetParam().exitCode);
  EXPECT_THAT(result.errors, ContainsRegex(GetParam().message));
  EXPECT_EQ(result.errors.empty(), *GetParam().message == '\0') << result.errors;
  EXPECT_EQ(count("t"), GetParam().count);
  if (std::string(GetParam().count) == "2\n" && GetParam().exitCode == 1) {
    EXPECT_EQ(dump(path("t")), before);
  }
}

constexpr KnownUnitCase kKnownUnitCases[] = {
    {"OfTheTarget", "t b", 1, "2\n", "b: t or an earlier source already has its unit b .*/b/b.o"},
    {"OfTheTargetInAMergedFile", "t ab", 1, "2\n", "ab: .* its units a .*, b .*--skip-known"},
    {"OfAnEarlierSource", "t c bc", 1, "2\n", "bc: .*its units b .*, c "},
    {"KeepGoing", "--keep-going t b c", 1, "3\n", "1 source skipped"},
    {"SkipKnown", "--skip-known t ab c b", 0, "3\n"},
    {"SkipKnownOfAll", "--skip-known t ab", 0, "2\n"},
    {"SkipKnownInPart", "--skip-known t bc", 1, "2\n", "some of its units: b "},
    {"SkipKnownInPartKeepGoing", "--skip-known --keep-going t bc c", 1, "3\n", "1 source skipped"},
    {"Again", "--again t b bc", 0, "5\n"},
    {"Replace", "--replace t b c", 0, "2\n"},
    {"ReplaceWithTheSameUnitTwice", "--replace t b bc", 1, "2\n", "bc: .*its unit b "},
    {"AgainAndSkipKnown", "--again --skip-known t b", 2, "2\n", "excludes"}};
INSTANTIATE_TEST_SUITE_P(Cases, KnownUnit, testing::ValuesIn(kKnownUnitCases), kRuleName);

TEST_F(Units, Replace_GivesTheContentOfANewFile_AndAddsTables) {
  unit("a", {"a"}), unit("b", {"b"}), legacy("t", "old"), merged("new a b");
  execute(path("t"), "INSERT INTO MacroExpansion (MacroCall) VALUES ('old'); CREATE TABLE own (x)");
  merged("--replace t a b");
  EXPECT_EQ(outputOf({"diff", path("t"), path("new")}), "");
  EXPECT_EQ(rows(path("t"), "SELECT FileId FROM File; SELECT count(*) FROM own"), "1\n2\n0\n");
}

/// With an object the command is not compared, without one it is.
TEST_F(Units, WithoutAnObject_AreKnownByTheirCommand) {
  for (const char* name : {"a", "same", "other"}) unit(name, {"a"});
  execute(path("other"), "UPDATE Unit SET Command = 'cc -DX -c a'");
  merged("t a");
  EXPECT_EQ(merge("t other").exitCode, 1);
  for (const char* name : {"a", "same", "other"})
    execute(path(name), "UPDATE Unit SET Output = ''");
  merged("u a other");
  EXPECT_EQ(merge("u same").exitCode, 1);
  EXPECT_EQ(rows(path("u"), "SELECT count(*), sum(IsFolded) FROM Unit"), "2|2\n");
  EXPECT_EQ(outputOf({"check", path("u")}), "");
}

TEST_F(Units, TwoMergesAtOnce_TheSecondSeesTheUnitsOfTheFirst) {
  unit("a", {"a"}), unit("b", {"b"});
  for (const std::string target : {"there", "new"}) {
    if (target == "there") outputOf({"init", path(target)});
    const auto start = [&](const std::string& source) {
      return std::async(std::launch::async, [&, source] { return merge(target + " " + source); });
    };
    std::future<ProgramResult> same[] = {start("a"), start("a")}, other = start("b");
    EXPECT_EQ(same[0].get().exitCode + same[1].get().exitCode, 1) << target;
    EXPECT_EQ(other.get().exitCode, 0) << target;
    EXPECT_EQ(count(target), "2\n");
  }
}

TEST_F(Units, OfATargetThatCannotKnowThem_OneLineWarns) {
  unit("a", {"a"}), legacy("l", "l"), legacy("m", "m");
  const auto warningOf = [&](const std::string& words) {
    const ProgramResult result = merge(words);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_LE(lineCount(result.errors), 1);
    return result.errors;
  };
  EXPECT_EQ(warningOf("l m"), "");
  EXPECT_THAT(warningOf("l a"), HasSubstr("l: it lacks tables that sources have rows in (Unit, "
                                          "UnitFile)"));
  EXPECT_EQ(rows(path("l"), "SELECT count(*) FROM sqlite_schema WHERE name = 'Unit'"), "0\n");
  EXPECT_EQ(run({"index", "l", "--extensions"}).exitCode, 0);
  EXPECT_THAT(warningOf("l a"), HasSubstr("l: it had rows but no units before"));
  EXPECT_EQ(merge("l a").exitCode, 1);
}

TEST_F(Units, IndexExtensions_AddsTheTablesThatInitMakes_Once) {
  legacy("l", "l"), outputOf({"init", path("new")});
  EXPECT_EQ(outputOf({"index", path("l")}), "");
  const std::string without = dump(path("l"));
  EXPECT_THAT(without, Not(HasSubstr("UnitFile")));
  for (int i = 0; i < 2; ++i) EXPECT_EQ(outputOf({"index", path("l"), "--extensions"}), "");
  EXPECT_EQ(outputOf({"index", path("new")}), "");
  const std::string schema = "SELECT sql FROM sqlite_schema WHERE sql NOT NULL ORDER BY name";
  EXPECT_EQ(rows(path("l"), schema), rows(path("new"), schema));
}

/// A foreign file may lack any one of the tables; every program does without it.
TEST_F(Units, OfAFileThatLacksOneTable_EveryProgramTakesTheRest) {
  unit("a", {"a"}), unit("b", {"b"});
  for (unsigned i = 0; i < 5; ++i) {
    const std::string file = "lacks" + std::to_string(i), all = outputOf({"dump", path("b")});
    std::filesystem::copy_file(path("b"), path(file));
    keepExtensions(path(file), ~(1U << i));
    const std::string dumped = outputOf({"dump", path(file)});
    EXPECT_EQ(dumped.substr(0, dumped.find("Unit\t")), all.substr(0, all.find("Unit\t")));
    EXPECT_EQ(outputOf({"check", path(file)}), "");
    EXPECT_EQ(outputOf({"stats", path(file)}).find(std::string("\n") + kExtensions[i] + ' '),
              std::string::npos);
    EXPECT_EQ(outputOf({"diff", path(file), path(file)}), "");
    EXPECT_EQ(outputOf({"index", path(file)}), "");
    merged("from" + std::to_string(i) + " " + file + " a");
    EXPECT_EQ(merge(file + " a").exitCode, 0);
    EXPECT_EQ(count(file), "2\n");
  }
}

TEST_F(Units, AreListedAndCompared) {
  unit("a", {"a"}), unit("ab", {"a", "b"}), legacy("l", "l");
  EXPECT_EQ(outputOf({"stats", "--units", path("ab")}), "a\t/b/a.o\ttest\t\nb\t/b/b.o\ttest\t\n");
  EXPECT_THAT(outputOf({"stats", "--units", "--json", path("a")}),
              HasSubstr(R"("file":"a","directory":"/b","output":"/b/a.o","command":"cc -c a")"));
  expectRefusal({"stats", "--units", path("l")}, "it has no table Unit");
  const ProgramResult diff = feDb({"diff", "--table", "Unit", path("a"), path("ab")});
  EXPECT_EQ(diff.exitCode, 1);
  EXPECT_THAT(diff.output, ContainsRegex("^\\+Unit\tName=b\tMainFileId=b\t[^\n]*\n$"));
}

TEST_F(Units, Check_FindsDamageOfTheFiveTables) {
  unit("a", {"a"});
  execute(
      path("a"),
      "INSERT INTO Unit SELECT 2, Name, MainFileId, Directory, '', Output, '', '', '', 0 FROM "
      "Unit; INSERT INTO UnitFile VALUES (9, 1), (1, 1); INSERT INTO Include VALUES (1,1,NULL,1);"
      "INSERT INTO Reference VALUES (16,1,1,1,1,1), (2,5,1,1,1,1), (4,0,1,1,1,'x');"
      "INSERT INTO Property VALUES (3,1,1,7,'')");
  EXPECT_EQ(feDb({"check", path("a")}).output,
            "Unit row 2: the same MainFileId, Directory, Output, Command as row 1\n"
            "UnitFile row 2: UnitId references Unit row 9, which does not exist\n"
            "UnitFile row 3: the same UnitId, FileId as row 1\n"
            "Include row 1: IncludedFileId is NULL but must reference a row of File\n"
            "Reference row 1: EntityKind 16 is of no table\n"
            "Reference row 2: EntityId references Function row 5, which does not exist\n"
            "Reference row 3: EntityId is 0 but must reference a row of Variable\n"
            "Reference row 3: Roles is text, not an integer\n"
            "Property row 1: EntityKind 3 is of no table\n"
            "Property row 1: OwnerId references Type row 7, which does not exist\n");
}

/// Nothing of the five is traced, and their rows change nothing that is printed of the others.
TEST_F(Units, Traces_AndTableSizes_AreThoseOfFilesWithoutThem) {
  const auto traced = [&](bool hasExtensions) {
    for (const char* name : {"a", "b", "t"}) std::filesystem::remove(path(name));
    unit("a", {"a"}), unit("b", {"b"}), legacy("t", "t");
    if (hasExtensions) {
      EXPECT_EQ(run({"index", "--extensions", "t"}).exitCode, 0);
    } else {
      EXPECT_EQ(run({"index", "t"}).exitCode, 0);
      for (const char* name : {"a", "b"}) keepExtensions(path(name), 0);
    }
    const ProgramResult result =
        feDb({"merge", "--jobs=1", "--again", "--debug", "--no-index", "t", "a", "b"},
             {.directory = path("."), .environment = {{"FE_DB_DEBUG", "3"}}});
    EXPECT_EQ(result.exitCode, 0);
    return std::pair(result.output.substr(0, result.output.find("t: ")), result.errors);
  };
  const auto [sizes, trace] = traced(true);
  EXPECT_THAT(trace, HasSubstr("INSERT INTO File"));
  EXPECT_EQ(std::pair(sizes, trace), traced(false));
}

}  // namespace
}  // namespace fe_db_tests
