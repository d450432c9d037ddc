// One workload, or what it is compared with, as a separate process, so that its peak memory can be
// measured. Prints one line of JSON; benchmarks/measure.py runs the workloads in turn and compares.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "alternatives.h"
#include "compilation_schema.h"
#include "floors.h"
#include "library_workloads.h"

namespace {

using namespace fe_db_benchmarks;
using nlohmann::json;

/// The command line's arguments, of which each workload uses some.
struct Arguments {
  std::string target;
  std::vector<std::string> sources;
  std::uint64_t seed = 1;
  std::size_t unit = 0;
  std::size_t units = 8;
  std::size_t count = 1'000'000;
  bool filled = false;
};

json toJson(const Spent& spent) { return {{"cpu", spent.cpu}, {"wall", spent.wall}}; }

void makeEmpty(const std::string& path) {
  std::filesystem::remove(path);
  fe_db_tools::createCompilationDatabase(path, fe_db_tools::KeyIndexes::no);
}

json toJson(const Recorded& done) {
  return {{"occurrences", done.occurrences},
          {"rows", done.rows},
          {"record", toJson(done.record)},
          {"save", toJson(done.save)}};
}

json toJson(const Merged& done) {
  return {{"rows_in", done.rowsIn},
          {"rows_out", done.rowsOut},
          {"load", toJson(done.load)},
          {"fold", toJson(done.fold)},
          {"write", toJson(done.write)}};
}

json toJson(const RowsSpent& done) {
  return {{"rows", done.rows}, {"cpu", done.spent.cpu}, {"wall", done.spent.wall}};
}

json runAlternative(void (*merge)(const std::vector<std::string>&, const std::string&),
                    const Arguments& arguments) {
  makeEmpty(arguments.target);
  const Spent spent = runMeasured([&] { merge(arguments.sources, arguments.target); });
  return toJson(RowsSpent{fe_db_tools::countRows(arguments.target), spent});
}

/// A file for each unit that does not exist yet, in the folder `target`.
json generate(const Arguments& arguments) {
  std::filesystem::create_directories(arguments.target);
  std::size_t rows = 0;
  for (std::size_t unit = 0; unit < arguments.units; ++unit) {
    const std::string path = arguments.target + "/unit_" + std::to_string(unit) + ".comp.db";
    if (std::filesystem::exists(path)) continue;
    const std::string unfinished = path + ".new";
    makeEmpty(unfinished);
    rows += recordAndSave(arguments.seed, unit, unfinished, /*fresh=*/true).rows;
    std::filesystem::rename(unfinished, path);
  }
  return {{"rows", rows}};
}

json record(const Arguments& arguments) {
  if (!arguments.filled) makeEmpty(arguments.target);
  return toJson(recordAndSave(arguments.seed, arguments.unit, arguments.target, !arguments.filled));
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Runs one workload of the benchmarks and prints its figures as JSON.");
  app.require_subcommand(1);
  Arguments arguments;
  json result;
  const auto workload = [&](const char* name, const char* description, auto run) {
    CLI::App* command = app.add_subcommand(name, description);
    command->callback([&, run] { result = run(arguments); });
    return command;
  };
  const auto takesTarget = [&](CLI::App* command) {
    command->add_option("target", arguments.target)->required();
    return command;
  };
  const auto takesSources = [&](CLI::App* command) {
    command->add_option("sources", arguments.sources)->required()->check(CLI::ExistingFile);
  };
  const auto takesSeed = [&](CLI::App* command) { command->add_option("--seed", arguments.seed); };

  CLI::App* generator = takesTarget(workload("generate", "Fill a folder with units", generate));
  generator->add_option("--units", arguments.units);
  takesSeed(generator);
  CLI::App* recording =
      takesTarget(workload("record", "Record a unit and save it into a file", record));
  recording->add_option("--unit", arguments.unit);
  recording->add_flag("--filled", arguments.filled, "The file exists and has rows");
  takesSeed(recording);
  takesTarget(workload("repeats", "Emplace known elements again; the target is their kind",
                       [](const Arguments& given) {
                         return json{{"occurrences", given.count},
                                     {"spent", toJson(emplaceRepeats(given.target, given.count))}};
                       }))
      ->add_option("--count", arguments.count);
  takesSources(workload("load", "Load files for a merge",
                        [](const Arguments& given) { return toJson(load(given.sources)); }));
  takesSources(
      takesTarget(workload("merge", "Merge files in one thread", [](const Arguments& given) {
        makeEmpty(given.target);
        return toJson(merge(given.target, given.sources));
      })));
  takesSources(workload("floor_read", "Read files",
                        [](const Arguments& given) { return toJson(floorRead(given.sources)); }));
  takesSources(
      takesTarget(workload("floor_write", "Write the rows of a file", [](const Arguments& given) {
        makeEmpty(given.target);
        return toJson(floorWrite(given.sources.front(), given.target));
      })));
  takesSources(
      takesTarget(workload("alt_hash", "Merge with flat arrays", [](const Arguments& given) {
        return runAlternative(mergeByHash, given);
      })));
  takesSources(takesTarget(workload("alt_sql", "Merge with SQL", [](const Arguments& given) {
    return runAlternative(mergeBySql, given);
  })));
  try {
    CLI11_PARSE(app, argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_workloads: %s\n", error.what());
    return 1;
  }
  std::printf("%s\n", result.dump().c_str());
}
