#include <cstdio>
#include <exception>
#include <filesystem>
#include <set>

#include "command_line.h"
#include "compile_database.h"
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

int recordDatabase(const CommandLine& line) {
  CompileDatabase database = readCompileDatabase(line.buildDirectory);
  bool isWhole = selectFiles(line, database) && database.refused.empty();
  for (const RefusedUnit& unit : database.refused) reportRefused(unit);
  const RunSummary summary = runUnits(database.units, line.record, line.jobs);
  std::printf("%zu of %zu units recorded in %s", summary.recorded,
              database.units.size() + database.refused.size(), line.record.outputDirectory.c_str());
  if (database.skipped != 0) {
    std::printf(", %zu entries skipped that compile no C or C++ source", database.skipped);
  }
  std::printf("\n");
  return isWhole && summary.failed == 0 ? kDone : kFailed;
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
  for (const std::string& source : clean.sources) units.push_back({here, source, clean.flags});
  if (units.size() == 1) return recordUnit(units[0], line.record) ? kDone : kFailed;
  return runUnits(units, line.record, line.jobs).failed == 0 ? kDone : kFailed;
}

int run(int argc, char** argv) {
  CommandLine line;
  int exitCode = kDone;
  if (!readCommandLine(argc, argv, line, exitCode)) return exitCode;
  // Units are recorded from the directories of their commands.
  std::string& output = line.record.outputDirectory;
  output = std::filesystem::absolute(output).lexically_normal().string();
  std::filesystem::create_directories(output);
  std::string& resources = line.record.parse.resourceDirectory;
  if (!resources.empty()) resources = std::filesystem::absolute(resources).string();
  return line.buildDirectory.empty() ? recordCommand(line) : recordDatabase(line);
}

}  // namespace

}  // namespace fe_db_tools

int main(int argc, char** argv) {
  try {
    return fe_db_tools::run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "fe_db_record: %s\n", error.what());
    return 1;
  }
}
