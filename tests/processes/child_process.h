#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/run_program.h"

namespace fe_db_tests {

/// A running program that the test talks to: lines of its standard output come here, a line can be
/// given to it. Killed on destruction unless it was waited for.
class ChildProcess {
 public:
  ChildProcess(std::vector<std::string> command, std::string errorFile)
      : errorFile(std::move(errorFile)) {
    int input[2];
    int output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0) std::abort();
    std::vector<char*> arguments;
    for (std::string& argument : command) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    pid = fork();
    if (pid == 0) {
      dup2(input[0], STDIN_FILENO);
      dup2(output[1], STDOUT_FILENO);
      dup2(open(this->errorFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666), STDERR_FILENO);
      execv(arguments[0], arguments.data());
      _exit(127);
    }
    close(input[0]);
    close(output[1]);
    toChild = input[1];
    fromChild = output[0];
  }
  ~ChildProcess() {
    kill();
    wait();
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// The next line of its standard output, empty at the end.
  std::string readLine() {
    std::string line;
    for (char c; read(fromChild, &c, 1) == 1 && c != '\n';) line += c;
    return line;
  }
  /// Lets it go on: closes its standard input.
  void release() {
    if (toChild >= 0) close(toChild);
    toChild = -1;
  }
  void kill() {
    if (pid > 0) ::kill(pid, SIGKILL);
  }
  bool isRunning() {
    siginfo_t state{};
    return pid > 0 && waitid(P_PID, pid, &state, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           state.si_pid == 0;
  }
  ProgramResult wait() {
    ProgramResult result;
    if (pid <= 0) return result;
    release();
    int status = 0;
    waitpid(pid, &status, 0);
    pid = -1;
    close(fromChild);
    if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
    std::ostringstream errors;
    errors << std::ifstream(errorFile).rdbuf();
    result.errors = errors.str();
    return result;
  }

 private:
  std::string errorFile;
  pid_t pid;
  int toChild;
  int fromChild;
};

}  // namespace fe_db_tests
