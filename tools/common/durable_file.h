#pragma once

#include <string>
#include <string_view>

namespace fe_db_tools {

// Each answers false, with `errno`, when it fails.

/// Writes a file that is not there yet. Not synchronised.
bool writeFile(const std::string& path, std::string_view bytes);

/// When this has succeeded, a power failure cannot take the content any more. It can take the name.
bool syncFile(const std::string& path);

/// The same for the names in a directory: those made, changed and removed. A file system that
/// cannot do this is left to its own order: only a failing disk counts as a failure.
bool syncDirectory(const std::string& directory);

/// The directory that has the name `path`.
std::string directoryOf(const std::string& path);

/// Throws the std::runtime_error of a file that cannot be made, with reason and advice.
[[noreturn]] void failToCreate(const std::string& path, int error);

}  // namespace fe_db_tools
