#include "fe_db_fixture.h"
#include "search_indexes.h"
#include "whole_content.h"

namespace fe_db_tests {
namespace {

constexpr char kIndexes[] =
    "SELECT name, sql FROM sqlite_schema WHERE type='index' AND sql IS NOT NULL ORDER BY name";

class Index : public FeDbProgram {
 protected:
  /// The search indexes, and what else there is.
  static std::string all(const std::string& own) {
    std::set<std::string> lines;
    fe_db_tools::eachSearchIndex(
        [&](const auto& index) { lines.insert(index.name + '|' + index.sql + '\n'); });
    if (!own.empty()) lines.insert(own);
    std::string text;
    for (const std::string& line : lines) text += line;
    return text;
  }
  const std::string file = compilationFile(path("x.db"), wholeContent(1, 0));
};

TEST_F(Index, MakesWhatIsMissing_AndMendsWhatBearsItsName) {
  execute(
      file,
      "CREATE INDEX Macro_RefCount_Index ON Macro (Text); CREATE INDEX Mine ON Label (LabelId)");
  const std::string content = outputOf({"dump", file});
  for (int run = 0; run < 2; ++run) {
    EXPECT_EQ(outputOf({"index", file}), "");
    EXPECT_EQ(rows(file, kIndexes), all("Mine|CREATE INDEX Mine ON Label (LabelId)\n"));
  }
  EXPECT_EQ(outputOf({"dump", file}), content);
  EXPECT_EQ(integrity(file), "ok\n");
  EXPECT_EQ(outputOf({"index", "--drop", file}), "");
  EXPECT_EQ(rows(file, kIndexes), "Mine|CREATE INDEX Mine ON Label (LabelId)\n");
}

TEST_F(Index, OfAFileThatIsLocked_OrNoCompilationDatabase_IsRefused) {
  const RawConnection writer(file);
  writer.rows("BEGIN IMMEDIATE");
  expectRefusal({"index", "--wait=0", file}, file + ": cannot be locked for writing");
  writer.rows("ROLLBACK");
  EXPECT_EQ(rows(file, kIndexes), "");
  expectRefusal({"index", preprocessingFile(path("pp.db"), "")}, "it is a preprocessing database");
}

TEST_F(Index, ThatCannotBeMade_IsOneReport_AndTheFileStaysAsItIs) {
  execute(file, "CREATE TABLE Macro_Key_Index (x); CREATE TABLE Type_Key_Index (x)");
  const std::string before = rows(file, kIndexes);
  const ProgramResult result = feDb({"index", file});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors,
              testing::MatchesRegex("orvalesca: [^\n]*\nfe_db: " + file +
                                    ": the file is unchanged: there is already a table named "
                                    "Macro_Key_Index\n"));
  EXPECT_EQ(rows(file, kIndexes), before);
}

TEST_F(Index, AViewOfTheUsersIsLeftAlone_AndReported) {
  const std::string x = compilationFile(path("v.db"), "CREATE VIEW fe_calls AS SELECT 7");
  for (const Words& command : {Words{"index", x}, Words{"index", "--drop", x}}) {
    const ProgramResult result = feDb(command);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors.find("the view fe_calls is not made") != std::string::npos,
              command.size() == 2);
    EXPECT_EQ(rows(x, "SELECT * FROM fe_calls"), "7\n");
  }
  EXPECT_EQ(rows(x, "SELECT count(*) FROM sqlite_schema WHERE type='view'"), "1\n");
}

}  // namespace
}  // namespace fe_db_tests
