#pragma once

#include <string>
#include <string_view>

#include "persistence/escaped_text.h"

namespace fe_db_tools {

/// Whatever comes from a file or a command line is printed through one of these: nothing in it can
/// move the cursor, turn the text around or begin a line. Control characters, bytes that are no
/// UTF-8, the bidirectional controls and the line separators of Unicode become `\xNN`, byte by
/// byte.

/// Appends `bytes` for content that is compared: backslashes are escaped as well, and in a part of
/// a key ':'. The result is valid UTF-8 in one line without tabs, and two texts that differ stay
/// different.
enum class Colons { plain, escaped };
void appendEscaped(std::string& out, std::string_view bytes, Colons colons);

/// The same, with the first byte as `\xNN` whatever it is.
void appendFirstByteEscaped(std::string& out, std::string_view bytes, Colons colons);

/// For messages and names of files: backslashes stay.
inline std::string printable(std::string_view bytes) { return persistence::escaped(bytes); }

}  // namespace fe_db_tools
