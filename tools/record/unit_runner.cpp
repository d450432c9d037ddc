#include "unit_runner.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <map>

#include "progress_bar.h"
#include "unit_output.h"

namespace fe_db_tools {

namespace {

struct Child {
  const Unit* unit;
  int messages;  ///< what it prints; a file in memory
};

std::vector<std::string> childArguments(const Unit& unit, const RecordOptions& options) {
  std::vector<std::string> arguments{"fe_db_record", "--output", options.outputDirectory};
  arguments.push_back(options.parse.system == SystemFacts::all ? "--system=all"
                                                               : "--system=referenced");
  if (options.keepPreprocessed) arguments.push_back("--keep-preprocessed");
  if (!options.parse.resourceDirectory.empty()) {
    arguments.push_back("--resource-dir=" + options.parse.resourceDirectory);
  }
  arguments.push_back("--");
  const CompileCommand command = unit.command();
  arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
  return arguments;
}

/// In the new process; does not come back.
[[noreturn]] void becomeUnit(const Unit& unit, const std::vector<std::string>& arguments,
                             int messages) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  dup2(messages, STDERR_FILENO);
  std::vector<char*> words;
  for (const std::string& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  if (chdir(unit.directory.c_str()) != 0) {
    std::fprintf(stderr, "fe_db_record: %s: cannot be entered: %s\n", unit.directory.c_str(),
                 std::strerror(errno));
  } else {
    execv("/proc/self/exe", words.data());
    std::fprintf(stderr, "fe_db_record: cannot start itself: %s\n", std::strerror(errno));
  }
  std::fflush(stderr);
  _exit(1);
}

void passOn(int messages) {
  char buffer[4096];
  lseek(messages, 0, SEEK_SET);
  for (ssize_t n = read(messages, buffer, sizeof buffer); n > 0;
       n = read(messages, buffer, sizeof buffer)) {
    std::fwrite(buffer, 1, static_cast<std::size_t>(n), stderr);
  }
  close(messages);
}

class Runner {
 public:
  Runner(const std::vector<Unit>& units, const RecordOptions& options)
      : units(units), options(options), bar(units.size()) {}

  RunSummary run(std::size_t jobs) {
    bar.show(0);
    for (std::size_t next = 0; next < units.size() || !children.empty();) {
      if (next < units.size() && children.size() < jobs) {
        start(units[next++]);
      } else {
        finishOne();
      }
    }
    return summary;
  }

 private:
  void start(const Unit& unit) {
    const std::vector<std::string> arguments = childArguments(unit, options);
    const int messages = memfd_create("fe_db_record", MFD_CLOEXEC);
    const pid_t process = messages < 0 ? -1 : fork();
    if (process == 0) becomeUnit(unit, arguments, messages);
    if (process < 0) {
      bar.clear();
      std::fprintf(stderr, "fe_db_record: %s: no process for it: %s\n", unit.sourcePath().c_str(),
                   std::strerror(errno));
      if (messages >= 0) close(messages);
      ++summary.failed;
      return;
    }
    children[process] = {&unit, messages};
  }

  void finishOne() {
    int status = 0;
    const pid_t process = wait(&status);
    const auto child = children.find(process);
    if (child == children.end()) return;
    const bool isRecorded = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    ++(isRecorded ? summary.recorded : summary.failed);
    bar.clear();
    passOn(child->second.messages);
    if (WIFSIGNALED(status)) reportKilled(*child->second.unit, WTERMSIG(status));
    children.erase(child);
    const std::string failed =
        summary.failed == 0 ? "" : std::to_string(summary.failed) + " failed";
    bar.show(summary.recorded + summary.failed, failed);
  }

  void reportKilled(const Unit& unit, int signal) {
    std::fprintf(stderr,
                 "fe_db_record: %s: its process was killed (%s); nothing of it is recorded\n",
                 unit.sourcePath().c_str(), strsignal(signal));
    // What it left half-written goes with this object.
    UnitOutput(options.outputDirectory, unit.name(), options.keepPreprocessed);
  }

  const std::vector<Unit>& units;
  const RecordOptions& options;
  ProgressBar bar;
  std::map<pid_t, Child> children;
  RunSummary summary;
};

}  // namespace

RunSummary runUnits(const std::vector<Unit>& units, const RecordOptions& options,
                    std::size_t jobs) {
  return Runner(units, options).run(jobs);
}

}  // namespace fe_db_tools
