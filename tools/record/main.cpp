#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <set>

#include "command_line.h"
#include "compile_database.h"
#include "compiler_inquiry.h"
#include "launcher.h"
#include "manifest.h"
#include "output_directory.h"
#include "product.h"
#include "standard_streams.h"
#include "unit_output.h"
#include "unit_runner.h"

namespace fe_db_tools {

namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

/// Keeps the units of the files asked for. False when one is not in the database.
bool selectFiles(const CommandLine& line, CompileDatabase& database) {
  if (line.files.empty()) return true;
  const std::string here = std::filesystem::current_path().string();
  std::set<std::string> wanted;
  for (const std::string& file : line.files) wanted.insert(physicalPath(here, file));
  std::set<std::string> missing = wanted;
  std::erase_if(database.units, [&](const Unit& unit) {
    missing.erase(unit.sourcePath());
    return wanted.count(unit.sourcePath()) == 0;
  });
  std::erase_if(database.refused, [&](const RefusedUnit& unit) {
    missing.erase(unit.source);
    return wanted.count(unit.source) == 0;
  });
  for (const std::string& file : missing) {
    std::fprintf(stderr,
                 "fe_db_record: %s: no source of the compile_commands.json of %s; give one that is "
                 "compiled there\n",
                 file.c_str(), line.buildDirectory.c_str());
  }
  return missing.empty();
}

void reportRefused(const RefusedUnit& unit) {
  std::fprintf(stderr, "fe_db_record: %s: %s\n", unit.source.c_str(), unit.reason.c_str());
}

void print(const CompileDatabase& database, const RunSummary& summary, const std::string& directory,
           double seconds) {
  struct rusage children {};
  getrusage(RUSAGE_CHILDREN, &children);
  std::printf("%zu of %zu units recorded in %s", summary.recorded,
              database.units.size() + database.refused.size(), directory.c_str());
  if (summary.reused != 0) std::printf(", %zu reused", summary.reused);
  const std::size_t failed = summary.failed + database.refused.size();
  if (failed != 0) std::printf(", %zu failed", failed);
  if (database.skipped != 0) {
    std::printf(", %zu entries skipped that compile no C or C++ source", database.skipped);
  }
  std::printf(", %zu facts, %.2f s", summary.facts, seconds);
  if (summary.recorded + summary.failed != 0) {
    const double mebibytes = static_cast<double>(children.ru_maxrss) / 1024;
    std::printf(", at most %.1f MiB memory for a unit", mebibytes);
  }
  std::printf("\n");
  FailureCauses causes = summary.causes;
  for (const RefusedUnit& unit : database.refused) causes.add(unit.source, unit.reason);
  std::fputs(causes.text().c_str(), stdout);
}

/// False, with a message, when not all that was printed could be written.
bool isOutputWritten() {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return true;
  std::fprintf(stderr, "fe_db_record: standard output: cannot write: %s\n", std::strerror(errno));
  return false;
}

void handleStale(const CommandLine& line, const std::set<std::string>& current) {
  const std::string& directory = line.record.outputDirectory;
  const std::vector<std::string> stale = staleUnits(directory, current);
  if (stale.empty()) return;
  for (const std::string& name : stale) {
    if (!line.prune) continue;
    const UnitOutput output(directory, name, false);
    output.removePublished();
    output.removeLeftover();
  }
  std::printf("%zu units in %s are not in the compile_commands.json (%s%s); %s\n", stale.size(),
              directory.c_str(), stale.front().c_str(), stale.size() == 1 ? "" : ", ...",
              line.prune ? "their files are removed" : "--prune removes their files");
}

/// Takes out the units that cannot be recorded for want of an answer.
void askCompilers(CompileDatabase& database) {
  CompilerInquiry inquiry(CompilerInquiry::Memory::run);
  std::erase_if(database.units, [&](Unit& unit) {
    std::string warning;
    const std::string refusal = inquiry.askFor(unit, warning);
    if (!warning.empty()) std::fprintf(stderr, "fe_db_record: %s\n", warning.c_str());
    if (!refusal.empty()) database.refused.push_back({unit.sourcePath(), refusal});
    return !refusal.empty();
  });
}

int recordDatabase(const CommandLine& line) {
  CompileDatabase database = readCompileDatabase(line.buildDirectory);
  std::set<std::string> current;
  for (const Unit& unit : database.units) current.insert(unit.name());
  const bool isComplete = selectFiles(line, database);
  if (isatty(STDERR_FILENO) == 0) {
    std::fprintf(stderr, "fe_db_record: %zu units, %zu at a time\n", database.units.size(),
                 line.jobs);
  }
  askCompilers(database);
  for (const RefusedUnit& unit : database.refused) reportRefused(unit);
  const auto start = std::chrono::steady_clock::now();
  const RunSummary summary = runUnits(database.units, line.record, line.jobs);
  const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
  print(database, summary, line.record.outputDirectory, spent.count());
  handleStale(line, current);
  isOutputWritten();  // what was recorded is recorded: the exit code is about that
  const bool isWhole = isComplete && database.refused.empty() && summary.failed == 0;
  return isWhole ? kDone : kFailed;
}

/// False when the unit cannot be recorded.
bool askCompiler(const CommandLine& line, CompilerInquiry& inquiry, Unit& unit) {
  if (line.compilerAnswer) {
    if (std::optional<CompilerAnswer> answer = CompilerAnswer::parse(*line.compilerAnswer)) {
      unit.answer = std::make_shared<const CompilerAnswer>(std::move(*answer));
    }
    return true;
  }
  std::string warning;
  const std::string refusal = inquiry.askFor(unit, warning);
  if (!warning.empty()) std::fprintf(stderr, "fe_db_record: %s\n", warning.c_str());
  if (!refusal.empty()) reportRefused({unit.sourcePath(), refusal});
  return refusal.empty();
}

int recordCommand(const CommandLine& line) {
  const std::string here = std::filesystem::current_path().string();
  const CleanCommand clean = cleanCommand({here, line.command});
  if (!clean.refusal.empty()) {
    const std::string& what = clean.sources.empty() ? line.command.back() : clean.sources.front();
    reportRefused({what, clean.refusal});
    return kFailed;
  }
  if (clean.sources.empty()) {
    if (!clean.skipped.empty()) return kDone;
    std::fprintf(stderr,
                 "fe_db_record: the command compiles no C or C++ source; give one that does\n");
    return kWrongUsage;
  }
  std::vector<Unit> units;
  CompilerInquiry inquiry(CompilerInquiry::Memory::lasting);
  for (const std::string& source : clean.sources) {
    units.push_back({here, source, clean.flags, clean.compiler});
    units.back().object = line.object ? *line.object : objectOf({here, line.command}, source);
    if (!askCompiler(line, inquiry, units.back())) return kFailed;
  }
  // One unit needs no process of its own, unless somebody has to see it killed.
  if (units.size() == 1 && line.record.timeout == 0) {
    const bool isUnchanged = !line.record.force && ReuseCheck().isUnchanged(units[0], line.record);
    return isUnchanged || recordUnit(units[0], line.record) ? kDone : kFailed;
  }
  return runUnits(units, line.record, line.jobs).failed == 0 ? kDone : kFailed;
}

int run(int argc, char** argv) {
  CommandLine line;
  int exitCode = kDone;
  if (!readCommandLine(argc, argv, line, exitCode)) return isOutputWritten() ? exitCode : kFailed;
  if (line.isLauncher) return launch(line);
  // Units are recorded from the directories of their commands.
  std::string& output = line.record.outputDirectory;
  output = std::filesystem::absolute(output).lexically_normal().string();
  makeOutputDirectory(output);
  if (!line.compilerAnswer) checkWritable(output);
  std::string& resources = line.record.parse.resourceDirectory;
  if (!resources.empty()) resources = std::filesystem::absolute(resources).string();
  return line.buildDirectory.empty() ? recordCommand(line) : recordDatabase(line);
}

}  // namespace

}  // namespace fe_db_tools

int main(int argc, char** argv) {
  try {
    fe_db_tools::openStandardStreams();
    return fe_db_tools::run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "fe_db_record: %s\n", error.what());
    return 1;
  }
}
