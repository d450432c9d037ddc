#include "new_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <thread>

namespace fe_db_tools {
namespace {

[[noreturn]] void fail(const std::string& path, int error) {
  if (error == EEXIST) {
    throw std::runtime_error(path + ": it exists already; remove it or choose another name");
  }
  throw std::runtime_error(path + ": cannot create it: " + std::strerror(error));
}

bool isSameFile(int descriptor, const std::string& path) {
  struct stat opened {
  }, named{};
  return fstat(descriptor, &opened) == 0 && stat(path.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

/// So that a power failure cannot take the new name away again. Best effort: the content is safe.
void syncDirectoryOf(const std::string& path) {
  const std::string directory = std::filesystem::absolute(path).parent_path();
  const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
}

}  // namespace

NewFile::NewFile(std::string path, int waitSeconds)
    : path_(std::move(path)), temporary_(path_ + ".new") {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(waitSeconds);
  while (!openAndLock(deadline)) {
  }
  // SQLite would take the journal of a killed run for one of the new file.
  unlink((temporary_ + "-journal").c_str());
}

NewFile::~NewFile() {
  if (!published_) {
    unlink(temporary_.c_str());
    unlink((temporary_ + "-journal").c_str());
  }
  close(descriptor_);
}

/// False when another run renamed or removed the file while this one waited for its lock.
bool NewFile::openAndLock(std::chrono::steady_clock::time_point deadline) {
  constexpr int kFlags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW;
  descriptor_ = open(temporary_.c_str(), kFlags, 0666);
  if (descriptor_ < 0) fail(temporary_, errno);
  bool locked = flock(descriptor_, LOCK_EX | LOCK_NB) == 0;
  while (!locked && errno == EWOULDBLOCK && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    locked = flock(descriptor_, LOCK_EX | LOCK_NB) == 0;
  }
  const int error = errno;
  if (locked && isSameFile(descriptor_, temporary_)) return true;
  close(descriptor_);
  if (!locked && error == EWOULDBLOCK) {
    throw std::runtime_error(path_ +
                             ": another program is making it; try again when it has finished");
  }
  if (!locked && error != EINTR) fail(temporary_, error);
  return false;
}

void NewFile::write(std::span<const unsigned char> bytes) const {
  if (ftruncate(descriptor_, 0) != 0) fail(temporary_, errno);
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) fail(temporary_, errno);
    if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
}

void NewFile::publish() {
  if (fsync(descriptor_) != 0) fail(temporary_, errno);
  if (renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, path_.c_str(), RENAME_NOREPLACE) == 0) {
    published_ = true;
  } else {
    // Some file systems cannot rename without replacing; a hard link does not replace either.
    if (errno != EINVAL && errno != ENOSYS) fail(path_, errno);
    if (link(temporary_.c_str(), path_.c_str()) != 0) fail(path_, errno);
  }
  syncDirectoryOf(path_);
}

bool isTaken(const std::string& path) {
  struct stat existing {};
  return lstat(path.c_str(), &existing) == 0;
}

void writeNewFile(const std::string& path, std::span<const unsigned char> bytes) {
  if (isTaken(path)) fail(path, EEXIST);
  NewFile file(path);
  file.write(bytes);
  file.publish();
}

}  // namespace fe_db_tools
