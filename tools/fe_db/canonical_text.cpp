#include "canonical_text.h"

namespace fe_db_tools {
namespace {

constexpr unsigned char byteAt(std::string_view text, std::size_t i) {
  return static_cast<unsigned char>(text[i]);
}

/// The length of the well-formed sequence of more than one byte that `text` begins with, or 0.
/// The control characters from U+0080 to U+009F count as ill-formed, to be escaped like the others.
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

constexpr bool isPlain(unsigned char byte, Colons colons) {
  return byte >= 0x20 && byte < 0x7f && byte != '\\' && (byte != ':' || colons == Colons::plain);
}

}  // namespace

void appendEscaped(std::string& out, std::string_view bytes, Colons colons) {
  while (!bytes.empty()) {
    std::size_t length = 0;
    while (length < bytes.size() && isPlain(byteAt(bytes, length), colons)) ++length;
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

void appendFirstByteEscaped(std::string& out, std::string_view bytes, Colons colons) {
  appendHex(out, byteAt(bytes, 0));
  appendEscaped(out, bytes.substr(1), colons);
}

}  // namespace fe_db_tools
