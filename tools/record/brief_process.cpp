#include "brief_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

namespace fe_db_tools {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostOutput = 4 << 20;

struct Pipe {
  int read = -1;
  int write = -1;

  bool open() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return false;
    read = ends[0];
    write = ends[1];
    return true;
  }
  void closeWrite() {
    if (write >= 0) close(write);
    write = -1;
  }
  ~Pipe() {
    closeWrite();
    if (read >= 0) close(read);
  }
};

struct Pipes {
  Pipe output;
  Pipe errors;
  Pipe failure;  ///< the error number when the program cannot be started

  bool open() { return output.open() && errors.open() && failure.open(); }
  void closeWrite() {
    output.closeWrite();
    errors.closeWrite();
    failure.closeWrite();
  }
};

/// In the new process; does not come back.
[[noreturn]] void become(const std::vector<char*>& words, const std::string& directory,
                         const Pipes& pipes) {
  setpgid(0, 0);  // so that what it starts can be ended with it
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  setenv("LC_ALL", "C", 1);
  setenv("CCACHE_DISABLE", "1", 1);
  for (const char* name : {"CPATH", "C_INCLUDE_PATH", "CPLUS_INCLUDE_PATH", "OBJC_INCLUDE_PATH",
                           "DEPENDENCIES_OUTPUT", "SUNPRO_DEPENDENCIES"}) {
    unsetenv(name);
  }
  const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  const bool isReady = nothing >= 0 && dup2(nothing, STDIN_FILENO) >= 0 &&
                       dup2(pipes.output.write, STDOUT_FILENO) >= 0 &&
                       dup2(pipes.errors.write, STDERR_FILENO) >= 0 &&
                       chdir(directory.c_str()) == 0;
  if (isReady) execvp(words[0], words.data());
  const int error = errno;
  (void)!write(pipes.failure.write, &error, sizeof error);
  _exit(127);
}

/// Appends what is there. False at the end.
bool readSome(int from, std::string& text) {
  char buffer[16384];
  const ssize_t n = ::read(from, buffer, sizeof buffer);
  if (n > 0) text.append(buffer, static_cast<std::size_t>(n));
  return n > 0 || (n < 0 && errno == EINTR);
}

/// Reads until both pipes are closed. Returns why that did not happen, else an empty text.
std::string readBoth(const Pipes& pipes, Clock::time_point end, BriefOutput& result) {
  struct pollfd sources[] = {{pipes.output.read, POLLIN, 0}, {pipes.errors.read, POLLIN, 0}};
  std::string* const texts[] = {&result.output, &result.errors};
  while (sources[0].fd >= 0 || sources[1].fd >= 0) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    if (left.count() <= 0) return "it takes too long to answer";
    if (poll(sources, 2, static_cast<int>(left.count())) < 0 && errno != EINTR)
      return "poll failed";
    for (int i = 0; i < 2; ++i) {
      if (sources[i].revents != 0 && !readSome(sources[i].fd, *texts[i])) sources[i].fd = -1;
      sources[i].revents = 0;
      if (texts[i]->size() > kMostOutput) return "it does not answer like a compiler";
    }
  }
  return {};
}

}  // namespace

BriefOutput runBriefly(const std::vector<std::string>& command, const std::string& directory,
                       std::chrono::milliseconds patience) {
  BriefOutput result;
  Pipes pipes;
  std::vector<char*> words;
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  const pid_t process = pipes.open() ? fork() : -1;
  if (process == 0) become(words, directory, pipes);
  if (process < 0) {
    result.problem = std::string("no process for it: ") + std::strerror(errno);
    return result;
  }
  setpgid(process, process);  // whoever is first
  pipes.closeWrite();
  result.problem = readBoth(pipes, Clock::now() + patience, result);
  // A program that has closed its output has finished; any other is ended here.
  kill(-process, SIGKILL);
  kill(process, SIGKILL);
  while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
  }
  int error = 0;
  if (::read(pipes.failure.read, &error, sizeof error) == sizeof error) {
    result.problem = std::strerror(error);
  }
  return result;
}

}  // namespace fe_db_tools
