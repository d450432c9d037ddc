#include "canonical_text.h"

#include "persistence/escaped_text.h"

namespace fe_db_tools {
namespace {

/// Of the printable ASCII characters those of `special` are escaped as well.
void append(std::string& out, std::string_view bytes, std::string_view special) {
  while (!bytes.empty()) {
    const bool isSpecial = special.find(bytes[0]) != special.npos;
    std::size_t length = isSpecial ? 0 : persistence::printableLength(bytes);
    if (length == 0) {
      persistence::appendHex(out, static_cast<unsigned char>(bytes[0]));
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
  persistence::appendHex(out, static_cast<unsigned char>(bytes[0]));
  appendEscaped(out, bytes.substr(1), colons);
}

}  // namespace fe_db_tools
