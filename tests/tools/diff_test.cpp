#include "fe_db_fixture.h"
#include "whole_content.h"

namespace fe_db_tests {
namespace {

struct Diff : FeDbProgram {
  std::string labels(const std::string& name, const std::string& columns) {
    return compilationFile(path(name), "INSERT INTO Label (DeclColNum) VALUES " + columns);
  }
  static std::string label(const std::string& column) {
    return "Label\tIdentifierId=NULL\tDeclFileId=NULL\tDeclLineNum=NULL\tDeclColNum=" + column +
           "\n";
  }
};

TEST_F(Diff, EqualContentUnderOtherIds_IsNoDifference) {
  const std::string a = compilationFile(path("a.db"), wholeContent(1, 0));
  const std::string b = compilationFile(path("b.db"), wholeContent(-10, 1000));
  EXPECT_EQ(outputOf({"diff", a, b}), "");
}

TEST_F(Diff, Rows_AreThoseThatOneSideHasAlone_SoOftenAsItHasThem) {
  const struct {
    const char *rule, *left, *right;
    const char* difference;  ///< signs and columns
  } cases[] = {{"OnlyLeft", "(1), (2)", "(1)", "-2"},
               {"OnlyRight", "(1)", "(0), (1)", "+0"},
               {"BothSides", "(1), (3), (5)", "(2), (3), (4)", "-1 +2 +4 -5"},
               {"RepeatedRowsCount", "(1), (1), (1)", "(1)", "-1 -1"},
               {"RepeatedEqually", "(1), (1)", "(1), (1)", ""}};
  for (const auto& [rule, left, right, difference] : cases) {
    SCOPED_TRACE(rule);
    const std::string a = labels(std::string(rule) + "A.db", left);
    std::string expected;
    std::istringstream differences(difference);
    for (std::string one; differences >> one;) expected += one[0] + label(one.substr(1));
    const ProgramResult result = feDb({"diff", a, labels(std::string(rule) + "B.db", right)});
    EXPECT_EQ(result.output, expected);
    EXPECT_EQ(result.exitCode, expected.empty() ? 0 : 1);
    EXPECT_EQ(result.errors, "");
  }
}

TEST_F(Diff, OneTable_LeavesTheOthersOut) {
  const std::string a = compilationFile(path("a.db"), wholeContent(1, 0));
  const std::string b = compilationFile(path("b.db"), "");
  EXPECT_EQ(feDb({"diff", "--table", "Label", a, b}).output,
            "-Label\tIdentifierId=main\tDeclFileId=a.c\tDeclLineNum=10\tDeclColNum=1\n");
}

TEST_F(Diff, TablesThatAPreprocessingFileLacks_CountAsEmpty) {
  const std::string a = labels("a.db", "(1)");
  const std::string b = preprocessingFile(path("b.db"), "");
  EXPECT_EQ(feDb({"diff", a, b}).output, '-' + label("1"));
}

}  // namespace
}  // namespace fe_db_tests
