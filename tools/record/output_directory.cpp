#include "output_directory.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
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

void checkWritable(const std::string& directory) {
  std::string name = directory + "/.fe_db_record-XXXXXX";
  const int file = mkstemp(name.data());
  if (file < 0) {
    throw std::runtime_error(directory + ": cannot be written to (" + std::strerror(errno) +
                             "); choose another output directory");
  }
  close(file);
  unlink(name.c_str());
}

}  // namespace fe_db_tools
