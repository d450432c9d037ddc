#include <sstream>

#include "record/record_fixture.h"

namespace fe_db_tests {

namespace {

/// Everything that moves tokens about: calls over several lines, line directives, pragmas, far and
/// near gaps, tokens that must not touch, raw strings.
constexpr char kSource[] = R"src(#define CALL(a, b) f(a, b)
#define EMPTY
#define MINUS -
#define LINES {"one", __LINE__}
#include "header.h"
int f(int, int);
int x = MINUS-1; int y = -MINUS 1; EMPTY
EMPTY int z = CALL(1,
   EMPTY 2) + CALL
   (3, 4);    int w;
#pragma GCC diagnostic push // why
int after_pragma;









int after_gap;
#line 400 "elsewhere.c"
struct { const char* text; int line; } lines = LINES;
#if EMPTY 1
#endif
#include HEADER
#define JOIN(a, b) a##b EMPTY
int JOIN(con, cat);
  const char* raw = R"x(first
  second)x" EMPTY ; int behind_raw = CALL(2, 3);
_Pragma("GCC diagnostic pop") int last = CALL(1, 1);
EMPTY)src";

class PreprocessedText : public RecordTest {
 protected:
  void SetUp() override {
    write("source.cpp", kSource);
    write("header.h",
          "#define HEADER \"header.h\"\n#ifndef ONCE\n#define ONCE\nint h = __LINE__;\n#endif\n");
    recordQuietly({"--keep-preprocessed", "--", "g++", "-c", "source.cpp"});
  }
};

/// Lines that carry program text.
std::string withoutMarkersAndPragmas(const std::string& text) {
  std::istringstream lines(text);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    if (line.find_first_not_of(' ') == std::string::npos) continue;
    if (!line.starts_with("# ") && !line.starts_with("#pragma")) result += line + '\n';
  }
  return result;
}

TEST_F(PreprocessedText, IsThatOfClang) {
  const std::string clang = FE_DB_RECORD_CLANG_PREFIX "/bin/clang";
  if (!std::filesystem::exists(clang)) GTEST_SKIP() << clang << " is not installed";
  const ProgramResult expected =
      runProgram({clang, "-E", "-w", "source.cpp"}, {.directory = sources().string()});
  ASSERT_EQ(expected.exitCode, 0) << expected.errors;
  EXPECT_EQ(withoutMarkersAndPragmas(readFile(outputEnding(".i"))),
            withoutMarkersAndPragmas(expected.output));
}

TEST_F(PreprocessedText, HasEachExpansionAndEachTokenInItsPlace) {
  const std::string database = outputEnding(".pp.db");
  const ProgramResult result =
      runProgram({FE_DB_PROGRAM, "check", "--text", outputEnding(".i"), database});
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(rows(database,
                 "SELECT (SELECT count(*) > 10 FROM MacroExpansion), (SELECT count(*) > 10 FROM "
                 "MacroInvocationCodeOrigin)"),
            "1|1\n");
}

TEST_F(PreprocessedText, LeavesPositionsToTheFilesAndNotToLineDirectives) {
  EXPECT_EQ(rows(outputEnding(".pp.db"), "SELECT count(*) FROM File WHERE Path LIKE '%elsewhere%'"),
            "0\n");
  EXPECT_EQ(rows(outputEnding(".pp.db"),
                 "SELECT LineNum, ExpandedCode FROM MacroExpansion WHERE MacroCall = 'LINES'"),
            "24|{\"one\", 400}\n");
}

}  // namespace

}  // namespace fe_db_tests
