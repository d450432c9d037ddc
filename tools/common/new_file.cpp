#include "new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "durable_file.h"

namespace fe_db_tools {
namespace {

/// Before any work: that the name cannot be used would otherwise show when the file is whole.
const std::string& checkedName(const std::string& path) {
  if (std::filesystem::path(path).filename().empty()) failToCreate(path, EISDIR);
  struct stat found {};
  if (lstat(path.c_str(), &found) != 0 && errno != ENOENT) failToCreate(path, errno);
  return path;
}

/// Never replaces a file.
void renameToFreeName(const std::string& from, const std::string& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return;
  if (errno != EINVAL && errno != ENOSYS) failToCreate(to, errno);
  // Some file systems can only replace; a hard link does not.
  if (link(from.c_str(), to.c_str()) == 0) return;
  if (errno != EPERM && errno != ENOSYS && errno != EOPNOTSUPP) failToCreate(to, errno);
  throw std::runtime_error(to +
                           ": cannot create it: its file system can neither rename without "
                           "replacing nor link; choose a directory on another file system");
}

}  // namespace

NewFile::NewFile(std::string path, int waitSeconds)
    : path(std::move(path)), directory(checkedName(this->path), waitSeconds) {}

void NewFile::write(std::string_view bytes) const {
  if (!writeFile(temporaryPath(), bytes)) failToCreate(path, errno);
}

void NewFile::publish() {
  if (!syncFile(temporaryPath())) failToCreate(path, errno);
  renameToFreeName(temporaryPath(), path);
  // The file is there: a failure now would only say that a power failure may take the name away.
  syncDirectory(directoryOf(path));
}

bool isTaken(const std::string& path) {
  struct stat existing {};
  return lstat(path.c_str(), &existing) == 0;
}

void writeNewFile(const std::string& path, std::string_view bytes) {
  if (isTaken(path)) {
    WorkDirectory::removeLeftover(path);
    failToCreate(path, EEXIST);
  }
  NewFile file(path);
  file.write(bytes);
  file.publish();
}

}  // namespace fe_db_tools
