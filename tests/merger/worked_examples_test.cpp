#include "merge_fixture.h"

namespace fe_db_tests {
namespace {

/// In each file: the files 1 a.h and 2 b.h, the names 1 x, counted twice, and 3 "".
struct Example : NamedCase {
  const char* target;
  std::vector<const char*> sources;
  const char *query, *expected;
};
struct WorkedExample : MergeTest, testing::WithParamInterface<Example> {
  std::string fileOf(const std::string& name, const std::string& sql) {
    return file(name,
                "INSERT INTO File VALUES (1,'a.h',1,1,0),(2,'b.h',1,1,0);"
                "INSERT INTO Identifier VALUES (1,'x',2,0),(3,'',0,0);" +
                    sql);
  }
};

TEST_P(WorkedExample, Merged) {
  const std::string target = fileOf("target.db", GetParam().target);
  std::vector<std::string> sources;
  for (const char* sql : GetParam().sources) {
    sources.push_back(fileOf("s" + std::to_string(sources.size()), sql));
  }
  EXPECT_TRUE(merge(target, sources));
  takeReports();
  EXPECT_EQ(rows(target, GetParam().query), GetParam().expected);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, WorkedExample, testing::Values(
    Example{"FieldThatTheTargetKnows_CountsForItsName", "INSERT INTO Field VALUES (1,1,1,1,1,7)",
        {"INSERT INTO Field VALUES (1,1,1,1,1,7)"},
        "SELECT Count, I.Kind, RefCount FROM Identifier I JOIN Field USING (IdentifierId)",
        "5|64|14\n"},
    Example{"DuplicatesInASource_CountOnceAndKeepTheFirstValues", "",
        {"INSERT INTO Field VALUES (3,1,1,1,1,5),(4,1,1,1,1,6),(5,1,1,2,1,0);"
         "INSERT INTO Label VALUES (1,1,1,1,1),(2,1,1,1,1)"},
        "SELECT Count, Kind, (SELECT max(RefCount) FROM Field) FROM Identifier WHERE Name='x'",
        "7|192|5\n"},
    Example{"RowIdsFarApart_AreIdsLikeAnyOther", "",
        {"INSERT INTO Identifier VALUES (9223372036854775807,'far',1,0);"
         "INSERT INTO Field VALUES (-7,9223372036854775807,1,1,1,3),(4611686018427387904,1,1,2,1,4)"},
        "SELECT Name, RefCount FROM Field JOIN Identifier USING (IdentifierId) ORDER BY Name",
        "far|3\nx|4\n"},
    Example{"EmptyName_MayBeThatOfAFieldAlone", "",
        {"INSERT INTO Field VALUES (1,3,1,1,1,0); INSERT INTO Label VALUES (1,3,1,1,1);"
         "INSERT INTO EnumConstant VALUES (1,3,1,1,1)"},
        "SELECT Count, Kind FROM Identifier WHERE Name=''; SELECT 'Field' FROM Field;"
        "SELECT 'Label' FROM Label; SELECT 'EnumConstant' FROM EnumConstant", "1|64\nField\n"},
    Example{"MacroValue_IsTakenWhereThereIsNone",
        "INSERT INTO Macro VALUES (1,1,NULL,0,3,1,NULL,1,1,0,0,1,''),(2,1,1,2,1,1,0,1,1,0,0,0,'')",
        {"INSERT INTO Macro VALUES (1,1,NULL,0,3,2,-1,0,0,1,1,0,'s'),"
         "(2,1,1,2,1,2,5,0,0,1,1,1,'s')"},
        "SELECT RefCount, Value, ValueIsSigned, IsObjectLike, IsVariadic, IsCommandLineDefinition, "
        "IsPredefined, Text FROM Macro ORDER BY DeclLineNum", "3|-1|0|1|0|0|1|\n3|0|1|1|0|0|0|\n"},
    Example{"MacrosOfAName_KeepTheOrderOfTheirGroup",
        "INSERT INTO Macro (MacroId,IdentifierId,DeclLineNum) VALUES (1,1,1),(2,1,2),(3,1,3)",
        {"INSERT INTO Macro (MacroId,IdentifierId,DeclLineNum) VALUES (1,1,4),(2,1,5),(3,1,6)"},
        "SELECT group_concat(DeclLineNum) FROM (SELECT * FROM Macro ORDER BY MacroId)",
        "1,5,6,4,3,2\n"},
    Example{"ExternalOfAnotherKind_HasNoEntity", "INSERT INTO ExternalIdentifier VALUES (1,1,7,55)",
        {"INSERT INTO Function VALUES (5,1,1,1,1,1,0,0,2,0,0);"
         "INSERT INTO Variable VALUES (5,1,1,1,1,NULL,0,0,0);"
         "INSERT INTO ExternalIdentifier VALUES (1,3,1,5),(2,3,7,5),(3,3,-1,5),(4,1,-1,5),"
         "(5,3,0,5)"},
        "SELECT Name, E.Kind, EntityId, I.Kind FROM ExternalIdentifier E JOIN Identifier I "
        "USING (IdentifierId) ORDER BY 1,2", "|-1|0|16\n|0|1|16\n|1|1|16\nx|7|0|16\n"}), caseName);
// clang-format on

TEST_F(WorkedExample, MergedFileMergedAgain_CountsItsFieldsAgain) {
  const std::string a = fileOf("a.db", "INSERT INTO Field VALUES (1,1,1,1,1,0)");
  const std::string part = file("part.db", ""), top = file("top.db", "");
  EXPECT_TRUE(merge(part, {a, a}) && merge(top, {part}));
  EXPECT_EQ(rows(part, "SELECT max(Count) FROM Identifier"), "6\n");
  EXPECT_EQ(rows(top, "SELECT max(Count) FROM Identifier"), "7\n");
}

}  // namespace
}  // namespace fe_db_tests
