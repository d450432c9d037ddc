#include "persistence/escaped_text.h"

#include <gtest/gtest.h>

namespace fe_db_tests {
namespace {

using persistence::escaped;

TEST(EscapedText, IsWhatATerminalShowsAndNeverWhatItObeys) {
  const struct {
    std::string bytes;
    const char* expected;
  } cases[] = {
      {"", ""},
      {"plain \\ text: 1", "plain \\ text: 1"},
      {"\x1b[31mred\r\n", "\\x1b[31mred\\x0d\\x0a"},
      {std::string("a\0b\x7f", 4), "a\\x00b\\x7f"},
      {"\u00e9 \u20ac \U0001f600", "\u00e9 \u20ac \U0001f600"},
      {"\u0080\u009f\u00a0", "\\xc2\\x80\\xc2\\x9f\u00a0"},
      // Lines' ends and directions, and their neighbours.
      {"\u2027\u2028\u2029\u202a\u202e\u202f",
       "\u2027\\xe2\\x80\\xa8\\xe2\\x80\\xa9\\xe2\\x80\\xaa\\xe2\\x80\\xae\u202f"},
      {"\u2065\u2066\u2069\u206a", "\u2065\\xe2\\x81\\xa6\\xe2\\x81\\xa9\u206a"},
      // Ill-formed: cut off, a stray continuation, overlong, a surrogate, too large.
      {"\xe2\x82", "\\xe2\\x82"},
      {"\x80x", "\\x80x"},
      {"\xc0\xaf\xe0\x80\xaf", "\\xc0\\xaf\\xe0\\x80\\xaf"},
      {"\xed\xa0\x80", "\\xed\\xa0\\x80"},
      {"\xf4\x90\x80\x80\xff", "\\xf4\\x90\\x80\\x80\\xff"},
  };
  for (const auto& [bytes, expected] : cases) EXPECT_EQ(escaped(bytes), expected);
}

}  // namespace
}  // namespace fe_db_tests
