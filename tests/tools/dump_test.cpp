#include <nlohmann/json.hpp>
#include <sstream>

#include "fe_db_fixture.h"
#include "whole_content.h"

namespace fe_db_tests {
namespace {

using testing::HasSubstr;

// The tabs are written as blanks here.
constexpr char kWholeContent[] =
    R"(File Path=a.c Kind=1 Lang=2 Huge=0
File Path=c:/b.h Kind=3 Lang=2 Huge=1
Identifier Name=MAX Count=2 Kind=8
Identifier Name=main Count=7 Kind=2
Identifier Name=ns::f Count=1 Kind=3
Macro IdentifierId=MAX DeclFileId=NULL DeclLineNum=0 DeclColNum=3 RefCount=0 Value=NULL ValueIsSigned=0 IsObjectLike=1 IsVariadic=0 IsCommandLineDefinition=0 IsPredefined=1 Text=
Macro IdentifierId=MAX DeclFileId=c:/b.h DeclLineNum=4 DeclColNum=9 RefCount=2 Value=-1 ValueIsSigned=0 IsObjectLike=0 IsVariadic=1 IsCommandLineDefinition=0 IsPredefined=0 Text=(a)
MacroInvocation MacroId=c\x3a/b.h:4:9:MAX FileId=a.c LineNum=5 ColNum=6 ppFileId=NULL ppLineNum=50 ppStartColNum=1 ppEndColNum=8
MacroInvocationCodeOrigin FileId=NULL LineNum=0 ColNum=1 MacroInvocationId=c\x3a/b.h:4:9:MAX:50:1 OffsetColumnInInvocation=2 EndOffsetColumnInInvocation=3 IsParameter=0 TokenString=b
MacroInvocationCodeOrigin FileId=c:/b.h LineNum=4 ColNum=11 MacroInvocationId=c\x3a/b.h:4:9:MAX:50:1 OffsetColumnInInvocation=0 EndOffsetColumnInInvocation=1 IsParameter=1 TokenString=a
MacroExpansion MacroCall=MAX(a) ExpandedCode=(a) FileId=a.c LineNum=5 ColNum=6 PpLineNum=50 PpColNum=1
Type IdentifierId=ns::f Unnamed=0 Local=0 Incomplete=1 DeclFileId=c:/b.h DeclLineNum=1 DeclColNum=8 Kind=4 RefCount=2 RefTagCount=1
Type IdentifierId=ns::f Unnamed=0 Local=0 Incomplete=1 DeclFileId=c:/b.h DeclLineNum=1 DeclColNum=8 Kind=512 RefCount=2 RefTagCount=1
TypeReference DeclaredType=c\x3a/b.h:1:8:ns\x3a\x3af:512 ReferencedType=NULL
TypeReference DeclaredType=c\x3a/b.h:1:8:ns\x3a\x3af:512 ReferencedType=c\x3a/b.h:1:8:ns\x3a\x3af:4
Variable IdentifierId=main DeclFileId=a.c DeclLineNum=2 DeclColNum=3 TypeId=c\x3a/b.h:1:8:ns\x3a\x3af:4 isDefined=1 Linkage=1 RefCount=9
Function IdentifierId=ns::f SourceNameId=main DeclFileId=a.c DeclLineNum=3 DeclColNum=5 isDefined=1 isSpecial=0 Effect=2 Linkage=1 RefCount=4
ExternalIdentifier IdentifierId=main Kind=0 EntityId=a.c:2:3:main
ExternalIdentifier IdentifierId=ns::f Kind=-1 EntityId=0
ExternalIdentifier IdentifierId=ns::f Kind=1 EntityId=a.c:3:5:ns\x3a\x3af
Field IdentifierId=main DeclFileId=c:/b.h DeclLineNum=7 DeclColNum=8 RefCount=0
EnumConstant IdentifierId=main DeclFileId=c:/b.h DeclLineNum=7 DeclColNum=9
Label IdentifierId=main DeclFileId=a.c DeclLineNum=10 DeclColNum=1
CallPoint FileId=a.c LineNum=11 ColNum=12 IsValueUsed=0 CallerId=a.c:3:5:ns\x3a\x3af CalleeId=a.c:3:5:ns\x3a\x3af
)";

std::string withBlanks(std::string text) {
  std::replace(text.begin(), text.end(), '\t', ' ');
  return text;
}

struct Dump : FeDbProgram {};

TEST_F(Dump, EveryTable_WithKeysInPlaceOfIds) {
  const std::string file = compilationFile(path("x.db"), wholeContent(1, 0));
  EXPECT_EQ(withBlanks(outputOf({"dump", file})), kWholeContent);
}

TEST_F(Dump, PreprocessingFile_HasSixTables) {
  const std::string file = preprocessingFile(
      path("x.db"),
      "INSERT INTO File VALUES (3, 'a', 1, 1, 0); INSERT INTO MacroExpansion VALUES "
      "('M', 'm', 3, 1, 2, 3, 4)");
  EXPECT_EQ(withBlanks(outputOf({"dump", file})),
            "File Path=a Kind=1 Lang=1 Huge=0\n"
            "MacroExpansion MacroCall=M ExpandedCode=m FileId=a LineNum=1 ColNum=2 PpLineNum=3 "
            "PpColNum=4\n");
}

TEST_F(Dump, TableThatTheKindOfFileLacks_Fails) {
  const std::string file = preprocessingFile(path("x.db"), "");
  expectRefusal({"dump", "--table", "Label", file}, file + ": it has no table Label");
}

TEST_F(Dump, Json_HasNumbersNullsAndTheTextsOfThePlainForm) {
  const std::string file = compilationFile(
      path("x.db"),
      "INSERT INTO Macro VALUES (1, 0, 77, -5, 2.5, 'x', NULL, 1, 1, 0, 0, 0, '\"\\'), "
      "(2, 0, NULL, 0, 9e999, 0, 0, 0, 0, 0, 0, 0, '7')");
  std::istringstream lines(outputOf({"dump", "--json", file}));
  std::string parsed;
  for (std::string line; std::getline(lines, line);) {
    parsed += nlohmann::json::parse(line).dump() + "\n";
  }
  // Parsing has sorted the names.
  EXPECT_EQ(
      parsed,
      R"({"DeclColNum":2.5,"DeclFileId":"!77","DeclLineNum":-5,"IdentifierId":0,"IsCommandLineDefinition":0,"IsObjectLike":1,"IsPredefined":0,"IsVariadic":0,"RefCount":"!text x","Text":"\"\\x5c","Value":null,"ValueIsSigned":1,"table":"Macro"})"
      "\n"
      R"({"DeclColNum":"inf","DeclFileId":null,"DeclLineNum":0,"IdentifierId":0,"IsCommandLineDefinition":0,"IsObjectLike":0,"IsPredefined":0,"IsVariadic":0,"RefCount":0,"Text":"7","Value":0,"ValueIsSigned":0,"table":"Macro"})"
      "\n");
}

struct ValueCase {
  const char* rule;
  const char* stored;  ///< as an SQL expression
  const char* printed;
};

/// Each value alone in its table.
struct DumpValue : Dump {
  void expectPrinted(const std::string& setUp, const std::string& table, const std::string& column,
                     const std::vector<ValueCase>& cases) const {
    const std::string file = compilationFile(path("x.db"), setUp), before = "\t" + column + "=";
    for (const auto& [rule, stored, printed] : cases) {
      execute(file, "DELETE FROM " + table + "; INSERT INTO " + table + " (" + column +
                        ") VALUES (" + stored + ")");
      const std::string line = outputOf({"dump", "--table", table, file});
      EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1) << rule;
      EXPECT_THAT(line, HasSubstr(before + printed + "\t")) << rule;
    }
  }
};

// No type is declared in what follows, so that every value is stored as it is. What is escaped:
// escaped_text_test.cpp.
TEST_F(DumpValue, OfAText) {
  expectPrinted(
      "DROP TABLE Identifier; CREATE TABLE Identifier (IdentifierId INTEGER PRIMARY KEY, Name, "
      "Count, Kind)",
      "Identifier", "Name",
      {{"Empty", "''", ""},
       {"ColonOutsideAKey", "'ns::f'", "ns::f"},
       {"Nul", "'a' || char(0) || 'b'", "a\\x00b"},
       {"Backslash", "'\\x41'", "\\x5cx41"},
       {"NoUtf8", "CAST(x'41e282' AS TEXT)", "A\\xe2\\x82"},
       {"Null", "NULL", "NULL"},
       {"TextNull", "'NULL'", "\\x4eULL"},
       {"TextBeginningLikeNull", "'NULLS'", "NULLS"},
       {"LeadingMark", "'!integer 5'", "\\x21integer 5"},
       {"Integer", "5", "!integer 5"},
       {"TextOfDigits", "'5'", "5"},
       {"Real", "-1.5", "!real -1.5"},
       {"WholeReal", "2.0", "!real 2.0"},
       {"Blob", "x'0041ff'", "!blob \\x00A\\xff"},
       {"EmptyBlob", "x''", "!blob "}});
}

TEST_F(DumpValue, OfAReference) {
  expectPrinted(
      "DROP TABLE File; CREATE TABLE File (FileId INTEGER PRIMARY KEY, Path, Kind, Lang, Huge); "
      "INSERT INTO File (FileId, Path) VALUES (1, '0'), (2, 'NULL'), (3, '!4'), (4, NULL), "
      "(5, 12), (6, 'a:b'), (0, 'zero'), (7, x'00');"
      "DROP TABLE Label; CREATE TABLE Label (LabelId INTEGER PRIMARY KEY, IdentifierId, "
      "DeclFileId, DeclLineNum, DeclColNum)",
      "Label", "DeclFileId",
      {{"Zero", "0", "0"},
       {"ToTheTextZero", "1", "\\x30"},
       {"Null", "NULL", "NULL"},
       {"ToTheTextNull", "2", "\\x4eULL"},
       {"ToATextThatLooksDangling", "3", "\\x214"},
       {"ToNull", "4", "!null"},
       {"ToANumber", "5", "!integer 12"},
       {"ToABlob", "7", "!blob \\x00"},
       {"KeyOfOnePart", "6", "a:b"},
       {"Dangling", "77", "!77"},
       {"DanglingNegative", "-9223372036854775808", "!-9223372036854775808"},
       {"Text", "'x:y'", "!text x:y"},
       {"Real", "1.0", "!real 1.0"}});
}

TEST_F(DumpValue, OfAReferenceToAPlace) {
  expectPrinted(
      "INSERT INTO File VALUES (1, 'a:1', 0, 0, 0); INSERT INTO Identifier VALUES (1, '0', 0, 0);"
      "INSERT INTO Function (FunctionId, DeclFileId, DeclLineNum, DeclColNum, IdentifierId) VALUES "
      "(1, 1, 3, -4, 1), (2, NULL, NULL, 3, 0), (3, 8, 'p:q', 0, 9)",
      "CallPoint", "CallerId",
      {{"PathNameZero", "1", "a\\x3a1:3:-4:\\x30"},
       {"NullsAndZero", "2", "NULL:NULL:3:0"},
       {"DanglingParts", "3", "!8:!text p\\x3aq:0:!9"},
       {"NoFunction", "4", "!4"}});
}

TEST_F(Dump, EntityOfAKindThatHasNone_LeadsNowhere) {
  const std::string file = compilationFile(
      path("x.db"),
      "INSERT INTO Variable (VariableId) VALUES (1); INSERT INTO Function "
      "(FunctionId) VALUES (1); INSERT INTO ExternalIdentifier VALUES (1, 0, 2, 1)");
  EXPECT_EQ(outputOf({"dump", "--table", "ExternalIdentifier", file}),
            "ExternalIdentifier\tIdentifierId=0\tKind=2\tEntityId=!1\n");
}

TEST_F(Dump, FileInUtf16_PrintsLikeOneInUtf8) {
  const std::string names =
      "CREATE TABLE Identifier (IdentifierId INTEGER PRIMARY KEY, Name, Count, Kind); INSERT INTO "
      "Identifier VALUES (1, char(0xffee), 0, 0), (2, char(0x10000), 0, 0), (3, 'a', 0, 0);";
  const std::string source = compilationFile(path("schema.db"), "");
  const std::string wide = path("wide.db"), narrow = path("narrow.db");
  std::string schema =
      rows(source,
           "SELECT sql || ';' FROM sqlite_schema WHERE type = 'table' AND name NOT IN "
           "('Identifier', 'sqlite_sequence')");
  execute(wide, "PRAGMA encoding='UTF-16le'; " + schema + names);
  execute(narrow, schema + names);
  EXPECT_EQ(outputOf({"dump", wide}), outputOf({"dump", narrow}));
}

TEST_F(Dump, ReaderThatGoesAway_EndsItQuietly) {
  const std::string file =
      compilationFile(path("x.db"),
                      "WITH RECURSIVE n(i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM n WHERE i < "
                      "20000) INSERT INTO Identifier SELECT i, 'name' || i, 0, 0 FROM n");
  const std::string pipeline = "\"$@\" | true; echo ${PIPESTATUS[0]}";
  for (const auto& [setting, status] : {std::pair("", "141\n"), {"trap '' PIPE; ", "1\n"}}) {
    const ProgramResult result =
        runProgram({"bash", "-c", setting + pipeline, "bash", FE_DB_PROGRAM, "dump", file});
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.output, status);
  }
}

}  // namespace
}  // namespace fe_db_tests
