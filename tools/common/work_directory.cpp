#include "work_directory.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <thread>

#include "durable_file.h"

namespace fe_db_tools {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kEnding = ".fe_db-new";
constexpr std::string_view kMark = "fe_db-";
constexpr std::string_view kLock = "fe_db-lock";
constexpr std::string_view kFile = "fe_db-new";
/// What NFS calls a file that was removed and is open somewhere. It goes away by itself.
constexpr std::string_view kRemovedOnNfs = ".nfs";

/// A name that would be too long is cut. Products that share a directory then take turns.
fs::path directoryFor(const std::string& product) {
  const fs::path path(product);
  std::string name(1, '.');
  name += path.filename().string();
  const auto isInsideCharacter = [](char c) { return (c & 0xc0) == 0x80; };  // of UTF-8
  std::size_t length = std::min(name.size(), NAME_MAX - kEnding.size());
  while (length < name.size() && isInsideCharacter(name[length])) --length;
  name.resize(length);
  return path.parent_path() / name.append(kEnding);
}

struct Entry {
  std::string name;
  bool isDirectory;
};

std::vector<Entry> entriesOf(const std::string& directory) {
  std::vector<Entry> entries;
  std::error_code error, ignored;
  for (fs::directory_iterator at(directory, error); !error && at != fs::directory_iterator();
       at.increment(error)) {
    const bool isDirectory = at->symlink_status(ignored).type() == fs::file_type::directory;
    entries.push_back({at->path().filename().string(), isDirectory});
  }
  return entries;
}

bool isOurs(const Entry& entry) {
  return (entry.name.starts_with(kMark) && !entry.isDirectory) ||
         entry.name.starts_with(kRemovedOnNfs);
}

/// Not there is not foreign: another process may just have removed it.
bool isForeign(const std::string& directory) {
  struct stat found {};
  if (lstat(directory.c_str(), &found) != 0) return false;
  if (!S_ISDIR(found.st_mode)) return true;
  const std::vector<Entry> entries = entriesOf(directory);
  return !std::all_of(entries.begin(), entries.end(), isOurs);
}

/// All but the lock. False, with `errno`, when something stays.
bool clear(const std::string& directory) {
  for (const auto& [name, isDirectory] : entriesOf(directory)) {
    if (isDirectory || !name.starts_with(kMark) || name == kLock) continue;
    if (unlink((directory + '/' + name).c_str()) != 0 && errno != ENOENT) return false;
  }
  return true;
}

[[noreturn]] void failForLeftover(const std::string& directory, int error) {
  throw std::runtime_error(directory + ": a killed run left this, and it cannot be removed: " +
                           std::strerror(error) + "; remove it");
}

bool isSameFile(int descriptor, const std::string& path) {
  struct stat opened {
  }, named{};
  return fstat(descriptor, &opened) == 0 && lstat(path.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

}  // namespace

WorkDirectory::WorkDirectory(std::string product, int waitSeconds)
    : product(std::move(product)),
      path(directoryFor(this->product).string()),
      lockPath(path + '/' + std::string(kLock)) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(waitSeconds);
  while (!take(deadline)) {
  }
  // SQLite would take the journal of a killed run for one of the new file.
  if (!clear(path)) failForLeftover(path, errno);
}

WorkDirectory::~WorkDirectory() {
  clear(path);
  unlink(lockPath.c_str());
  lock = Descriptor();
  rmdir(path.c_str());
}

/// False when another process removed the directory meanwhile.
bool WorkDirectory::take(std::chrono::steady_clock::time_point deadline) {
  const bool isMade = mkdir(path.c_str(), 0777) == 0;
  if (!isMade && errno != EEXIST) failToCreate(product, errno);
  if (isForeign(path)) {
    throw std::runtime_error(path + ": not created by fe_db, which builds " + product +
                             " under this name; move it away");
  }
  constexpr int kFlags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW;
  Descriptor opened(open(lockPath.c_str(), kFlags, 0666));
  if (!opened.isOpen()) {
    const int error = errno;
    if (error == ENOENT) return false;
    if (!isMade) failForLeftover(path, error);
    rmdir(path.c_str());
    failToCreate(product, error);
  }
  while (flock(opened.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) failToCreate(product, errno);
    if (std::chrono::steady_clock::now() >= deadline) {
      throw std::runtime_error(product +
                               ": another program is creating it; try again when it has finished");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  if (!isSameFile(opened.get(), lockPath)) return false;
  lock = std::move(opened);
  return true;
}

std::string WorkDirectory::pathOf(const std::string& product, const std::string& ending) {
  return (directoryFor(product) / std::string(kFile).append(ending)).string();
}

std::string WorkDirectory::productNameOf(const std::string& directoryName) {
  if (!directoryName.starts_with('.') || !directoryName.ends_with(kEnding)) return {};
  return directoryName.substr(1, directoryName.size() - kEnding.size() - 1);
}

void WorkDirectory::removeLeftover(const std::string& product) {
  struct stat found {};
  if (lstat(directoryFor(product).c_str(), &found) != 0) return;
  try {
    const WorkDirectory directory(product, /*waitSeconds=*/0);
  } catch (const std::runtime_error&) {
  }
}

std::vector<std::string> WorkDirectory::contents() const {
  const std::string file = pathOf(product);
  return {file, file + "-journal", lockPath, path};
}

}  // namespace fe_db_tools
