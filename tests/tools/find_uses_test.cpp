#include <algorithm>

#include "fe_db_fixture.h"

namespace fe_db_tests {
namespace {

using testing::HasSubstr;

/// What a recorder stores of:
///
///   shape.h: #pragma once
///            namespace geo { struct Shape { virtual int area(); int size; }; }
///   round.h: #include "shape.h"
///            namespace geo { struct Round : Shape { int area() override; }; }
///   main.cc: #include "round.h"
///            int geo::Shape::area() { return size; }
///            int main() { geo::Round r; r.size = r.area(); }
constexpr char kCode[] = R"sql(
INSERT INTO File VALUES (1, '/p/main.cc', 1, 2, 0), (2, '/p/round.h', 2, 2, 0), (3, '/p/shape.h', 2, 2, 0);
INSERT INTO Identifier (IdentifierId, Name, Count, Kind) VALUES
  (1, 'main', 1, 2), (2, '_ZN3geo5Shape4areaEv', 1, 2), (3, 'area', 1, 2),
  (4, '_ZN3geo5Round4areaEv', 1, 2), (5, 'Shape', 1, 1), (6, 'Round', 1, 1), (7, 'size', 1, 64),
  (8, 'GEO', 1, 8);
INSERT INTO Function VALUES
  (1, 1, 1, 1, 3, 5, 1, 1, 2, 1, 0), (2, 2, 3, 3, 2, 44, 0, 0, 2, 1, 0),
  (3, 2, 3, 1, 2, 17, 1, 0, 2, 1, 0), (4, 4, 3, 2, 2, 44, 0, 0, 2, 1, 0);
INSERT INTO Type VALUES
  (1, 5, 0, 0, 0, 3, 2, 24, 64, 2, 0), (2, 6, 0, 0, 0, 2, 2, 24, 64, 1, 0);
INSERT INTO Field VALUES (1, 7, 3, 2, 56, 2);
INSERT INTO Macro (MacroId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount, Text,
                   IsObjectLike) VALUES (1, 8, 3, 9, 9, 1, '1', 1);
INSERT INTO CallPoint VALUES (1, 1, 3, 39, 1, 1, 4);
INSERT INTO Unit (UnitId, Name, MainFileId, Directory, Command, Output, Recorder, Options, Digest)
  VALUES (1, 'main.cc', 1, '/p', 'g++ -c main.cc', '/p/main.o', 'fe_db_record', 'references=all', 'd1');
INSERT INTO UnitFile (UnitId, FileId) VALUES (1, 1), (1, 2), (1, 3);
INSERT INTO Include (IncludingFileId, LineNum, IncludedFileId, Kind) VALUES (1, 1, 2, 1), (2, 1, 3, 1);
INSERT INTO Reference (EntityKind, EntityId, FileId, LineNum, ColNum, Roles) VALUES
  (2, 2, 2, 2, 44, 64), (2, 4, 1, 3, 39, 4), (1, 1, 2, 2, 32, 32), (1, 2, 1, 3, 19, 16),
  (1, 1, 1, 2, 10, 16), (64, 1, 1, 2, 33, 1), (64, 1, 1, 3, 30, 2), (8, 1, 1, 4, 8, 512);
INSERT INTO Property (EntityKind, EntityId, Flags, OwnerId, Scope) VALUES
  (2, 2, 160, 1, 'geo::Shape'), (2, 3, 160, 1, 'geo::Shape'), (2, 4, 96, 2, 'geo::Round'),
  (1, 1, 0, NULL, 'geo'), (1, 2, 0, NULL, 'geo'), (64, 1, 0, 1, 'geo::Shape');
)sql";

struct UsesCase {
  const char* rule;
  std::vector<std::string> question;
  std::string answer;
};

struct FindUses : FeDbProgram, testing::WithParamInterface<UsesCase> {
  std::string ask(std::vector<std::string> question) const {
    question.insert(question.begin(), {"find", path("x.db")});
    return outputOf(question);
  }
  void SetUp() override { compilationFile(path("x.db"), kCode); }
};

TEST_P(FindUses, AnswersWithAndWithoutIndexes) {
  EXPECT_EQ(ask(GetParam().question), GetParam().answer);
  outputOf({"index", path("x.db")});
  EXPECT_EQ(ask(GetParam().question), GetParam().answer);
}

// clang-format off
const std::string kRoundArea =
    "/p/round.h:2:44: function geo::Round::area() [id=_ZN3geo5Round4areaEv linkage=external"
    " effect=unknown refs=1 flags=virtual,overrides]\n";

INSTANTIATE_TEST_SUITE_P(Cases, FindUses, testing::Values(
    UsesCase{"OfAField", {"uses", "geo::Shape::size"},
             "/p/main.cc:2:33: use geo::Shape::size [of=field roles=read]\n"
             "/p/main.cc:3:30: use geo::Shape::size [of=field roles=write]\n"},
    UsesCase{"OfARole", {"uses", "size", "--role", "write", "--count"}, "1\n"},
    UsesCase{"OfATypeInAFile", {"uses", "Shape", "--file", "round.h"},
             "/p/round.h:2:32: use geo::Shape [of=type roles=base]\n"},
    UsesCase{"OfOneOfTwoFunctions", {"uses", "Round::area"},
             "/p/main.cc:3:39: use geo::Round::area() [of=function roles=call]\n"},
    UsesCase{"OfAMacro", {"uses", "GEO"}, "/p/main.cc:4:8: use GEO [of=macro roles=conditional]\n"},
    UsesCase{"Members", {"members", "Shape"},
             "/p/main.cc:2:17: function geo::Shape::area() [id=_ZN3geo5Shape4areaEv linkage=external"
             " defined effect=unknown refs=0 flags=virtual,overridden]\n"
             "/p/shape.h:2:44: function geo::Shape::area() [id=_ZN3geo5Shape4areaEv linkage=external"
             " effect=unknown refs=0 flags=virtual,overridden]\n"
             "/p/shape.h:2:56: field geo::Shape::size [owner=Shape refs=2]\n"},
    UsesCase{"Overrides", {"overrides", "geo::Shape::area()"}, kRoundArea},
    UsesCase{"OverridesOfNothing", {"overrides", "geo::Round::area()"}, ""},
    UsesCase{"Includers", {"includers", "shape.h"}, "/p/round.h:1: include /p/shape.h [by=quoted]\n"},
    UsesCase{"IncludersAsATree", {"includers", "shape.h", "--depth", "5"},
             "/p/shape.h\n  /p/round.h  /p/round.h:1\n    /p/main.cc  /p/main.cc:1\n"},
    UsesCase{"IncludesAsATree", {"includes", "/p/main.cc", "--depth", "1"},
             "/p/main.cc\n  /p/round.h  /p/main.cc:1\n"},
    UsesCase{"IncludesInOtherFiles", {"includes", "main.cc", "--file", "round.h"}, ""},
    UsesCase{"Units", {"units"}, "/p/main.cc: unit main.cc [directory=/p output=/p/main.o]\n"},
    UsesCase{"UnitsOfAFile", {"units", "shape.h", "--count"}, "1\n"}),
    kRuleName);
// clang-format on

TEST_F(FindUses, CandidatesAreListed) {
  const ProgramResult result = feDb({"find", path("x.db"), "uses", "area", "--count"});
  EXPECT_EQ(result.output, "2\n");
  EXPECT_THAT(result.errors, HasSubstr("\"area\" is 2 things, all of which are answered for: "
                                       "function geo::Round::area(), function geo::Shape::area()"));
}

TEST_F(FindUses, Plans_AreEscaped) {
  execute(path("x.db"), "CREATE INDEX \"a\x1b[31m\" ON Reference (EntityId)");
  EXPECT_THAT(ask({"uses", "GEO", "--explain"}), HasSubstr("a\\x1b[31m"));
}

TEST_F(FindUses, Json_ListsRoles) {
  EXPECT_THAT(ask({"uses", "Shape", "--json", "--limit", "1"}),
              HasSubstr(R"("name":"geo::Shape","of":"type","roles":["type"]})"));
}

TEST_F(FindUses, UnitsWithoutReferencesAreReported) {
  execute(path("x.db"),
          "INSERT INTO Unit (UnitId, Name, Options) VALUES (2, 'b.cc', 'references=none')");
  const ProgramResult result = feDb({"find", path("x.db"), "uses", "GEO", "--count"});
  EXPECT_EQ(result.output, "1\n");
  EXPECT_THAT(result.errors, HasSubstr("1 of 2 units were recorded without references"));
}

TEST_F(FindUses, OfANameOfVeryManyThings) {
  execute(path("x.db"),
          "INSERT INTO Identifier (IdentifierId, Name) VALUES (99, 'm');"
          "WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n LIMIT 1000)"
          " INSERT INTO Field (FieldId, IdentifierId, DeclLineNum) SELECT i, 99, i FROM n;"
          "INSERT INTO Property (EntityKind, EntityId, Flags, Scope)"
          " SELECT 64, FieldId, 0, 's' || FieldId FROM Field WHERE FieldId >= 100;"
          "INSERT INTO Reference (EntityKind, EntityId, FileId, LineNum, ColNum, Roles)"
          " SELECT 64, FieldId, 1, FieldId, 1, 1 FROM Field WHERE FieldId >= 100");
  const ProgramResult result = feDb({"find", path("x.db"), "uses", "m", "--count"});
  EXPECT_EQ(result.output, "1000\n");
  EXPECT_THAT(result.errors, HasSubstr("\"m\" is 1000 things"));
  EXPECT_EQ(ask({"uses", "s777::m"}), "/p/main.cc:777:1: use s777::m [of=field roles=read]\n");
}

/// With indexes, nothing is read from end to end for a question about one thing.
TEST_F(FindUses, PlansHaveNoScan) {
  outputOf({"index", path("x.db")});
  const std::vector<std::string> questions[] = {{"uses", "Shape"},
                                                {"callers", "Round::area"},
                                                {"callees", "main"},
                                                {"members", "Shape"},
                                                {"overrides", "Shape::area"},
                                                {"includers", "shape.h"},
                                                {"includes", "main.cc"},
                                                {"definition", "Shape::area"},
                                                {"functions", "--name", "Shape::area"},
                                                {"fields", "--name", "size"},
                                                {"types", "--min-length", "4"}};
  for (std::vector<std::string> question : questions) {
    SCOPED_TRACE(question.front());
    question.push_back("--explain");
    const std::string plan = ask(question);
    std::string scans;
    std::istringstream lines(plan);
    for (std::string line; std::getline(lines, line);) {
      // The names that are asked for are a list; whether there is any reference needs one row.
      const bool isList = line.find("SCAN CONSTANT ROW") != std::string::npos ||
                          line.find("SCAN n") != std::string::npos ||
                          line.find("SCAN Reference") != std::string::npos;
      if (line.find("SCAN ") != std::string::npos && !isList) scans += line + '\n';
    }
    EXPECT_EQ(scans, "") << plan;
  }
}

}  // namespace
}  // namespace fe_db_tests
