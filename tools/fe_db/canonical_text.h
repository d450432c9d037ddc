#pragma once

#include <string>
#include <string_view>

namespace fe_db_tools {

/// Appends `bytes` with control characters, backslashes and bytes that are no UTF-8 as `\xNN`; in
/// a part of a key ':' as well. The result is valid UTF-8 in one line without tabs, and two texts
/// that differ stay different.
enum class Colons { plain, escaped };
void appendEscaped(std::string& out, std::string_view bytes, Colons colons);

/// The same, with the first byte as `\xNN` whatever it is.
void appendFirstByteEscaped(std::string& out, std::string_view bytes, Colons colons);

}  // namespace fe_db_tools
