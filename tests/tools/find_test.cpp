#include <nlohmann/json.hpp>
#include <set>

#include "fe_db_fixture.h"

namespace fe_db_tests {
namespace {

using nlohmann::json;
using testing::HasSubstr;

constexpr char kCode[] = R"sql(
INSERT INTO File VALUES (1, 'src/a.c', 1, 1, 0), (2, 'src/b.h', 2, 1, 0), (3, 'lib/c.cc', 1, 2, 0);
INSERT INTO Identifier (IdentifierId, Name, Count, Kind) VALUES
  (1, 'main', 1, 2), (2, 'helper', 1, 2), (3, '_Z4workv', 1, 2), (4, 'work', 1, 2),
  (5, 'pure', 1, 2), (6, '__builtin', 1, 2), (10, 'total', 1, 4), (11, 'spare', 1, 4),
  (12, 'state', 1, 4), (13, 'idle', 1, 4), (14, 'x', 1, 4), (20, 'point', 1, 1),
  (21, 'loner', 1, 1), (22, 'klass', 1, 1), (23, 'point_t', 1, 1), (24, 'int', 1, 1),
  (25, '<unnamed>', 1, 1), (30, 'LIMIT', 1, 8), (31, 'GUARD', 1, 8), (32, 'SUM', 1, 8),
  (33, 'NDEBUG', 1, 8), (40, 'RED', 1, 32), (41, 'out', 1, 128), (42, 'äöüäöü', 1, 128);
INSERT INTO Function VALUES
  (1, 1, 1, 1, 3, 5, 1, 1, 2, 1, 0), (2, 2, 2, 2, 1, 6, 0, 0, 2, 1, 4),
  (3, 2, 2, 1, 10, 6, 1, 0, 1, 1, 1), (4, 3, 4, 3, 2, 6, 1, 0, 9, 1, 4),
  (5, 5, 5, 2, 2, 5, 0, 0, 2, 1, 0), (6, 5, 5, 3, 20, 5, 1, 0, 0, 2, 0),
  (7, 5, 5, 1, 30, 5, 1, 0, 0, 7, 0), (8, 6, 6, NULL, 0, 3, 0, 0, 2, 0, 0);
INSERT INTO Type VALUES
  (1, 20, 0, 0, 1, 2, 7, 8, 64, 0, 0), (2, 20, 0, 0, 0, 1, 1, 8, 64, 0, 2),
  (3, 21, 0, 1, 0, 1, 2, 8, 128, 0, 0), (4, 22, 0, 0, 0, 3, 1, 7, 256, 1, 0),
  (5, 23, 0, 0, 0, 1, 2, 16, 512, 0, 0), (6, 24, 0, 0, 0, NULL, 0, 0, 0, 0, 0),
  (7, 25, 1, 0, 0, 1, 4, 1, 4, 0, 0);
INSERT INTO Variable VALUES
  (1, 10, 2, 5, 12, 2, 0, 1, 0), (2, 10, 1, 6, 5, 2, 1, 1, 2), (3, 11, 1, 7, 5, 6, 1, 1, 0),
  (4, 12, 1, 8, 12, 6, 0, 2, 0), (5, 12, 1, 9, 12, 6, 1, 2, 3), (6, 13, 1, 9, 30, NULL, 1, 2, 0),
  (7, 14, 1, 11, 7, NULL, 1, 0, 0), (8, 14, 3, 3, 7, NULL, 1, 0, 1);
INSERT INTO Macro (MacroId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount, Text,
                   IsObjectLike) VALUES
  (1, 30, 2, 9, 9, 0, '5', 1), (2, 31, 2, 2, 9, 0, '', 1), (3, 32, 2, 10, 9, 3, 'a+b', 0),
  (4, 33, NULL, 0, 1, 0, '1', 1);
INSERT INTO Field VALUES (1, 14, 1, 1, 20, 0), (2, 11, 1, 1, 25, 1);
INSERT INTO EnumConstant VALUES (1, 40, 1, 4, 7);
INSERT INTO Label VALUES (1, 41, 1, 15, 1), (2, 42, 1, 16, 1);
INSERT INTO CallPoint VALUES
  (1, 1, 12, 3, 1, 1, 2), (2, 1, 13, 3, 0, 1, 5), (3, 3, 4, 3, 1, 4, 3), (4, 1, 14, 1, 0, 1, 8),
  (5, 1, 11, 3, 1, 3, 3);
INSERT INTO ExternalIdentifier VALUES (1, 2, 1, 3), (2, 10, 0, 2), (3, 3, 1, 4), (4, 6, -1, 0);
)sql";

struct FindCase {
  const char* rule;
  std::vector<std::string> question;
  std::string answer;
};

struct Find : FeDbProgram {
  std::string file() { return compilationFile(path("x.db"), kCode); }
  static std::string find(const std::string& file, std::vector<std::string> question) {
    question.insert(question.begin(), {"find", file});
    return outputOf(question);
  }
};

struct FindAnswer : Find, testing::WithParamInterface<FindCase> {};

TEST_P(FindAnswer, IsPrinted_WithAndWithoutIndexes) {
  const std::string x = file();
  EXPECT_EQ(find(x, GetParam().question), GetParam().answer);
  outputOf({"index", x});
  EXPECT_EQ(find(x, GetParam().question), GetParam().answer);
}

// clang-format off
const std::string kMain =
    "src/a.c:3:5: function main [linkage=external defined special effect=unknown]\n";
const std::string kHelperH =
    "src/b.h:1:6: function helper [linkage=external effect=unknown]\n";
const std::string kHelper =
    "src/a.c:10:6: function helper [linkage=external defined effect=some]\n";
const std::string kWork =
    "lib/c.cc:2:6: function work() [id=_Z4workv linkage=external defined effect=9]\n";
const std::string kBuiltin = "-:0:3: function __builtin [linkage=none effect=unknown]\n";
const std::string kHelperCalls =
    "lib/c.cc:4:3: call work() -> helper [value=used]\n"
    "src/a.c:11:3: call helper -> helper [value=used]\n"
    "src/a.c:12:3: call main -> helper [value=used]\n";
const std::string kTotalH = "src/b.h:5:12: variable total [linkage=external type=point refs=0]\n";
const std::string kTotal =
    "src/a.c:6:5: variable total [linkage=external defined type=point refs=2]\n";
const std::string kPoint = "src/a.c:1:8: type point [form=struct refs=0 tagRefs=2]\n";
const std::string kLoner = "src/a.c:2:8: type loner [form=union local refs=0 tagRefs=0]\n";
const std::string kPointT = "src/a.c:2:16: type point_t [form=typedef refs=0 tagRefs=0]\n";
const std::string kLimit = "src/b.h:9:9: macro LIMIT [shape=object refs=0]\n";
const std::string kGuard = "src/b.h:2:9: macro GUARD [shape=object empty refs=0]\n";

INSTANTIATE_TEST_SUITE_P(Cases, FindAnswer, testing::Values(
    FindCase{"FunctionsByIdentifier", {"functions", "--name", "helper"}, kHelper + kHelperH},
    FindCase{"FunctionsBySourceName", {"functions", "--name", "work"}, kWork},
    FindCase{"FunctionsByMangledName", {"functions", "--name", "_Z4workv"}, kWork},
    FindCase{"FunctionsByAll", {"functions", "--linkage", "external", "--defined", "--file", "src*"},
             kMain + kHelper},
    FindCase{"LinkageByNumber", {"functions", "--linkage", "7", "--count"}, "1\n"},
    FindCase{"NoFileComesFirst", {"functions", "--min-length", "6", "--limit", "2"},
             kBuiltin + kWork},
    FindCase{"VariablesByName", {"variables", "--name", "total"}, kTotal + kTotalH},
    FindCase{"VariablesByTheRowsCount", {"variables", "--ref-count", "2"}, kTotal},
    FindCase{"VariablesByCountAndLinkage", {"variables", "--ref-count", "3", "--linkage", "internal"},
             "src/a.c:9:12: variable state [linkage=internal defined type=int refs=3]\n"},
    FindCase{"Types", {"types", "--file", "src/a.c"},
             kPoint + kLoner + kPointT + "src/a.c:4:1: type <unnamed> [form=enum unnamed refs=0 tagRefs=0]\n"},
    FindCase{"CompleteTypes", {"types", "--name", "point", "--defined"}, kPoint},
    FindCase{"MacrosByCount", {"macros", "--ref-count", "3"},
             "src/b.h:10:9: macro SUM [shape=function refs=3]\n"},
    FindCase{"Fields", {"fields"}, "src/a.c:1:20: field x [refs=0]\nsrc/a.c:1:25: field spare [refs=1]\n"},
    FindCase{"EnumConstants", {"enum-constants"}, "src/a.c:4:7: enum-constant RED\n"},
    FindCase{"LengthInCharacters", {"labels", "--min-length", "6"}, "src/a.c:16:1: label äöüäöü\n"},
    FindCase{"LengthOfANamedOne", {"labels", "--name", "äöüäöü", "--min-length", "7"}, ""},
    FindCase{"CallsOfEitherSideOnce", {"calls", "--name", "helper"}, kHelperCalls},
    FindCase{"Externals", {"externals"},
             "-:0:0: external __builtin [entity=none]\nlib/c.cc:2:6: external _Z4workv [entity=function]\n"
             "src/a.c:6:5: external total [entity=variable]\n"
             "src/a.c:10:6: external helper [entity=function]\n"},
    FindCase{"ExternalsByName", {"externals", "--name", "total"},
             "src/a.c:6:5: external total [entity=variable]\n"},
    FindCase{"UnusedMacrosStandInAFile", {"unused", "macros"}, kGuard + kLimit},
    FindCase{"UnusedTypesHaveNoTag", {"unused", "types"}, kPointT},
    FindCase{"UnusedTags_CountsOfTheForwardDeclarationAndOfTheBareName", {"unused", "tags"}, kLoner},
    FindCase{"UnusedVariables_CountsOfAllRowsOfOneVariable", {"unused", "variables"},
             "src/a.c:7:5: variable spare [linkage=external defined type=int refs=0]\n"
             "src/a.c:9:30: variable idle [linkage=internal defined refs=0]\n"
             "src/a.c:11:7: variable x [linkage=none defined refs=0]\n"},
    FindCase{"UnusedOfSeveralKinds", {"unused", "fields", "macros", "--file", "*/?.[ch]", "--limit", "2"},
             "src/a.c:1:20: field x [refs=0]\n" + kGuard},
    FindCase{"UnusedOfAllKinds", {"unused", "--count"}, "8\n"},
    FindCase{"NoEffectCallsOnceEach", {"no-effect-calls"},
             "src/a.c:13:3: call main -> pure [value=dropped]\n"},
    FindCase{"LongNames", {"long-names", "--min-length", "7"}, kBuiltin + kWork + kPointT},
    FindCase{"DefinitionOfAFunction", {"definition", "helper"}, kHelper},
    FindCase{"DefinitionBySourceName", {"definition", "work"}, kWork},
    FindCase{"DefinitionOfAType", {"definition", "point"}, kPoint},
    FindCase{"DefinitionOfAMacro", {"definition", "LIMIT"}, kLimit},
    FindCase{"DeclarationsOfAVariable", {"declarations", "total"}, kTotalH},
    FindCase{"DeclarationsOfAType", {"declarations", "point"},
             "src/b.h:7:8: type point [form=struct incomplete refs=0 tagRefs=0]\n"},
    FindCase{"DeclarationsOfAMacro", {"declarations", "LIMIT"}, ""},
    FindCase{"CallersThroughAnyRow", {"callers", "helper"}, kHelperCalls},
    FindCase{"CallersOfAFunctionWithoutFile", {"callers", "__builtin"},
             "src/a.c:14:1: call main -> __builtin [value=dropped]\n"},
    FindCase{"CalleesBySourceName", {"callees", "work"},
             "lib/c.cc:4:3: call work() -> helper [value=used]\n"},
    FindCase{"NobodyCalls", {"callers", "main"}, ""},
    FindCase{"NothingCounted", {"labels", "--count", "--file", "b.h"}, "0\n"},
    FindCase{"CalleesAsATree", {"callees", "main", "--depth", "3"},
             "main\n  helper  src/a.c:12:3\n    helper  src/a.c:11:3  (shown above)\n"
             "  pure  src/a.c:13:3\n  __builtin  src/a.c:14:1\n"},
    FindCase{"CallersAsATree", {"callers", "pure", "--depth", "2"},
             "pure\n  main  src/a.c:13:3\n"},
    FindCase{"FileByItsName", {"fields", "--file", "a.c", "--count"}, "2\n"},
    FindCase{"FilesBelowADirectory", {"macros", "--file", "src", "--count"}, "3\n"}), kRuleName);
// clang-format on

TEST_F(Find, Json_HasTheAttributesAsMembers) {
  const std::string x = file();
  EXPECT_EQ(find(x, {"functions", "--name", "work", "--json"}),
            R"({"version":1,"path":"lib/c.cc","line":2,"column":6,"kind":"function","name":"work",)"
            R"x("qualified":"work()",)x"
            R"("id":"_Z4workv","linkage":"external","defined":true,"special":false,"effect":"9"}
)");
  EXPECT_EQ(
      find(x, {"callers", "__builtin", "--json"}),
      R"({"version":1,"path":"src/a.c","line":14,"column":1,"kind":"call","name":"main -> __builtin",)"
      R"("caller":"main","callee":"__builtin","value":"dropped"}
)");
  EXPECT_THAT(find(x, {"types", "--name", "int", "--json"}), HasSubstr(R"("path":null,"line":0,)"));
}

TEST_F(Find, BytesThatAreNoText_StayInTheirLine) {
  const std::string x = compilationFile(
      path("x.db"),
      "INSERT INTO File VALUES (1, 'a' || char(10) || '.c', 0, 0, 0); INSERT INTO Identifier "
      "VALUES (1, CAST(x'6c09ff' AS TEXT), 0, 0); INSERT INTO Label VALUES (1, 1, 1, 2, 3)");
  EXPECT_EQ(find(x, {"labels"}), "a\\x0a.c:2:3: label l\\x09\\xff\n");
  EXPECT_EQ(json::parse(find(x, {"labels", "--json"}))["name"], "l\\x09\\xff");
}

/// What the published schema requires of the parts that are used here.
void expectSarif(const json& log) {
  EXPECT_EQ(log.at("version"), "2.1.0");
  EXPECT_THAT(log.at("$schema").get<std::string>(), HasSubstr("sarif-2.1.0"));
  ASSERT_EQ(log.at("runs").size(), 1);
  const json& run = log["runs"][0];
  std::set<std::string> rules;
  for (const json& rule : run.at("tool").at("driver").at("rules")) {
    EXPECT_TRUE(rules.insert(rule.at("id").get<std::string>()).second);
    EXPECT_TRUE(rule.at("shortDescription").at("text").is_string());
  }
  for (const json& result : run.at("results")) {
    EXPECT_TRUE(rules.contains(result.at("ruleId")));
    EXPECT_THAT(result.at("level"), testing::AnyOf("none", "note", "warning", "error"));
    EXPECT_TRUE(result.at("message").at("text").is_string());
  }
}

TEST_F(Find, Sarif_IsOneDocument) {
  execute(file(),
          "UPDATE File SET Path = '/my code/a:%ü.c' WHERE FileId = 1; UPDATE Function SET "
          "DeclColNum = 0 WHERE FunctionId = 4");
  const auto sarif = [&](std::vector<std::string> question) {
    question.push_back("--sarif");
    json log = json::parse(find(path("x.db"), question));
    expectSarif(log);
    return log.at("runs").at(0).at("results");
  };
  std::multiset<std::string> rules;
  for (const json& result : sarif({"unused"})) rules.insert(result["ruleId"]);
  EXPECT_THAT(rules, testing::ElementsAre("unused-field", "unused-macro", "unused-macro",
                                          "unused-tag", "unused-type", "unused-variable",
                                          "unused-variable", "unused-variable"));
  const json dropped = sarif({"no-effect-calls"});
  EXPECT_EQ(dropped[0]["locations"][0]["physicalLocation"].dump(),
            R"({"artifactLocation":{"uri":"file:///my%20code/a%3A%25%C3%BC.c"},)"
            R"("region":{"startColumn":3,"startLine":13}})");
  EXPECT_THAT(dropped[0]["message"]["text"].get<std::string>(), HasSubstr("main -> pure"));
  std::string places;
  for (const json& result : sarif({"long-names", "--min-length", "8", "--limit", "2"})) {
    places += result.value("locations", json()).dump() + '\n';
  }
  EXPECT_EQ(places, R"(null
[{"physicalLocation":{"artifactLocation":{"uri":"lib/c.cc"},"region":{"startLine":2}}}]
)");
  EXPECT_EQ(sarif({"unused", "macros", "--file", "lib"}), json::array());
}

// clang-format off
TEST_F(Find, WrongUsage_Is2AndSaysWhy) {
  const FindCase cases[] = {
    {"NoQuestion", {}, "QUESTION is required"},
    {"UnknownQuestion", {"function"},
     R"(unknown question "function"; did you mean "functions"? "fe_db find --help" lists them)"},
    {"OptionOfOtherKinds", {"labels", "--ref-count", "1"}, "labels: does not take --ref-count, which is for "},
    {"LimitOfATree", {"callers", "main", "--depth", "2", "--limit", "1"},
     "callers: --depth does not go with --limit"},
    {"UnknownRole", {"uses", "main", "--role", "rite"}, "unknown role \"rite\" (read, write, call"},
    {"SarifOfWhatIsNoRule", {"functions", "--sarif"}, "functions: does not take --sarif"},
    {"NoName", {"callers"}, "callers: takes exactly one NAME"},
    {"TwoNames", {"definition", "a", "b"}, "definition: takes exactly one NAME"},
    {"NameOfAKind", {"macros", "LIMIT"}, R"(macros: takes no argument, but "LIMIT" is given)"},
    {"UnusedOfNoKind", {"unused", "labels"},
     R"(unused: unknown kind "labels" (macros, types, tags, variables, fields))"},
    {"NoLength", {"long-names"}, "long-names: requires --min-length"},
    {"UnknownLinkage", {"functions", "--linkage", "weak"}, "--linkage"},
    {"NegativeCount", {"macros", "--ref-count", "-1"}, "--ref-count"},
    {"TwoForms", {"unused", "--json", "--sarif"}, "--json excludes --sarif"}};
  const std::string x = file();
  for (const auto& [rule, question, message] : cases) {
    SCOPED_TRACE(rule);
    std::vector<std::string> command = {"find", x};
    command.insert(command.end(), question.begin(), question.end());
    expectRefusal(command, message, /*exitCode=*/2);
  }
}
// clang-format on

TEST_F(Find, TheProgramNamesItsVersion_AndTheNearestSubcommandOrOption) {
  EXPECT_THAT(outputOf({"--version"}), testing::MatchesRegex("fe_db [0-9.]+\n"));
  expectRefusal({"fnd", "x"}, R"(unknown word "fnd"; did you mean "find"?)", /*exitCode=*/2);
  expectRefusal({"find", "x", "macros", "--nam", "y"},
                R"(unknown word "--nam"; did you mean "--name"? See fe_db find --help)",
                /*exitCode=*/2);
}

TEST_F(Find, WhatTheFileDoesNotHave_Is1AndNamesWhatIsNear) {
  const FindCase cases[] = {
      {"NoSuchName", {"callers", "helpr"}, R"(nothing is named "helpr"; did you mean "helper"?)"},
      {"NoSuchNameOfAKind", {"functions", "--name", "nothing"}, R"(nothing is named "nothing")"},
      {"OfAnotherKind",
       {"macros", "--name", "main"},
       R"(nothing of this kind is named "main"; there is the function main)"},
      {"InAnotherScope", {"callers", "other::work"}, "there is work()"},
      {"OtherParameters", {"callers", "work(int)"}, "there is work()"},
      {"NoSuchFile", {"macros", "--file", "b.c"}, R"(no file of it is "b.c"; did you mean "a.c")"},
      {"NoReferences", {"uses", "main"}, "uses needs the table Reference, which is empty here"},
      {"NoSuchExternal",
       {"externals", "--name", "totl"},
       R"(no external is named "totl"; did you mean "total"?)"},
      {"NobodyCountedFunctions",
       {"functions", "--ref-count", "0"},
       "functions --ref-count needs the table Reference"},
      {"NoIncludes", {"includers", "b.h"}, "includers needs the table Include"}};
  const std::string x = file();
  for (const auto& [rule, question, message] : cases) {
    SCOPED_TRACE(rule);
    std::vector<std::string> command = {"find", x};
    command.insert(command.end(), question.begin(), question.end());
    expectRefusal(command, message);
  }
}

TEST_F(Find, WrongFile_Fails) {
  const std::string pp = preprocessingFile(path("pp.db"), ""), none = path("none.db");
  expectRefusal({"find", pp, "macros"}, pp + ": it is a preprocessing database");
  expectRefusal({"find", none, "macros"}, none + ": No such file or directory");
}

// clang-format off
struct DamagedCase {
  const char* rule;
  std::string damage;
  std::vector<std::string> question;
  const char* answer;
};
struct FindInDamaged : Find, testing::WithParamInterface<DamagedCase> {};

TEST_P(FindInDamaged, PassesRowsOver_AndSaysSoOnce) {
  execute(file(), GetParam().damage);
  std::vector<std::string> words = GetParam().question;
  words.insert(words.begin(), {"find", path("x.db")});
  const ProgramResult result = feDb(words);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, GetParam().answer);
  EXPECT_THAT(result.errors, testing::MatchesRegex(
      "(orvalesca: [^\n]*\n)*fe_db: " + path("x.db") + ": damaged rows and references to them, "
      "skipped: [1-9][0-9]*; fe_db check lists them\n"));
}

INSTANTIATE_TEST_SUITE_P(Cases, FindInDamaged, testing::Values(
    DamagedCase{"CallsOfANamelessFunction",
                "UPDATE Function SET SourceNameId = NULL WHERE FunctionId = 5",
                {"calls", "--count"}, "4\n"},
    DamagedCase{"CallsOfNoFunction", "UPDATE CallPoint SET CallerId = 99 WHERE CallPointId = 2",
                {"callers", "pure"}, ""},
    DamagedCase{"Labels", "UPDATE Label SET IdentifierId = 99 WHERE LabelId = 2",
                {"labels"}, "src/a.c:15:1: label out\n"},
    DamagedCase{"MacrosByCount", "UPDATE Macro SET IdentifierId = '30x' WHERE MacroId = 1",
                {"macros", "--ref-count", "0", "--file", "src"}, kGuard.c_str()},
    DamagedCase{"UnusedTags", "UPDATE Type SET IdentifierId = NULL WHERE TypeId = 3",
                {"unused", "tags"}, ""},
    DamagedCase{"Externals", "UPDATE ExternalIdentifier SET IdentifierId = 0 WHERE EntityId > 0",
                {"externals"}, "-:0:0: external __builtin [entity=none]\n"}), kRuleName);
// clang-format on

}  // namespace
}  // namespace fe_db_tests
