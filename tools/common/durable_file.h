#pragma once

#include <string>
#include <string_view>

namespace fe_db_tools {

// Each returns false, with `errno`, on failure.

/// Writes a file that does not exist yet. Not synchronised.
bool writeFile(const std::string& path, std::string_view bytes);

/// After success the content survives a power failure. The name may still be lost.
bool syncFile(const std::string& path);

/// The same for the names in a directory: those made, changed and removed. A file system that
/// cannot do this keeps its own order: only a disk error counts as a failure.
bool syncDirectory(const std::string& directory);

/// The directory that has the name `path`.
std::string directoryOf(const std::string& path);

/// Throws the std::runtime_error of a file that cannot be made, with reason and advice.
[[noreturn]] void failToCreate(const std::string& path, int error);

}  // namespace fe_db_tools
