#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <thread>

namespace fe_db_tools {

namespace {

constexpr int kWrongUsage = 2;

constexpr char kDescription[] =
    "Records what Clang finds in C and C++ sources: DIR/<unit>.pp.db and DIR/<unit>.comp.db.\n"
    "  fe_db_record -o DIR [options] -- COMMAND             one compile command\n"
    "  fe_db_record -o DIR [options] -p BUILD_DIR [FILE...] a compile_commands.json";

void addOptions(CLI::App& app, CommandLine& result) {
  app.add_option("-o,--output", result.record.outputDirectory, "Directory for the databases")
      ->type_name("DIR")
      ->required();
  app.add_option("-p,--build", result.buildDirectory, "Where compile_commands.json is")
      ->type_name("BUILD_DIR");
  app.add_option("FILE", result.files, "Record only these sources of the compile_commands.json");
  app.add_option("-j,--jobs", result.jobs, "Processes at a time; as many as processors unless set")
      ->type_name("N")
      ->check(CLI::Range(std::size_t{1}, std::size_t{1024}));
  app.add_option_function<std::string>(
         "--system",
         [&result](const std::string& which) {
           result.record.parse.system = which == "all" ? SystemFacts::all : SystemFacts::referenced;
         },
         "Declarations in system headers: those that user code refers to (so unless set), or all")
      ->type_name("WHICH")
      ->check(CLI::IsMember({"referenced", "all"}));
  app.add_flag(
      "--keep-preprocessed", result.record.keepPreprocessed,
      "Also write DIR/<unit>.i, the text that the preprocessed lines and columns refer to");
  app.add_option("--resource-dir", result.record.parse.resourceDirectory,
                 "Clang's own headers, when they are not where they were at build time")
      ->type_name("DIR");
}

/// Empty when all is well.
const char* misuse(const CommandLine& line, bool hasCommand) {
  if (line.buildDirectory.empty() && !hasCommand) return "give either -p BUILD_DIR or -- COMMAND";
  if (!line.buildDirectory.empty() && hasCommand) return "-p and -- COMMAND exclude each other";
  if (hasCommand && line.command.empty()) return "no command behind --";
  if (hasCommand && !line.files.empty()) return "FILE needs -p BUILD_DIR";
  return nullptr;
}

}  // namespace

bool readCommandLine(int argc, char** argv, CommandLine& result, int& exitCode) {
  char** const end = argv + argc;
  char** const dashes =
      std::find_if(argv, end, [](const char* word) { return std::strcmp(word, "--") == 0; });
  const bool hasCommand = dashes != end;
  if (hasCommand) result.command.assign(dashes + 1, end);
  result.jobs = std::max(1U, std::thread::hardware_concurrency());

  CLI::App app(kDescription, "fe_db_record");
  addOptions(app, result);
  try {
    app.parse(static_cast<int>(dashes - argv), argv);
  } catch (const CLI::ParseError& error) {
    const bool isHelp = error.get_exit_code() == 0;
    app.exit(error);
    exitCode = isHelp ? 0 : kWrongUsage;
    return false;
  }
  if (const char* problem = misuse(result, hasCommand)) {
    std::fprintf(stderr, "fe_db_record: %s; see fe_db_record --help\n", problem);
    exitCode = kWrongUsage;
    return false;
  }
  return true;
}

}  // namespace fe_db_tools
