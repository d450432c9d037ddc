#include "new_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace fe_db_tools {
namespace {

[[noreturn]] void fail(const std::string& path, int error) {
  if (error == EEXIST) {
    throw std::runtime_error(path + ": it exists already; remove it or choose another name");
  }
  throw std::runtime_error(path + ": cannot create it: " + std::strerror(error));
}

/// The file under its temporary name, locked for this process. The name goes away with the object.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string path) : path_(std::move(path)) {
    while (!openAndLock()) {
    }
  }
  ~TemporaryFile() {
    if (present_) unlink(path_.c_str());
    close(descriptor_);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  void write(std::span<const unsigned char> bytes) const {
    if (ftruncate(descriptor_, 0) != 0) fail(path_, errno);
    while (!bytes.empty()) {
      const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
      if (written < 0 && errno != EINTR) fail(path_, errno);
      if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    if (fsync(descriptor_) != 0) fail(path_, errno);
  }

  void renameTo(const std::string& path) {
    if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
      present_ = false;
      return;
    }
    // Some file systems cannot rename without replacing; a hard link does not replace either.
    if (errno != EINVAL && errno != ENOSYS) fail(path, errno);
    if (link(path_.c_str(), path.c_str()) != 0) fail(path, errno);
  }

 private:
  /// False when another run renamed or removed the file while this one waited for its lock.
  bool openAndLock() {
    constexpr int kFlags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW;
    descriptor_ = open(path_.c_str(), kFlags, 0666);
    if (descriptor_ < 0) fail(path_, errno);
    struct stat opened {
    }, named{};
    const bool locked = flock(descriptor_, LOCK_EX) == 0;
    const int error = errno;
    if (locked && fstat(descriptor_, &opened) == 0 && stat(path_.c_str(), &named) == 0 &&
        opened.st_dev == named.st_dev && opened.st_ino == named.st_ino) {
      return true;
    }
    close(descriptor_);
    if (!locked && error != EINTR) fail(path_, error);
    return false;
  }

  std::string path_;
  int descriptor_ = -1;
  bool present_ = true;
};

}  // namespace

void writeNewFile(const std::string& path, std::span<const unsigned char> bytes) {
  struct stat existing {};
  if (lstat(path.c_str(), &existing) == 0) fail(path, EEXIST);
  TemporaryFile file(path + ".new");
  file.write(bytes);
  file.renameTo(path);
}

}  // namespace fe_db_tools
