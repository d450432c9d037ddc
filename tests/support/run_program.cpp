#include "run_program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace fe_db_tests {
namespace {

/// Takes what a program writes. A file and not a pipe: nobody has to read while it runs.
class Capture {
 public:
  int descriptor() const { return fileno(file_.get()); }

  std::string text() const {
    std::string text;
    char buffer[65536];
    for (ssize_t n;
         (n = pread(descriptor(), buffer, sizeof buffer, static_cast<off_t>(text.size()))) > 0;) {
      text.append(buffer, static_cast<std::size_t>(n));
    }
    return text;
  }

 private:
  std::unique_ptr<std::FILE, decltype(&std::fclose)> file_{std::tmpfile(), std::fclose};
};

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> environmentWith(const RunOptions& options) {
  std::vector<std::string> all;
  for (const auto& [name, value] : options.environment) all.push_back(name + "=" + value);
  for (char** entry = environ; *entry != nullptr; ++entry) all.emplace_back(*entry);
  return all;
}

/// In the child, where only system calls are allowed: another thread may have held any lock.
[[noreturn]] void become(char** command, char** environment, const RunOptions& options, int output,
                         int errors) {
  constexpr int kCannotRun = 127;
  if (!options.standardOutput.empty()) {
    output = open(options.standardOutput.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  }
  const bool hasInput = !options.standardInput.empty();
  dup2(open(hasInput ? options.standardInput.c_str() : "/dev/null", O_RDONLY), STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(errors, STDERR_FILENO);
  if (options.directory.empty() || chdir(options.directory.c_str()) == 0) {
    execvpe(command[0], command, environment);
  }
  _exit(kCannotRun);
}

}  // namespace

ProgramResult runProgram(const std::vector<std::string>& command, const RunOptions& options) {
  const Capture output, errors;
  std::vector<std::string> words = command;
  std::vector<std::string> variables = environmentWith(options);
  const std::vector<char*> argv = pointersTo(words), envp = pointersTo(variables);
  const pid_t child = fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (child == 0) {
    become(const_cast<char**>(argv.data()), const_cast<char**>(envp.data()), options,
           output.descriptor(), errors.descriptor());
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  ProgramResult result;
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
  result.output = output.text();
  result.errors = errors.text();
  return result;
}

}  // namespace fe_db_tests
