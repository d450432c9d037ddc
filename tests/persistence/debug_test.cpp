#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace fe_db_tests {
namespace {

using testing::HasSubstr;

struct Line {
  std::size_t indent;
  std::string text;
};

/// What the probe writes to standard error when FE_DB_DEBUG is set so ("" leaves it unset).
std::vector<Line> trace(const std::string& level, int* status = nullptr) {
  const std::string variable = level.empty() ? "-u FE_DB_DEBUG " : "FE_DB_DEBUG=" + level + " ";
  std::FILE* pipe = popen(("env " + variable + DEBUG_PROBE " 2>&1 >/dev/null").c_str(), "r");
  std::string text;
  for (int c; (c = std::fgetc(pipe)) != EOF;) text += static_cast<char>(c);
  const int ended = pclose(pipe);
  if (status != nullptr) *status = WEXITSTATUS(ended);
  std::vector<Line> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back({line.find_first_not_of(' '), line});
  }
  return lines;
}

TEST(Debug, Off_WritesNothing) {
  for (const char* level : {"", "0", "text"}) {
    int status = -1;
    EXPECT_TRUE(trace(level, &status).empty()) << level;
    EXPECT_EQ(status, 0) << "canDebug() with FE_DB_DEBUG=" << level;
  }
}

TEST(Debug, HighestLevel_LeavesDeeperScopesAndTheirLinesOut) {
  const std::map<std::string, std::size_t> lineCounts = {{"1", 3}, {"2", 8}, {"3", 10}};
  for (const auto& [level, count] : lineCounts) {
    int status = -1;
    EXPECT_EQ(trace(level, &status).size(), count) << level;
    EXPECT_EQ(status, 10) << "canDebug() at level " << level;
  }
}

TEST(Debug, Lines_StandAtTheDepthOfTheirScopeAndSayLevelNameAndMessage) {
  const std::vector<Line> lines = trace("2");
  ASSERT_EQ(lines.size(), 8u);
  const std::size_t outer = lines[0].indent;
  const std::size_t inner = lines[1].indent;
  EXPECT_LT(outer, inner);
  EXPECT_LT(inner, lines[2].indent) << "printed inside the inner scope";
  EXPECT_EQ(lines[3].indent, lines[2].indent);
  EXPECT_EQ(lines[4].indent, inner) << "the scope that an exception will close";
  EXPECT_EQ(lines[5].indent, inner) << "printed behind the exception";
  EXPECT_EQ(lines[7].indent, outer) << "each thread has a depth of its own";

  EXPECT_THAT(lines[0].text, testing::AllOf(HasSubstr("1"), HasSubstr("outer")));
  EXPECT_THAT(lines[1].text, testing::ContainsRegex("2.*inner.*id=7 name=x$"));
  EXPECT_THAT(lines[2].text, testing::EndsWith("with newline 5"));
  EXPECT_THAT(lines[3].text, testing::EndsWith("without newline"));
  EXPECT_THAT(lines[6].text, testing::ContainsRegex("2.*timer"));
  EXPECT_THAT(lines[6].text, HasSubstr("saved 9 rows"));
}

}  // namespace
}  // namespace fe_db_tests
