#include "persistence/escaped_text.h"

namespace persistence {

namespace {

constexpr unsigned char byteAt(std::string_view text, std::size_t i) {
  return static_cast<unsigned char>(text[i]);
}

/// The length of the well-formed sequence of more than one byte that the text begins with, or 0.
std::size_t sequenceLength(std::string_view text) {
  const unsigned char lead = byteAt(text, 0);
  const std::size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
  if (lead < 0xc2 || lead > 0xf4 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byteAt(text, i) & 0xc0) != 0x80) return 0;
  }
  // What is longer than it need be, the surrogates, and what lies beyond U+10FFFF.
  const unsigned char second = byteAt(text, 1);
  const bool isWellFormed = lead == 0xe0   ? second >= 0xa0
                            : lead == 0xed ? second < 0xa0
                            : lead == 0xf0 ? second >= 0x90
                            : lead == 0xf4 ? second < 0x90
                                           : true;
  return isWellFormed ? length : 0;
}

bool isHarmless(std::string_view character) {
  if (character.size() == 2) return character >= "\xc2\xa0";  // before: control characters
  const auto isWithin = [character](std::string_view first, std::string_view last) {
    return character >= first && character <= last;
  };
  // U+2028 to U+202E are lines' and paragraphs' ends and directions, U+2066 to U+2069 directions.
  return character.size() != 3 ||
         (!isWithin("\xe2\x80\xa8", "\xe2\x80\xae") && !isWithin("\xe2\x81\xa6", "\xe2\x81\xa9"));
}

}  // namespace

std::size_t printableLength(std::string_view text) {
  if (text.empty()) return 0;
  const unsigned char lead = byteAt(text, 0);
  if (lead < 0x80) return lead >= 0x20 && lead != 0x7f ? 1 : 0;
  const std::size_t length = sequenceLength(text);
  return isHarmless(text.substr(0, length)) ? length : 0;
}

void appendHex(std::string& out, unsigned char byte) {
  constexpr char kDigits[] = "0123456789abcdef";
  out += "\\x";
  out += kDigits[byte >> 4];
  out += kDigits[byte & 15];
}

std::string escaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    std::size_t length = printableLength(text);
    if (length == 0) {
      appendHex(out, byteAt(text, 0));
      length = 1;
    } else {
      out += text.substr(0, length);
    }
    text.remove_prefix(length);
  }
  return out;
}

}  // namespace persistence
