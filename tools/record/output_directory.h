#pragma once

#include <string>

namespace fe_db_tools {

/// Makes the directory unless it is there. Throws std::runtime_error, saying what to do.
void makeOutputDirectory(const std::string& directory);

/// Throws std::runtime_error, saying what to do, when no file can be made in the directory.
void checkWritable(const std::string& directory);

}  // namespace fe_db_tools
