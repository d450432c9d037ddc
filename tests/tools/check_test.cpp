#include <sstream>

#include "fe_db_fixture.h"
#include "whole_content.h"

namespace fe_db_tests {
namespace {

struct Check : FeDbProgram {
  /// Rows in all tables, and nothing that is wrong or worth a note.
  std::string compilation(const std::string& sql = "") const {
    const std::string mend =
        "UPDATE Identifier SET Kind=iif(Name='main', 246, 19) WHERE Name<>'MAX';"
        "DELETE FROM TypeReference WHERE rowid=2;";
    return compilationFile(path("x.db"), wholeContent(1, 0) + mend + sql);
  }

  /// With names that only the compilation database has rows of, and two uses at one place.
  std::string preprocessing(const std::string& sql = "") const {
    std::string content = wholeContent(1, 0);
    content.resize(content.find("INSERT INTO Type"));
    content += "INSERT INTO MacroInvocation VALUES (2, 1, 1, 5, 9, NULL, 50, 1, 8);";
    return preprocessingFile(path("pp.db"), content + sql);
  }

  /// What it prints, with FILE for the name of the file. Findings fail, notes do not.
  static std::string checked(const std::string& file) {
    const ProgramResult result = feDb({"check", file});
    std::string text = result.output;
    while (text.find(file) != text.npos) text.replace(text.find(file), file.size(), "FILE");
    const bool isGood = testing::Matches(testing::MatchesRegex("(note: [^\n]*\n)*"))(text);
    EXPECT_EQ(result.exitCode, isGood ? 0 : 1);
    EXPECT_EQ(result.errors, "");
    return text;
  }
};

TEST_F(Check, GoodFile_PrintsNothing) {
  EXPECT_EQ(checked(preprocessing()), "");
  EXPECT_EQ(checked(compilation()), "");
  std::filesystem::copy_file(path("x.db"), path("y.db"));
  outputOf({"merge", path("merged.db"), path("x.db"), path("y.db")});
  EXPECT_EQ(checked(path("merged.db")), "");
}

// clang-format off
struct DamageCase : NamedCase {
  const char* sql;
  const char* printed;
};

struct CheckDamage : Check, testing::WithParamInterface<DamageCase> {};
TEST_P(CheckDamage, Printed) {
  EXPECT_EQ(checked(compilation(GetParam().sql)), GetParam().printed);
}

constexpr DamageCase kDamages[] = {
    {"TablesMissing", "DROP TABLE Type; DROP TABLE MacroExpansion; UPDATE Label SET DeclFileId=77",
     "FILE: it has no table MacroExpansion\nFILE: it has no table Type\n"
     "Label row 1: DeclFileId references File row 77, which does not exist\n"},
    {"ColumnsMissing", "ALTER TABLE Variable DROP COLUMN Linkage; UPDATE Variable SET TypeId=77;"
     "ALTER TABLE Label RENAME COLUMN LabelId TO Id; UPDATE Label SET Id=8, DeclFileId=77",
     "FILE: its table Variable has no column Linkage\n"
     "FILE: its table Label has no column LabelId\n"
     "Variable row 5: TypeId references Type row 77, which does not exist\n"
     "Label row 8: DeclFileId references File row 77, which does not exist\n"},
    {"PageSize", "PRAGMA page_size=4096; VACUUM", "FILE: the page size is 4096 bytes, not 32768\n"},
    {"Index", "CREATE INDEX I ON Label (DeclLineNum); PRAGMA writable_schema=1; UPDATE "
     "sqlite_schema SET sql='CREATE INDEX I ON Label (DeclColNum)' WHERE name='I'",
     "FILE: row 1 missing from index I\n"},
    {"WrongTypes", "UPDATE Macro SET Value='1u', Text=x'41' WHERE MacroId=2; UPDATE MacroExpansion "
     "SET MacroCall=NULL; UPDATE Type SET Kind=0.5 WHERE TypeId=2; UPDATE Variable SET TypeId='x', "
     "isDefined=x'01'; UPDATE CallPoint SET ColNum=NULL",
     "Macro row 2: Value is text, not an integer\nMacro row 2: Text is a blob, not text\n"
     "MacroExpansion row 1: MacroCall is NULL, not text\n"
     "Type row 2: Kind is a real number, not an integer\n"
     "Variable row 5: TypeId is text, not an integer\n"
     "Variable row 5: isDefined is a blob, not an integer\n"
     "CallPoint row 1: ColNum is NULL, not an integer\n"},
    {"Entities", "UPDATE ExternalIdentifier SET EntityId=9-Kind WHERE Kind>=0;"
     "INSERT INTO Function VALUES (9, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0);"
     "INSERT INTO Variable VALUES (8, 1, 1, 0, 0, 0, 0, 0, 0);"
     "INSERT INTO ExternalIdentifier VALUES (4, 1, 0, 0), (5, 1, 1, NULL)",
     "ExternalIdentifier row 1: EntityId references Variable row 9, which does not exist\n"
     "ExternalIdentifier row 2: EntityId references Function row 8, which does not exist\n"
     "ExternalIdentifier row 4: EntityId is 0 but must reference a row of Variable\n"
     "ExternalIdentifier row 5: EntityId is NULL, not an integer\n"},
    {"NoRowIdsBehindIds", "CREATE TABLE T AS SELECT * FROM Field; DROP TABLE Field; ALTER TABLE T "
     "RENAME TO Field; DROP TABLE Label; CREATE TABLE Label (LabelId INT PRIMARY KEY, "
     "IdentifierId, DeclFileId, DeclLineNum, DeclColNum); INSERT INTO Label VALUES (1, 1, 1, 10, 1);"
     "DROP TABLE EnumConstant; CREATE VIRTUAL TABLE EnumConstant USING rtree_i32 (EnumConstantId, "
     "IdentifierId, DeclFileId, DeclLineNum, DeclColNum);"
     "INSERT INTO EnumConstant VALUES (1, 1, 2, 7, 9);"
     "DROP TABLE TypeReference; CREATE TABLE TypeReference (RowId, DeclaredType, ReferencedType)",
     "TypeReference: rowid is not the row id (not declared INTEGER PRIMARY KEY)\n"
     "Field: FieldId is not the row id (not declared INTEGER PRIMARY KEY)\n"
     "EnumConstant: it is a virtual table\n"
     "Label: LabelId is not the row id (not declared INTEGER PRIMARY KEY)\n"},
    {"IdsAtBothEnds", "CREATE TABLE T AS SELECT 9223372036854775807*2+Kind AS FileId, Path, Kind, "
     "Lang, Huge FROM File; INSERT INTO T VALUES (-9223372036854775807-1, 'x', 0, 0, 0), "
     "(-9223372036854775807-1, 'y', 0, 0, 0), (9223372036854775807, 'z', 0, 0, 0),"
     "(9223372036854775807, 'z2', 0, 0, 0), (1, 'a', 0, 0, 0), (2, 'b', 0, 0, 0);"
     "DELETE FROM T WHERE typeof(FileId)<>'integer'; DROP TABLE File; ALTER TABLE T RENAME TO File",
     "File: FileId is not the row id (not declared INTEGER PRIMARY KEY)\n"},
    {"EqualPathsAndNames", "CREATE TABLE T (FileId INTEGER PRIMARY KEY, Path, Kind, Lang, Huge);"
     "INSERT INTO T SELECT FileId, Path, Kind, Lang, Huge FROM File; INSERT INTO T VALUES "
     "(7, 'a.c', 0, 0, 0), (9, 'A.C', 0, 0, 0), (8, 'a.c', 1, 2, 0);"
     "DROP TABLE File; ALTER TABLE T RENAME TO File;"
     "CREATE TABLE T (IdentifierId INTEGER PRIMARY KEY, Name, Count, Kind);"
     "INSERT INTO T SELECT IdentifierId, Name, Count, Kind FROM Identifier;"
     "INSERT INTO T VALUES (4, 'MAX', 0, 0), (5, 9, 0, 0);"
     "DROP TABLE Identifier; ALTER TABLE T RENAME TO Identifier",
     "File row 7: the same Path as row 1\nFile row 8: the same Path as row 1\n"
     "Identifier row 4: the same Name as row 3\nIdentifier row 5: Name is an integer, not text\n"},
    {"RowIdsFromNegativeOverZero", "UPDATE Field SET FieldId=-3, RefCount=NULL; INSERT INTO Field "
     "VALUES (0, 1, 2, 7, 8, 77), (-9, 1, 99, 7, 8, 0); UPDATE TypeReference SET rowid=0",
     "TypeReference row 0: row id 0 is reserved (it means \"no row\")\n"
     "Field row -9: DeclFileId references File row 99, which does not exist\n"
     "Field row -3: RefCount is NULL, not an integer\n"
     "Field row 0: row id 0 is reserved (it means \"no row\")\n"
     "Field row 0: the same DeclFileId, DeclLineNum, DeclColNum, IdentifierId as row -3\n"},
    {"Notes", "UPDATE MacroInvocation SET MacroId=77, FileId=77; UPDATE MacroInvocationCodeOrigin "
     "SET FileId=NULL; UPDATE ExternalIdentifier SET Kind=iif(Kind, -2, 2) WHERE Kind<>1",
     "note: MacroInvocation: 2 macro-use ids are stale since a merge renumbered their "
     "targets (expected)\n"
     "note: ExternalIdentifier row 1: Kind 2 is not -1, 0 or 1\n"
     "note: ExternalIdentifier row 3: Kind -2 is not -1, 0 or 1\n"},
    {"BitsOfNames", "UPDATE Identifier SET Kind=Kind|1024|9 WHERE Name='main'; "
     "UPDATE Identifier SET Kind=1 WHERE Name='ns::f'; DROP TABLE ExternalIdentifier",
     "FILE: it has no table ExternalIdentifier\n"
     "note: Identifier row 1: bit 1 of Kind is set, but no row of Type has the name\n"
     "note: Identifier row 1: bit 8 of Kind is set, but no row of Macro has the name\n"
     "note: Identifier row 2: bit 2 of Kind is not set, but a row of Function has the name\n"},
};

INSTANTIATE_TEST_SUITE_P(Cases, CheckDamage, testing::ValuesIn(kDamages), caseName);

/// The table that columns lead to, and whether they may be 0 or NULL.
using Reference = std::tuple<std::string, bool, std::string>;

struct CheckReference : Check, testing::WithParamInterface<Reference> {};
TEST_P(CheckReference, LeadsToARow_OrIsUnsetWhereItMayBe) {
  const auto& [target, mayBeUnset, columns] = GetParam();
  const std::string files[] = {compilation(), preprocessing()};
  std::istringstream stream(columns);
  for (std::string table, column; std::getline(stream, table, '.') && stream >> column;) {
    stream >> std::ws;
    const std::string& file = files[table.rfind("Macro", 0) == 0];
    for (const std::string value : {"99", "0", "NULL"}) {
      const std::string reason =
          value == "99" ? " references " + target + " row 99, which does not exist"
                        : " is " + value + " but must reference a row of " + target;
      const std::string expected = rows(file,
          "UPDATE " + table + " SET " + column + "=" + value + "; SELECT '" + table +
          " row ' || min(rowid) || ': " + column + reason + "' FROM " + table);
      const std::string text = checked(file);
      EXPECT_TRUE(value != "99" && mayBeUnset ? text.empty() : text.find(expected) != text.npos)
          << expected << text;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, CheckReference, testing::Values(
    Reference{"Identifier", false, "Macro.IdentifierId Type.IdentifierId Variable.IdentifierId "
        "Function.IdentifierId Function.SourceNameId ExternalIdentifier.IdentifierId "
        "Field.IdentifierId EnumConstant.IdentifierId Label.IdentifierId"},
    Reference{"File", true, "Macro.DeclFileId MacroInvocation.FileId Type.DeclFileId "
        "MacroInvocationCodeOrigin.FileId MacroExpansion.FileId Function.DeclFileId "
        "Field.DeclFileId EnumConstant.DeclFileId Label.DeclFileId CallPoint.FileId"},
    Reference{"File", false, "Variable.DeclFileId"},
    Reference{"Type", true, "TypeReference.DeclaredType TypeReference.ReferencedType "
        "Variable.TypeId"},
    Reference{"Function", false, "CallPoint.CallerId CallPoint.CalleeId"},
    Reference{"Macro", false, "MacroInvocation.MacroId"},
    Reference{"MacroInvocation", true, "MacroInvocationCodeOrigin.MacroInvocationId"}));

/// A table, and its key.
using Key = std::pair<std::string, std::string>;

struct CheckKey : Check, testing::WithParamInterface<Key> {};
TEST_P(CheckKey, EqualInAllItsColumns_NoneOfThemNull) {
  const auto& [table, key] = GetParam();
  const std::string file =
      compilation("CREATE TEMP TABLE T AS SELECT * FROM " + table + " LIMIT 1;" +
                  (table == "TypeReference" ? "" : "UPDATE T SET " + table + "Id=9;") +
                  "INSERT INTO " + table + " SELECT * FROM T");
  EXPECT_EQ(checked(file), rows(file, "SELECT '" + table + " row ' || max(rowid) || ': the same " +
                                          key + " as row ' || min(rowid) FROM " + table));
  std::istringstream columns(key);
  for (std::string column; std::getline(columns >> std::ws, column, ',');) {
    std::filesystem::copy_file(file, path(column));
    execute(path(column), "UPDATE " + table + " SET " + column + "=NULL");
    EXPECT_THAT(checked(path(column)), testing::Not(testing::HasSubstr(": the same "))) << column;
  }
}

constexpr char kPlace[] = "DeclFileId, DeclLineNum, DeclColNum, IdentifierId";
INSTANTIATE_TEST_SUITE_P(Cases, CheckKey, testing::Values(
    Key("Macro", kPlace), Key("MacroInvocation", "MacroId, ppLineNum, ppStartColNum"),
    Key("Type", "DeclFileId, DeclLineNum, DeclColNum, IdentifierId, Kind"),
    Key("TypeReference", "DeclaredType"), Key("Variable", kPlace), Key("Function", kPlace),
    Key("ExternalIdentifier", "IdentifierId, Kind, EntityId"), Key("Field", kPlace),
    Key("EnumConstant", kPlace), Key("Label", kPlace),
    Key("CallPoint", "FileId, LineNum, ColNum, CallerId")),
    [](const auto& test) { return test.param.first; });

TEST_F(Check, BitsInAPreprocessingFile_OnlyThatOfMacrosIsJudged) {
  EXPECT_EQ(checked(preprocessing("UPDATE Identifier SET Kind=255-Kind WHERE Name<>'main'")),
      "note: Identifier row 2: bit 8 of Kind is set, but no row of Macro has the name\n"
      "note: Identifier row 3: bit 8 of Kind is not set, but a row of Macro has the name\n");
}

// clang-format on
TEST_F(Check, DamagedBytes_AreAFindingAndTheRestIsChecked) {
  const std::string file = compilation("UPDATE CallPoint SET CalleeId=77");
  const std::string page = rows(file, "SELECT rootpage-1 FROM sqlite_schema WHERE name='File'");
  std::fstream(file, std::ios::in | std::ios::out | std::ios::binary)
      .seekp(std::stol(page) * 32768)
      .write(std::string(500, '\xff').data(), 500);
  EXPECT_THAT(checked(file),
              testing::MatchesRegex(
                  "(FILE: [^\n]*\n)+File: the check is incomplete: [^\n]*\n"
                  "CallPoint row 1: CalleeId references Function row 77, which does not exist\n"));
}

TEST_F(Check, Json_HasOneObjectALine) {
  const std::string kinds = "UPDATE ExternalIdentifier SET Kind=7 WHERE Kind=-1;";
  const std::string file = compilation(kinds + "DROP TABLE Field; UPDATE Label SET DeclFileId=7");
  EXPECT_EQ(feDb({"check", "--json", file}).output,
            R"({"severity":"finding","table":null,"row":null,"reason":"it has no table Field"}
{"severity":"note","table":"ExternalIdentifier","row":3,"reason":"Kind 7 is not -1, 0 or 1"}
{"severity":"finding","table":"Label","row":1,)"
            R"("reason":"DeclFileId references File row 7, which does not exist"}
)");
}

TEST_F(Check, Text_HasEachTokenAndExpansionWhereItsRowSays) {
  const std::string text = fileHolding("x.i", "int i =\n  (1+2) ;\n");
  const std::string file = preprocessingFile(
      path("x.pp.db"),
      "INSERT INTO File VALUES (1,'a.c',1,1,0); INSERT INTO Identifier VALUES (1,'M',1,8);"
      "INSERT INTO Macro VALUES (1,1,1,1,9,1,NULL,0,1,0,0,0,'(1+2)');"
      "INSERT INTO MacroInvocation VALUES (1,1,1,2,9,NULL,2,3,8);"
      "INSERT INTO MacroInvocationCodeOrigin VALUES (1,1,11,1,0,1,0,'('),(1,1,12,1,1,2,0,'1');"
      "INSERT INTO MacroExpansion VALUES ('M','(1+2)',1,2,9,2,3)");
  EXPECT_EQ(outputOf({"check", "--text", text, file}), "");
  execute(file,
          "UPDATE MacroInvocationCodeOrigin SET EndOffsetColumnInInvocation=3 WHERE rowid=2;"
          "INSERT INTO MacroExpansion VALUES ('M','2',1,2,9,2,5),('M','(1+2)',1,2,9,9,3)");
  const ProgramResult result = feDb({"check", "--text", text, file});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output,
            "MacroInvocationCodeOrigin row 2: '1' is not in line 2, column 4, where the text has "
            "'1+'\n"
            "MacroExpansion row 2: '2' is not in line 2, column 5, where the text has '+'\n"
            "MacroExpansion row 3: '(1+2)' is not in line 9, column 3, where the text has ''\n");
  execute(file,
          "UPDATE MacroInvocationCodeOrigin SET OffsetColumnInInvocation=-9, "
          "EndOffsetColumnInInvocation=9223372036854775807 WHERE rowid=1");
  EXPECT_THAT(feDb({"check", "--text", text, file}).output, testing::HasSubstr("row 1: '('"));
  for (const std::string& none : {path("none.i"), path(".")}) {
    expectRefusal({"check", "--text", none, file}, "fe_db: " + none + ": cannot read it: ");
  }
}

}  // namespace
}  // namespace fe_db_tests
