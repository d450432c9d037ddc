#include "unit_runner.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <map>
#include <stdexcept>

#include "compiler_answer.h"
#include "manifest.h"
#include "run_progress.h"
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
  arguments.push_back(options.parse.references == ReferenceFacts::all ? "--references=all"
                                                                      : "--references=none");
  if (options.keepPreprocessed) arguments.push_back("--keep-preprocessed");
  if (options.parse.keepGoing) arguments.push_back("--keep-going");
  if (!options.name.empty()) arguments.push_back("--name=" + options.name);
  arguments.push_back("--force");
  if (!options.parse.resourceDirectory.empty()) {
    arguments.push_back("--resource-dir=" + options.parse.resourceDirectory);
  }
  for (const std::string& word : options.parse.extraArguments) {
    arguments.push_back("--extra-arg=" + word);
  }
  for (const std::string& glob : options.parse.removedArguments) {
    arguments.push_back("--remove-arg=" + glob);
  }
  arguments.push_back("--compiler-answer=" + (unit.answer ? unit.answer->text() : ""));
  if (!unit.object.empty()) arguments.push_back("--object=" + unit.object);
  arguments.push_back("--");
  const CompileCommand command = unit.command();
  arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
  return arguments;
}

/// Blocks SIGCHLD so that it can be waited for. A caller that ignores it would lose exit codes.
class ChildSignal {
 public:
  ChildSignal() {
    std::signal(SIGCHLD, SIG_DFL);
    sigemptyset(&children);
    sigaddset(&children, SIGCHLD);
    sigprocmask(SIG_BLOCK, &children, &before);
  }
  ~ChildSignal() { restore(); }
  ChildSignal(const ChildSignal&) = delete;
  ChildSignal& operator=(const ChildSignal&) = delete;

  void restore() const { sigprocmask(SIG_SETMASK, &before, nullptr); }
  void wait(std::chrono::nanoseconds most) const {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(most);
    const struct timespec time {
      static_cast<time_t>(seconds.count()), static_cast<long>((most - seconds).count())
    };
    sigtimedwait(&children, nullptr, &time);
  }

 private:
  sigset_t children;
  sigset_t before;
};

/// In the new process; does not come back.
[[noreturn]] void becomeUnit(const Unit& unit, const std::vector<std::string>& arguments,
                             unsigned timeout, int messages) {
  // The alarm stays set when the program changes, and ends it.
  std::signal(SIGALRM, SIG_DFL);
  alarm(timeout);
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

std::string readAll(int messages) {
  std::string text;
  char buffer[4096];
  lseek(messages, 0, SEEK_SET);
  for (ssize_t n = read(messages, buffer, sizeof buffer); n > 0;
       n = read(messages, buffer, sizeof buffer)) {
    text.append(buffer, static_cast<std::size_t>(n));
  }
  close(messages);
  return text;
}

std::string lineWith(const std::string& text, std::size_t at) {
  const std::size_t start = text.rfind('\n', at) + 1;
  return text.substr(start, text.find('\n', at) - start);
}

/// This program's own last line, which reports the result, and the first error.
std::string verdictOf(const std::string& text) {
  const std::size_t verdict = text.rfind("fe_db_record: ");
  if (verdict == std::string::npos) return {};
  const std::size_t error = text.find("error: ");
  if (error == std::string::npos) return lineWith(text, verdict) + '\n';
  return lineWith(text, verdict) + " (" + lineWith(text, error) + ")\n";
}

class Runner {
 public:
  Runner(const std::vector<Unit>& all, const RecordOptions& options, Messages messages)
      : options(options),
        verbosity(messages),
        changed(changedOf(all)),
        progress(messages == Messages::all ? changed.size() : 0),
        started(Clock::now()) {
    summary.reused = all.size() - changed.size();
  }

  RunSummary run(std::size_t jobs) {
    progress.show(0, note());
    for (std::size_t next = 0; next < changed.size() || !children.empty();) {
      if (next < changed.size() && children.size() < jobs) {
        start(*changed[next++]);
      } else {
        finishOne();
      }
    }
    return summary;
  }

 private:
  using Clock = std::chrono::steady_clock;

  std::vector<const Unit*> changedOf(const std::vector<Unit>& all) const {
    std::vector<const Unit*> units;
    ReuseCheck check;
    for (const Unit& unit : all) {
      if (options.force || !check.isUnchanged(unit, options)) units.push_back(&unit);
    }
    return units;
  }

  std::string note() const {
    std::string text;
    if (summary.reused != 0) text += std::to_string(summary.reused) + " reused, ";
    if (summary.failed != 0) text += std::to_string(summary.failed) + " failed, ";
    const std::chrono::duration<double> spent = Clock::now() - started;
    const double rate = static_cast<double>(summary.facts) / std::max(spent.count(), 0.001);
    return text + std::to_string(static_cast<long>(rate)) + " facts per second";
  }

  void start(const Unit& unit) {
    const std::vector<std::string> arguments = childArguments(unit, options);
    const int messages = memfd_create("fe_db_record", MFD_CLOEXEC);
    const pid_t process = messages < 0 ? -1 : fork();
    if (process == 0) {
      childSignal.restore();
      becomeUnit(unit, arguments, options.timeout, messages);
    }
    if (process < 0) {
      const std::string text = "fe_db_record: " + unit.sourcePath() +
                               ": no process for it: " + std::strerror(errno) + '\n';
      if (messages >= 0) close(messages);
      return report(unit, /*isRecorded=*/false, text);
    }
    children[process] = {&unit, messages};
  }

  /// Shows how far the run is while it waits.
  pid_t waitForChild(int& status) {
    for (;;) {
      const pid_t process = waitpid(-1, &status, WNOHANG);
      if (process != 0) return process;
      childSignal.wait(progress.untilNext());
      progress.show(summary.recorded + summary.failed, note());
    }
  }

  void finishOne() {
    int status = 0;
    const auto child = children.find(waitForChild(status));
    if (child == children.end()) return;
    const Unit& unit = *child->second.unit;
    std::string text = readAll(child->second.messages);
    children.erase(child);
    if (WIFSIGNALED(status)) text += killed(unit, WTERMSIG(status));
    const bool isRecorded = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    if (isRecorded) {
      const UnitOutput output(options.outputDirectory, options.nameOf(unit), false);
      summary.facts += factsOf(output.manifest());
    }
    report(unit, isRecorded, text);
  }

  void report(const Unit& unit, bool isRecorded, const std::string& text) {
    ++(isRecorded ? summary.recorded : summary.failed);
    if (!isRecorded) summary.causes.add(unit.sourcePath(), text);
    const std::string shown = verbosity == Messages::oneLine ? verdictOf(text) : text;
    progress.clear();
    std::fwrite(shown.data(), 1, shown.size(), stderr);
    progress.show(summary.recorded + summary.failed, note());
  }

  std::string killed(const Unit& unit, int signal) const {
    try {
      UnitOutput output(options.outputDirectory, options.nameOf(unit), false);
      output.begin();  // what the process has left goes with this object
      output.removePublished();
    } catch (const std::runtime_error&) {
      // The next run of the unit removes them as well.
    }
    const std::string start = "fe_db_record: " + unit.sourcePath() + ": ";
    if (signal == SIGALRM && options.timeout != 0) {
      return start + "took longer than " + std::to_string(options.timeout) +
             " s and was killed; nothing of it is recorded; give it more with --timeout\n";
    }
    return start + "its process was killed (" + strsignal(signal) +
           "); nothing of it is recorded\n";
  }

  const RecordOptions& options;
  Messages verbosity;
  std::vector<const Unit*> changed;
  RunProgress progress;
  ChildSignal childSignal;
  Clock::time_point started;
  std::map<pid_t, Child> children;
  RunSummary summary;
};

}  // namespace

RunSummary runUnits(const std::vector<Unit>& units, const RecordOptions& options, std::size_t jobs,
                    Messages messages) {
  return Runner(units, options, messages).run(jobs);
}

}  // namespace fe_db_tools
