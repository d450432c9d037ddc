#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fe_db_tools {

/// Splits a command line as a shell and GCC's response files do: white space separates, quotes and
/// backslashes protect. No expansion of any kind.
std::vector<std::string> splitWords(std::string_view text);

/// The text that splitWords, and a shell, splits into these words.
std::string joinWords(const std::vector<std::string>& words);

/// Puts the words of each `@file` in its place, files in files included. Relative names are those
/// of `directory`. A file that cannot be read stays as the argument that it is.
std::vector<std::string> expandResponseFiles(const std::vector<std::string>& arguments,
                                             const std::string& directory);

}  // namespace fe_db_tools
