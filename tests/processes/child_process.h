#pragma once

#include <sys/stat.h>

#include <csignal>
#include <cstdio>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/run_program.h"

namespace fe_db_tests {

/// A running program that the test talks to: lines of its standard output come here, and it can be
/// told to go on. Killed on destruction unless it was waited for.
class ChildProcess {
 public:
  /// `pipes`: a path, which is extended to those of its input and output.
  ChildProcess(std::vector<std::string> command, const std::string& pipes) {
    const std::string in = pipes + ".in", out = pipes + ".out";
    for (const std::string& name : {in, out}) mkfifo(name.c_str(), 0600);
    command.insert(command.begin(), {"sh", "-c", "echo $$; exec \"$0\" \"$@\""});
    ended = std::async(std::launch::async, runProgram, command,
                       RunOptions{.standardInput = in, .standardOutput = out});
    // In the order in which the program opens them; no later process inherits them.
    output.reset(std::fopen(out.c_str(), "re"));
    input.reset(std::fopen(in.c_str(), "we"));
    pid = std::stoi(readLine());
  }
  ~ChildProcess() {
    if (!ended.valid()) return;
    kill();
    wait();
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// The next line of its standard output, empty at the end.
  std::string readLine() {
    std::string line;
    for (int c; (c = std::fgetc(output.get())) != EOF && c != '\n';) line += static_cast<char>(c);
    return line;
  }
  /// Lets it go on: closes its standard input.
  void release() { input.reset(); }
  void kill() { ::kill(pid, SIGKILL); }
  ProgramResult wait() {
    release();
    return ended.get();
  }

 private:
  using File = std::unique_ptr<std::FILE, decltype(&std::fclose)>;

  File output{nullptr, std::fclose}, input{nullptr, std::fclose};
  std::future<ProgramResult> ended;
  pid_t pid = 0;
};

}  // namespace fe_db_tests
