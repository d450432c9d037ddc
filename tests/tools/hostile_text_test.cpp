#include "fe_db_fixture.h"
#include "whole_content.h"

/// Names in a file and words on a command line may hold what moves the cursor of a terminal,
/// colours it or turns the text around.
namespace fe_db_tests {
namespace {

using testing::HasSubstr;
using testing::Not;

/// An escape sequence, a carriage return, U+202E, U+2066, U+2028, DEL, U+0085, a byte that is no
/// UTF-8; and what may be shown: U+00E9, U+2020, U+2065.
const std::string kHostile = "a\x1b[31m\r\u202e\u2066\u2028\x7f\u0085\xff\u00e9\u2020\u2065";
const std::string kShown = R"(a\x1b[31m\x0d\xe2\x80\xae\xe2\x81\xa6\xe2\x80\xa8\x7f\xc2\x85\xff)"
                           "\u00e9\u2020\u2065";

struct HostileText : FeDbProgram {
  /// In paths, names and texts; and as names of its schema, where that can be.
  std::string file(const std::string& sql = "") const {
    return compilationFile(path(kHostile + ".db"),
                           wholeContent(1, 0) + "UPDATE File SET Path='" + kHostile +
                               "' WHERE FileId=1; UPDATE Identifier SET Name='" + kHostile +
                               "' WHERE IdentifierId=2; UPDATE Macro SET Text='" + kHostile + "';" +
                               sql);
  }
  std::string printed(const std::vector<std::string>& words) const {
    const ProgramResult result = feDb(words, {.directory = path(".")});
    return result.output + result.errors;
  }
  static void expectHarmless(const std::string& text) {
    EXPECT_THAT(text, HasSubstr(kShown));
    for (const char* part :
         {"\x1b", "\r", "\u202e", "\u2066", "\u2028", "\x7f", "\u0085", "\xff"}) {
      EXPECT_THAT(text, Not(HasSubstr(part)));
    }
  }
};

TEST_F(HostileText, FromAFileOrACommandLine_IsPrintedEscaped) {
  const std::string x = file(), none = kHostile + "3";
  const std::string good = compilationFile(path("good.db"), "");
  fileHolding("list", kHostile + "\n");
  const std::vector<std::string> commands[] = {
      {"dump", x},
      {"dump", "--json", x},
      {"diff", good, x},
      {"stats", "--json", x},
      {"check", compilationFile(path(kHostile), "DROP TABLE Field")},
      {"find", x, "types"},
      {"find", x, "calls", "--json"},
      {"find", x, "long-names", "--min-length", "1", "--sarif"},
      {"merge", kHostile + "2", good},  // its summary
      {"stats", none},
      {"merge", "t", none},
      {"merge", "t", "@list"},
      {"merge", "t", "@" + none},
      {"init", x},
      {"find", x, none},
      {"stats", x, none},
      {"dump", "--table", none, x}};
  for (const std::vector<std::string>& words : commands) {
    SCOPED_TRACE(testing::PrintToString(words));
    std::string text = printed(words);
    if (text.starts_with('{')) {  // the backslashes of JSON
      for (std::size_t at = 0; (at = text.find("\\\\", at)) != text.npos; ++at) text.erase(at, 1);
    }
    expectHarmless(text);
  }
}

TEST_F(HostileText, InAMessageOfSqlite_IsPrintedEscaped) {
  const std::string spoil =
      "PRAGMA writable_schema=1; INSERT INTO sqlite_schema VALUES ('table', '" + kHostile + "', '" +
      kHostile + "', 3, 'CREATE nonsense');";
  const std::string x = file(spoil);
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {"stats", x}, {"check", x}, {"find", x, "types"}, {"merge", "t", x}, {"index", x}}) {
    SCOPED_TRACE(words[0]);
    expectHarmless(printed(words));
  }
}

TEST_F(HostileText, OfAnIndexThatIsDamaged_IsPrintedEscaped) {
  const std::string x = file("CREATE INDEX \"" + kHostile +
                             "\" ON Label (DeclLineNum); PRAGMA writable_schema=1; UPDATE "
                             "sqlite_schema SET sql=replace(sql, 'Line', 'Col') WHERE name='" +
                             kHostile + "'");
  expectHarmless(printed({"check", x}));
}

}  // namespace
}  // namespace fe_db_tests
