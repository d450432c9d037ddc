#include "canonical_text.h"

namespace fe_db_tools {
namespace {

constexpr unsigned char byteAt(std::string_view text, std::size_t i) {
  return static_cast<unsigned char>(text[i]);
}

/// A character of three bytes that orders text from right to left, or back (U+202A to U+202E,
/// U+2066 to U+2069), or ends a line (U+2028, U+2029): what a terminal or an editor shows is then
/// not what is written there.
constexpr bool disturbsLine(std::string_view text) {
  if (byteAt(text, 0) != 0xe2) return false;
  const unsigned char second = byteAt(text, 1), third = byteAt(text, 2);
  return (second == 0x80 && third >= 0xa8 && third <= 0xae) ||
         (second == 0x81 && third >= 0xa6 && third <= 0xa9);
}

/// The length of the well-formed sequence of more than one byte that `text` begins with, or 0.
/// Characters that are not to be shown count as ill-formed: the controls from U+0080 to U+009F, and
/// those that disturb a line.
std::size_t multiByteLength(std::string_view text) {
  const unsigned char lead = byteAt(text, 0);
  const std::size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
  if (lead < 0xc2 || lead > 0xf4 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byteAt(text, i) & 0xc0) != 0x80) return 0;
  }
  const unsigned char second = byteAt(text, 1);
  const bool allowed = lead == 0xc2   ? second >= 0xa0
                       : lead == 0xe0 ? second >= 0xa0
                       : lead == 0xe2 ? !disturbsLine(text)
                       : lead == 0xed ? second < 0xa0
                       : lead == 0xf0 ? second >= 0x90
                       : lead == 0xf4 ? second < 0x90
                                      : true;
  return allowed ? length : 0;
}

void appendHex(std::string& out, unsigned char byte) {
  constexpr char kDigits[] = "0123456789abcdef";
  out += "\\x";
  out += kDigits[byte >> 4];
  out += kDigits[byte & 15];
}

constexpr bool isVisible(unsigned char byte) { return byte >= 0x20 && byte < 0x7f; }

/// Of the visible ASCII characters those of `special` are escaped as well.
void append(std::string& out, std::string_view bytes, std::string_view special) {
  const auto isPlain = [special](char c) {
    return isVisible(static_cast<unsigned char>(c)) && special.find(c) == special.npos;
  };
  while (!bytes.empty()) {
    std::size_t length = 0;
    while (length < bytes.size() && isPlain(bytes[length])) ++length;
    if (length == 0 && byteAt(bytes, 0) >= 0x80) length = multiByteLength(bytes);
    if (length == 0) {
      appendHex(out, byteAt(bytes, 0));
      length = 1;
    } else {
      out += bytes.substr(0, length);
    }
    bytes.remove_prefix(length);
  }
}

}  // namespace

void appendEscaped(std::string& out, std::string_view bytes, Colons colons) {
  append(out, bytes, colons == Colons::plain ? "\\" : "\\:");
}

void appendFirstByteEscaped(std::string& out, std::string_view bytes, Colons colons) {
  appendHex(out, byteAt(bytes, 0));
  appendEscaped(out, bytes.substr(1), colons);
}

std::string printable(std::string_view bytes) {
  std::string text;
  append(text, bytes, /*special=*/"");
  return text;
}

}  // namespace fe_db_tools
