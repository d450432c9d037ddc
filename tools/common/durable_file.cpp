#include "durable_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "descriptor.h"

namespace fe_db_tools {
namespace {

const char* adviceFor(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case EISDIR:
    case EACCES:
    case EPERM:
    case EROFS:
      return "; choose a file in a directory that exists and is writable";
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return "; free some space, or choose another directory";
    case ENAMETOOLONG:
      return "; choose a shorter name";
    default:
      return "; check the disk, or choose another directory";
  }
}

}  // namespace

bool writeFile(const std::string& path, std::string_view bytes) {
  const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  while (file.isOpen() && !bytes.empty()) {
    const ssize_t written = write(file.get(), bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) return false;
    if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return file.isOpen();
}

bool syncFile(const std::string& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  return file.isOpen() && fsync(file.get()) == 0;
}

bool syncDirectory(const std::string& directory) {
  const Descriptor opened(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // Without permission to list it, or where directories cannot be synchronised.
  return !opened.isOpen() || fsync(opened.get()) == 0 || (errno != EIO && errno != ENOSPC);
}

std::string directoryOf(const std::string& path) {
  const std::string parent = std::filesystem::path(path).parent_path().string();
  return parent.empty() ? "." : parent;
}

void failToCreate(const std::string& path, int error) {
  if (error == EEXIST) {
    throw std::runtime_error(path + ": it already exists; remove it or choose another name");
  }
  throw std::runtime_error(path + ": cannot create it: " + std::strerror(error) + adviceFor(error));
}

}  // namespace fe_db_tools
