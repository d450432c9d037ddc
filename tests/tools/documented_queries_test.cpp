#include <fstream>

#include "fe_db_fixture.h"

namespace fe_db_tests {
namespace {

constexpr char kCode[] = R"sql(
INSERT INTO File (FileId, Path) VALUES (1, 'a.c'), (2, 'a.h');
INSERT INTO Identifier (IdentifierId, Name) VALUES (1, 'main'), (2, 'run'), (3, 'size'), (4, 'A_H'),
  (5, 'alias'), (6, 'tag');
INSERT INTO Function (FunctionId, IdentifierId, SourceNameId, DeclFileId, DeclLineNum, DeclColNum, isDefined)
  VALUES (1, 1, 1, 1, 3, 5, 1), (2, 2, 2, 1, 9, 6, 1);
INSERT INTO Field (FieldId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum) VALUES (1, 3, 2, 4, 7);
INSERT INTO Macro (MacroId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount, Text)
  VALUES (1, 4, 2, 1, 9, 0, '');
INSERT INTO Type (TypeId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum, Kind)
  VALUES (1, 5, 2, 5, 1, 512), (2, 6, 2, 6, 1, 64);
INSERT INTO TypeReference VALUES (1, 2);
INSERT INTO CallPoint (CallPointId, FileId, LineNum, ColNum, IsValueUsed, CallerId, CalleeId)
  VALUES (1, 1, 10, 3, 1, 2, 1);
INSERT INTO MacroExpansion VALUES ('A()', 'b', 1, 2, 3, 4, 5);
INSERT INTO Unit (UnitId, Name, MainFileId) VALUES (1, 'a.c', 1);
INSERT INTO UnitFile (UnitId, FileId) VALUES (1, 1), (1, 2);
INSERT INTO Reference (EntityKind, EntityId, FileId, LineNum, ColNum, Roles) VALUES (64, 1, 1, 11, 5, 2);
)sql";

/// What stands between "```sql" and "```".
std::vector<std::string> documentedQueries() {
  std::ifstream page(STORED_FORMAT_PAGE);
  std::vector<std::string> queries;
  bool isInside = false;
  for (std::string line; std::getline(page, line);) {
    if (line == "```sql") {
      isInside = true;
      queries.emplace_back();
    } else if (line == "```") {
      isInside = false;
    } else if (isInside) {
      queries.back() += line + '\n';
    }
  }
  return queries;
}

struct DocumentedQueries : FeDbProgram {};

TEST_F(DocumentedQueries, AnswerOnAFileThatHasWhatTheyAskFor) {
  const std::string file = compilationFile(path("all.db"), kCode);
  outputOf({"index", file});
  const std::vector<std::string> queries = documentedQueries();
  EXPECT_GT(queries.size(), 5);
  for (const std::string& query : queries) EXPECT_NE(rows(file, query), "") << query;
}

TEST_F(DocumentedQueries, TheNumbersInTheFileAreThoseOfThePage) {
  const std::string file = compilationFile(path("all.db"), kCode);
  outputOf({"index", file});
  EXPECT_EQ(rows(file,
                 "SELECT number FROM fe_numbers WHERE (tbl, col, meaning) IN (VALUES "
                 "('Type', 'Kind', 'union'), ('Reference', 'Roles', 'within-itself'), "
                 "('Property', 'Flags', 'named-in-excluded-text')) ORDER BY number"),
            "128\n16384\n2147483648\n");
}

}  // namespace
}  // namespace fe_db_tests
