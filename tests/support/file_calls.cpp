#include <dlfcn.h>
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

/// Preloaded into a program, sees the calls by which it changes files.
///
///   FILE_CALLS_LOG    gets a line for each that succeeded: "write PATH", "sync PATH",
///                     "rename FROM TO", "remove PATH", "make PATH"
///   FILE_CALLS_KILL   the program is killed before the call of this number, from 1; writes do not
///                     count. By FILE_CALLS_SIGNAL, if that is set
///   FILE_CALLS_FAIL   calls that fail: " renameat2=22 /dev/null=2 ", a function, or a path for
///                     open(), and the value of `errno`
namespace {

template <class Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

void log(const std::string& line) {
  static const char* const path = std::getenv("FILE_CALLS_LOG");
  static ssize_t (*const write)(int, const void*, size_t) =
      next<ssize_t(int, const void*, size_t)>("write");
  static int (*const open)(const char*, int, ...) = next<int(const char*, int, ...)>("open");
  if (path == nullptr) return;
  const int error = errno;
  const int file = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  const std::string whole = line + '\n';
  if (write(file, whole.data(), whole.size()) < 0) std::abort();
  close(file);
  errno = error;
}

std::string nameOf(int descriptor) {
  char name[PATH_MAX];
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
  const ssize_t size = readlink(link.c_str(), name, sizeof name);
  return {name, static_cast<std::size_t>(size < 0 ? 0 : size)};
}

bool fails(const std::string& function) {
  static const char* const list = std::getenv("FILE_CALLS_FAIL");
  const std::string start = ' ' + function + '=';
  const char* const found = list == nullptr ? nullptr : std::strstr(list, start.c_str());
  if (found == nullptr) return false;
  errno = std::atoi(found + start.size());
  return true;
}

void count() {
  static const char* const at = std::getenv("FILE_CALLS_KILL");
  static const char* const signal = std::getenv("FILE_CALLS_SIGNAL");
  static int calls = 0;
  if (at == nullptr || ++calls != std::atoi(at)) return;
  std::raise(signal != nullptr ? std::atoi(signal) : SIGKILL);
}

template <class... Arguments>
int change(const char* function, const std::string& line, Arguments... arguments) {
  count();
  if (fails(function)) return -1;
  const int result = next<int(Arguments...)>(function)(arguments...);
  if (result == 0) log(line);
  return result;
}

template <class... Arguments>
ssize_t writeTo(int file, const char* function, Arguments... arguments) {
  const ssize_t result = next<ssize_t(int, Arguments...)>(function)(file, arguments...);
  if (const std::string name = nameOf(file); name.starts_with('/')) log("write " + name);
  return result;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  if (fails(path)) return -1;
  va_list rest;
  va_start(rest, flags);
  const int mode = (flags & O_CREAT) != 0 ? va_arg(rest, int) : 0;
  va_end(rest);
  return next<int(const char*, int, ...)>("open")(path, flags, mode);
}
ssize_t write(int file, const void* bytes, size_t size) {
  return writeTo(file, "write", bytes, size);
}
ssize_t writev(int file, const iovec* parts, int number) {
  return writeTo(file, "writev", parts, number);
}
ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t offset) {
  return writeTo(file, "pwrite64", bytes, size, offset);
}
int fsync(int file) { return change("fsync", "sync " + nameOf(file), file); }
int fdatasync(int file) { return change("fdatasync", "sync " + nameOf(file), file); }
int mkdir(const char* path, mode_t mode) noexcept {
  return change("mkdir", std::string("make ") + path, path, mode);
}
int rmdir(const char* path) noexcept {
  return change("rmdir", std::string("remove ") + path, path);
}
int unlink(const char* path) noexcept {
  return change("unlink", std::string("remove ") + path, path);
}
int remove(const char* path) noexcept {
  return change("remove", std::string("remove ") + path, path);
}
int rename(const char* from, const char* to) noexcept {
  return change("rename", std::string("rename ") + from + ' ' + to, from, to);
}
int link(const char* from, const char* to) noexcept {
  return change("link", std::string("link ") + from + ' ' + to, from, to);
}
int renameat2(int fromDirectory, const char* from, int toDirectory, const char* to,
              unsigned flags) noexcept {
  return change("renameat2", std::string("rename ") + from + ' ' + to, fromDirectory, from,
                toDirectory, to, flags);
}
}
