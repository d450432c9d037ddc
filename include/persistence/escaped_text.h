#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "persistence/export.h"

/// What comes from a file can hold anything, and a terminal obeys what it is sent. Text is printed
/// in this form.
namespace persistence {

/// The number of bytes of the character that `text` begins with, if it can be printed as it is: a
/// well-formed UTF-8 sequence that is no control character, sets no direction of writing (U+202A to
/// U+202E, U+2066 to U+2069) and ends no line (U+2028, U+2029). Otherwise 0.
SHARED_PERSISTENCE_EXPORT std::size_t printableLength(std::string_view text);

/// The text with \xNN for each byte that is not part of such a character: one line.
SHARED_PERSISTENCE_EXPORT std::string escaped(std::string_view text);

/// \xNN for one byte.
SHARED_PERSISTENCE_EXPORT void appendHex(std::string& out, unsigned char byte);

}  // namespace persistence
