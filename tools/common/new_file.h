#pragma once

#include <span>
#include <string>

namespace fe_db_tools {

/// Writes a file that was not there before, whole or not at all: the bytes go to `path` + ".new",
/// which is renamed once they are on the disk. What a killed run left under that name is
/// overwritten, and two runs at once take turns. Throws std::runtime_error with path and reason.
void writeNewFile(const std::string& path, std::span<const unsigned char> bytes);

}  // namespace fe_db_tools
