#include "output_directory.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace fe_db_tools {

void makeOutputDirectory(const std::string& directory) {
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (!error && std::filesystem::is_directory(directory, error)) return;
  const std::string reason = error ? error.message() : "a file has that name";
  throw std::runtime_error(directory + ": cannot be created (" + reason +
                           "); choose another output directory");
}

/// Asks instead of trying: a file made to see whether it can be made would stay if the process were
/// killed.
void checkWritable(const std::string& directory) {
  if (faccessat(AT_FDCWD, directory.c_str(), W_OK | X_OK, AT_EACCESS) == 0) return;
  throw std::runtime_error(directory + ": cannot be written to (" + std::strerror(errno) +
                           "); choose another output directory");
}

}  // namespace fe_db_tools
