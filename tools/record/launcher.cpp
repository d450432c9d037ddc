#include "launcher.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "compiler_inquiry.h"
#include "output_directory.h"
#include "product.h"
#include "unit_runner.h"

namespace fe_db_tools {

namespace {

constexpr int kCannotRun = 126;
constexpr int kNotFound = 127;

/// Like a shell.
int runCompiler(const std::vector<std::string>& command) {
  std::vector<char*> words;
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  // Where whoever started this program ignores the end of children, waiting for one is in vain.
  const auto before = std::signal(SIGCHLD, SIG_DFL);
  const pid_t process = fork();
  if (process == 0) {
    std::signal(SIGCHLD, before);
    // Who stops the build by ending its processes means the compiler too.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    execvp(words[0], words.data());
    const int error = errno;
    std::fprintf(stderr, "fe_db_record: %s: cannot be run: %s\n", words[0], std::strerror(error));
    std::fflush(stderr);
    _exit(error == ENOENT ? kNotFound : kCannotRun);
  }
  int status = 0;
  while (process >= 0 && waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  if (process < 0) throw std::runtime_error(command[0] + ": no process for it");
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

/// The files of a unit are named like the object with their endings added. Without an object: like
/// the program, a hyphen and the source.
std::filesystem::path recordPath(const Product& product, const std::string& source) {
  const std::filesystem::path name = std::filesystem::path(source).filename();
  if (product.hasPrograms) {
    return (product.output.empty() ? "a.out" : product.output) + "-" + name.string();
  }
  return objectName(product, source);
}

/// What is no source of a project, but asks the compiler something: /dev/null and its like, and the
/// sources that configure scripts of Autoconf make up.
bool isQuestion(const std::filesystem::path& source) {
  return !std::filesystem::is_regular_file(source) || source.stem() == "conftest";
}

void recordSource(const Unit& unit, const Product& product, RecordOptions options) {
  if (options.outputDirectory.empty()) {
    const auto object = std::filesystem::absolute(recordPath(product, unit.source));
    options.outputDirectory = object.parent_path().string();
    options.name = object.filename().string();
  } else {
    options.outputDirectory = std::filesystem::absolute(options.outputDirectory).string();
    makeOutputDirectory(options.outputDirectory);
  }
  runUnits({unit}, options, /*jobs=*/1, Messages::oneLine);
}

void recordCompiled(const CommandLine& line) {
  const std::string here = std::filesystem::current_path().string();
  const Product product = productOf(plainWords({here, line.command}));
  // To /dev/null goes what only asks the compiler something.
  const bool isKept = product.output.empty() || std::filesystem::is_regular_file(product.output);
  if (!product.isCompiled || !isKept) return;
  const CleanCommand clean = cleanCommand({here, line.command});
  if (clean.sources.empty()) return;
  if (!clean.refusal.empty()) throw std::runtime_error(clean.sources[0] + ": " + clean.refusal);
  if (!line.launcherProblem.empty()) throw std::runtime_error(line.launcherProblem);
  CompilerInquiry inquiry(CompilerInquiry::Memory::lasting);
  for (const std::string& source : clean.sources) {
    if (isQuestion(source)) continue;
    Unit unit{here, source, clean.flags, clean.compiler};
    unit.object = objectOf({here, line.command}, source);
    std::string warning;
    const std::string refusal = inquiry.askFor(unit, warning);
    if (!refusal.empty()) throw std::runtime_error(unit.sourcePath() + ": " + refusal);
    if (!warning.empty()) std::fprintf(stderr, "fe_db_record: %s\n", warning.c_str());
    recordSource(unit, product, line.record);
  }
}

}  // namespace

int launch(const CommandLine& line) {
  const int exitCode = runCompiler(line.command);
  if (exitCode != 0) return exitCode;
  try {
    recordCompiled(line);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "fe_db_record: %s\n", error.what());
  }
  return exitCode;
}

}  // namespace fe_db_tools
