#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

/// Preloaded into a program, numbers its calls that open, read or change files below a directory,
/// and disturbs the one that it is told to. Processes that the program starts go on with the count.
///
///   FAULTS_BELOW  the directory: absolute, without symbolic links; others are left alone
///   FAULTS_LOG    8 zero bytes, the counter. Of each call follows a line: number, kind, errno,
///                 inode, two values, path; after that of a write the bytes that it wrote
///   FAULTS_AT     the number, from 1
///   FAULTS_HOW    what becomes of that call:
///     EIO ENOSPC ...   it fails for this reason
///     EIO+ ENOSPC+     so do all later ones that change something, or that need more room
///     short            a write does half of it and says so
///     kill-before kill-half kill-after   the process is killed; half: of a write
///     lost             the whole process group is killed after it, as when the power fails
///   FAULTS_CACHE  pages in SQLite's cache, so that a small transaction writes before its commit
///
/// Nothing is synchronised in truth: what would be lost is computed from the log.
namespace {

std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

struct State {
  State() {
    for (const int known : {EIO, ENOSPC, EACCES, EINVAL}) {
      const std::string name = strerrorname_np(known);
      if (how == name || how == name + '+') error = known;
    }
    void* shared =
        mmap(nullptr, sizeof *calls, PROT_READ | PROT_WRITE, MAP_SHARED, static_cast<int>(log), 0);
    if (below.empty() || shared == MAP_FAILED) std::abort();
    calls = static_cast<std::atomic<long>*>(shared);
  }

  std::mutex mutex;  ///< records come in the order in which the calls were carried out
  const std::string below = variable("FAULTS_BELOW");
  const std::string how = variable("FAULTS_HOW");
  const std::string cache = variable("FAULTS_CACHE");
  const long at = std::atol(variable("FAULTS_AT").c_str());
  const long log = syscall(SYS_openat, AT_FDCWD, variable("FAULTS_LOG").c_str(),
                           O_RDWR | O_APPEND | O_CLOEXEC, 0);
  int error = 0;
  std::atomic<long>* calls = nullptr;
};

State& state() {
  static State* const only = new State;  // outlives every destructor that still writes
  return *only;
}

[[noreturn]] void die(bool withGroup) {
  kill(withGroup ? 0 : getpid(), SIGKILL);
  for (;;) pause();
}

struct Call {
  const char* kind;
  std::string path;
  unsigned long inode = 0;
  long values[2] = {0, 0};
  bool changes = true;
  bool needsRoom = false;
  const void* bytes = nullptr;  ///< what a write wrote, as many as the second value says
};

void record(long number, const Call& call, int error) {
  char head[128];
  std::snprintf(head, sizeof head, "%ld %s %d %lu %ld %ld ", number, call.kind, error, call.inode,
                call.values[0], call.values[1]);
  std::string text = head + call.path + '\n';
  const bool hasBytes = call.bytes != nullptr && error == 0;
  const iovec parts[] = {
      {text.data(), text.size()},
      {const_cast<void*>(call.bytes), hasBytes ? static_cast<std::size_t>(call.values[1]) : 0}};
  if (syscall(SYS_writev, state().log, parts, 2) < 0) std::abort();
}

bool isBelow(const std::string& path) {
  const std::string& below = state().below;
  return path.starts_with(below) && (path.size() == below.size() || path[below.size()] == '/');
}

/// Carries out a call, or not. `real(call, half)` answers as the call does, -1 with errno, and adds
/// to the record what is known only then.
template <class Real>
long run(Call call, Real real) {
  if (!isBelow(call.path)) return real(call, false);
  State& faults = state();
  const std::lock_guard lock(faults.mutex);
  const long number = ++*faults.calls;
  const bool isHere = number == faults.at;
  const bool isLater = faults.at != 0 && number > faults.at && faults.how.ends_with('+') &&
                       (faults.error == ENOSPC ? call.needsRoom : call.changes);
  if (isHere && faults.how == "kill-before") die(/*withGroup=*/false);
  long result = -1;
  int error = isHere || isLater ? faults.error : 0;
  if (error == 0) {
    errno = 0;
    result = real(call, isHere && (faults.how == "short" || faults.how == "kill-half"));
    if (result < 0) error = errno;
  }
  record(number, call, error);
  if (isHere && faults.how.starts_with("kill")) die(/*withGroup=*/false);
  if (isHere && faults.how == "lost") die(/*withGroup=*/true);
  errno = error;
  return result;
}

// --- Files by their descriptors.

std::string pathOf(int descriptor) {
  char path[PATH_MAX];
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
  const ssize_t length = readlink(link.c_str(), path, sizeof path);
  return length < 0 ? "" : std::string(path, static_cast<std::size_t>(length));
}

struct stat statusOf(int descriptor) {
  struct stat status {};
  fstat(descriptor, &status);
  return status;
}

/// Without an offset: where the file stands.
ssize_t writeAt(int descriptor, const void* bytes, std::size_t count, const off_t* offset) {
  const struct stat before = statusOf(descriptor);
  const bool appends = (fcntl(descriptor, F_GETFL) & O_APPEND) != 0;
  const off_t place = appends             ? before.st_size
                      : offset != nullptr ? *offset
                                          : lseek(descriptor, 0, SEEK_CUR);
  Call call{"write", pathOf(descriptor), before.st_ino, {place, 0}};
  call.needsRoom = place + static_cast<off_t>(count) > before.st_size;
  call.bytes = bytes;
  return run(call, [&](Call& done, bool isHalf) {
    const std::size_t size = isHalf ? (count + 1) / 2 : count;
    done.values[1] = offset != nullptr ? syscall(SYS_pwrite64, descriptor, bytes, size, *offset)
                                       : syscall(SYS_write, descriptor, bytes, size);
    return done.values[1];
  });
}

ssize_t readAt(int descriptor, void* bytes, std::size_t count, const off_t* offset) {
  return run({"read", pathOf(descriptor), 0, {}, /*changes=*/false}, [&](Call&, bool) {
    return offset != nullptr ? syscall(SYS_pread64, descriptor, bytes, count, *offset)
                             : syscall(SYS_read, descriptor, bytes, count);
  });
}

int sync(int descriptor) {
  const struct stat status = statusOf(descriptor);
  const Call call{"sync", pathOf(descriptor), status.st_ino, {S_ISDIR(status.st_mode), 0}};
  return static_cast<int>(run(call, [](Call&, bool) { return 0L; }));
}

int truncateTo(int descriptor, off_t size) {
  const Call call{"truncate", pathOf(descriptor), statusOf(descriptor).st_ino, {size, 0}};
  const auto real = [&](Call&, bool) { return syscall(SYS_ftruncate, descriptor, size); };
  return static_cast<int>(run(call, real));
}

// --- Files by their names.

std::string absolute(int directory, const char* path) {
  if (path[0] == '/') return path;
  char here[PATH_MAX];
  if (directory != AT_FDCWD) return pathOf(directory) + '/' + path;
  return std::string(getcwd(here, sizeof here) == nullptr ? "" : here) + '/' + path;
}

/// With a stream: opened by the C library, and that is the answer.
int openAt(int directory, const char* name, int flags, mode_t mode, FILE** stream = nullptr,
           const char* how = nullptr) {
  Call call{"open", absolute(directory, name)};
  struct stat before {};
  const bool isNew = (flags & O_CREAT) != 0 && lstat(call.path.c_str(), &before) != 0;
  const bool isEmptied = (flags & O_TRUNC) != 0;
  call.values[0] = isNew;
  call.values[1] = isEmptied;
  call.needsRoom = isNew;
  call.changes = isNew || isEmptied;
  return static_cast<int>(run(call, [&](Call& done, bool) -> long {
    long descriptor = -1;
    if (stream == nullptr) {
      descriptor = syscall(SYS_openat, directory, name, flags, mode);
    } else {
      static const auto next =
          reinterpret_cast<FILE* (*)(const char*, const char*)>(dlsym(RTLD_NEXT, "fopen64"));
      *stream = next(name, how);
      if (*stream != nullptr) descriptor = fileno(*stream);
    }
    if (descriptor >= 0) done.inode = statusOf(static_cast<int>(descriptor)).st_ino;
    return descriptor;
  }));
}

/// Rename and link. The path of the record is both, separated by a tab.
int pair(const char* kind, int fromAt, const char* from, int toAt, const char* to, long system,
         unsigned flags) {
  Call call{kind, absolute(fromAt, from) + '\t' + absolute(toAt, to)};
  call.needsRoom = true;
  const auto real = [&](Call&, bool) { return syscall(system, fromAt, from, toAt, to, flags); };
  return static_cast<int>(run(call, real));
}

}  // namespace

// --- Under the names by which programs and libraries call them.

#define OPEN_WITH_MODE(parameters, directory)                              \
  parameters {                                                             \
    va_list rest;                                                          \
    va_start(rest, flags);                                                 \
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0; \
    va_end(rest);                                                          \
    return openAt(directory, path, flags, mode);                           \
  }

extern "C" {

OPEN_WITH_MODE(int open(const char* path, int flags, ...), AT_FDCWD)
OPEN_WITH_MODE(int open64(const char* path, int flags, ...), AT_FDCWD)
OPEN_WITH_MODE(int openat(int at, const char* path, int flags, ...), at)
OPEN_WITH_MODE(int openat64(int at, const char* path, int flags, ...), at)
int __open_2(const char* path, int flags) { return openAt(AT_FDCWD, path, flags, 0); }
int __open64_2(const char* path, int flags) { return openAt(AT_FDCWD, path, flags, 0); }
FILE* fopen64(const char* path, const char* how) {
  const int writing = how[0] == 'w' ? O_CREAT | O_TRUNC : O_CREAT;
  FILE* stream = nullptr;
  openAt(AT_FDCWD, path, how[0] == 'r' ? O_RDONLY : writing, 0, &stream, how);
  return stream;
}
FILE* fopen(const char* path, const char* how) { return fopen64(path, how); }

ssize_t write(int file, const void* from, size_t n) { return writeAt(file, from, n, nullptr); }
ssize_t pwrite(int file, const void* from, size_t n, off_t at) {
  return writeAt(file, from, n, &at);
}
ssize_t pwrite64(int file, const void* from, size_t n, off64_t at) {
  return writeAt(file, from, n, &at);
}
ssize_t writev(int file, const iovec* parts, int count) {
  std::string bytes;
  for (int i = 0; i < count; ++i) {
    bytes.append(static_cast<const char*>(parts[i].iov_base), parts[i].iov_len);
  }
  return writeAt(file, bytes.data(), bytes.size(), nullptr);
}
ssize_t read(int file, void* to, size_t n) { return readAt(file, to, n, nullptr); }
ssize_t pread(int file, void* to, size_t n, off_t at) { return readAt(file, to, n, &at); }
ssize_t pread64(int file, void* to, size_t n, off64_t at) { return readAt(file, to, n, &at); }
int fsync(int file) { return sync(file); }
int fdatasync(int file) { return sync(file); }
int ftruncate(int file, off_t size) noexcept { return truncateTo(file, size); }
int ftruncate64(int file, off64_t size) noexcept { return truncateTo(file, size); }

int renameat2(int fromAt, const char* from, int toAt, const char* to, unsigned flags) noexcept {
  return pair("rename", fromAt, from, toAt, to, SYS_renameat2, flags);
}
int rename(const char* from, const char* to) noexcept {
  return renameat2(AT_FDCWD, from, AT_FDCWD, to, 0);
}
int linkat(int fromAt, const char* from, int toAt, const char* to, int flags) noexcept {
  return pair("link", fromAt, from, toAt, to, SYS_linkat, static_cast<unsigned>(flags));
}
int link(const char* from, const char* to) noexcept {
  return linkat(AT_FDCWD, from, AT_FDCWD, to, 0);
}
int mkdirat(int at, const char* path, mode_t mode) noexcept {
  Call call{"mkdir", absolute(at, path)};
  call.needsRoom = true;
  const auto real = [&](Call&, bool) { return syscall(SYS_mkdirat, at, path, mode); };
  return static_cast<int>(run(call, real));
}
int mkdir(const char* path, mode_t mode) noexcept { return mkdirat(AT_FDCWD, path, mode); }

int unlinkat(int at, const char* path, int flags) noexcept {
  const auto real = [&](Call&, bool) { return syscall(SYS_unlinkat, at, path, flags); };
  return static_cast<int>(run({"unlink", absolute(at, path)}, real));
}
int unlink(const char* path) noexcept { return unlinkat(AT_FDCWD, path, 0); }
int remove(const char* path) noexcept {
  const int result = unlink(path);
  return result != 0 && errno == EISDIR ? unlinkat(AT_FDCWD, path, AT_REMOVEDIR) : result;
}

int sqlite3_exec(void* connection, const char* sql, int (*row)(void*, int, char**, char**),
                 void* context, char** error) {
  static const auto next =
      reinterpret_cast<decltype(&sqlite3_exec)>(dlsym(RTLD_NEXT, "sqlite3_exec"));
  const bool isCacheSize = !state().cache.empty() &&
                           std::strstr(sql, "PRAGMA cache_size=") == sql &&
                           std::strchr(sql, ';') == nullptr;
  const std::string small = "PRAGMA cache_size=" + state().cache;
  return next(connection, isCacheSize ? small.c_str() : sql, row, context, error);
}

}  // extern "C"
