#include <sqlite3.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <mutex>
#include <string>

/// Preloaded into a program, disturbs its SQLite at a chosen operation on a file.
///
///   FAILING_VFS_HOW    Killed: the signal comes when a write is half done;  Interrupted
///                      FullDisk: from then on no file grows
///                      FailingWrites: from then on nothing is changed
///                      FailingReads: from then on nothing is read; the operations are reads then
///   FAILING_VFS_AT     its number among all writes, syncs, truncations and deletions, from 1
///   FAILING_VFS_COUNT  a file that gets the number of operations when the program ends
/// The cache stays small besides, so that a big transaction writes long before its end.
namespace {

const std::string how = std::getenv("FAILING_VFS_HOW");
const long at = std::atol(std::getenv("FAILING_VFS_AT"));
std::atomic<long> operations = 0;
const sqlite3_vfs* const standardVfs = sqlite3_vfs_find(nullptr);

/// Counts an operation; true lets it happen.
bool goesOn(bool isRead = false) {
  if (isRead != (how == "FailingReads")) return true;
  const long number = ++operations;
  if (number == at && how == "Killed") std::raise(SIGKILL);
  if (number == at && how == "Interrupted") std::raise(SIGINT);
  return at == 0 || number < at || (how != "FailingWrites" && !isRead);
}

/// A file stays SQLite's own; only its table of functions is another, one for each of SQLite's.
struct Methods : sqlite3_io_methods {
  explicit Methods(const sqlite3_io_methods* given) : sqlite3_io_methods(*given), standard(given) {
    xWrite = write;
    xFileControl = control;
    xRead = [](sqlite3_file* file, void* bytes, int count, sqlite3_int64 offset) {
      if (!goesOn(/*isRead=*/true)) return SQLITE_IOERR_READ;
      return standardOf(file).xRead(file, bytes, count, offset);
    };
    xSync = [](sqlite3_file* file, int flags) {
      return goesOn() ? standardOf(file).xSync(file, flags) : SQLITE_IOERR_FSYNC;
    };
    xTruncate = [](sqlite3_file* file, sqlite3_int64 size) {
      return goesOn() ? standardOf(file).xTruncate(file, size) : SQLITE_IOERR_TRUNCATE;
    };
  }
  static const sqlite3_io_methods& standardOf(sqlite3_file* file) {
    return *static_cast<const Methods*>(file->pMethods)->standard;
  }
  static int write(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 offset) {
    const sqlite3_io_methods& methods = standardOf(file);
    if (operations + 1 == at && how == "Killed") methods.xWrite(file, bytes, count / 2, offset);
    if (!goesOn()) return SQLITE_IOERR_WRITE;
    sqlite3_int64 size = offset + count;
    if (how == "FullDisk" && at > 0 && operations >= at) methods.xFileSize(file, &size);
    return offset + count > size ? SQLITE_FULL : methods.xWrite(file, bytes, count, offset);
  }
  static int control(sqlite3_file* file, int operation, void* argument) {
    const bool isCacheSize = operation == SQLITE_FCNTL_PRAGMA &&
                             static_cast<char**>(argument)[1] == std::string("cache_size");
    return isCacheSize ? SQLITE_OK : standardOf(file).xFileControl(file, operation, argument);
  }

  const sqlite3_io_methods* standard;
};

struct Vfs : sqlite3_vfs {
  Vfs() : sqlite3_vfs(*standardVfs) {
    zName = "failing";
    xOpen = [](sqlite3_vfs* vfs, const char* path, sqlite3_file* file, int flags, int* outFlags) {
      const int rc = standardVfs->xOpen(vfs, path, file, flags, outFlags);
      if (file->pMethods == nullptr) return rc;
      static std::mutex mutex;
      static std::map<const sqlite3_io_methods*, Methods> known;
      const std::lock_guard lock(mutex);
      file->pMethods = &known.try_emplace(file->pMethods, file->pMethods).first->second;
      return rc;
    };
    xDelete = [](sqlite3_vfs* vfs, const char* path, int syncDirectory) {
      return goesOn() ? standardVfs->xDelete(vfs, path, syncDirectory) : SQLITE_IOERR_DELETE;
    };
    if (sqlite3_vfs_register(this, /*makeDflt=*/1) != SQLITE_OK) std::abort();
  }
  ~Vfs() { std::ofstream(std::getenv("FAILING_VFS_COUNT")) << operations << '\n'; }
} vfs;

}  // namespace
