#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "shell_words.h"

namespace fe_db_tools {

namespace {

constexpr int kWrongUsage = 2;

constexpr char kDescription[] =
    "Records what Clang finds in C and C++ sources: DIR/<unit>.pp.db and DIR/<unit>.comp.db.\n"
    "  fe_db_record -o DIR [options] -- COMMAND             one compile command\n"
    "  fe_db_record -o DIR [options] -p BUILD_DIR [FILE...] a compile_commands.json\n"
    "  fe_db_record COMPILER [ARGUMENT...]                  as a compiler launcher; options and "
    "DIR\n"
    "                                  in FE_DB_RECORD_OPTIONS, FE_DB_RECORD_OUTPUT\n"
    "  fe_db_record --launcher [options] -- COMMAND         the same with options\n"
    "A launcher runs the compiler first and returns its exit code; unless told otherwise it\n"
    "records beside the object. A unit that has not changed since it was recorded is left alone.";

void addOptions(CLI::App& app, CommandLine& result) {
  app.add_option("-o,--output", result.record.outputDirectory, "Directory for the databases")
      ->type_name("DIR");
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
  app.add_flag("--force", result.record.force, "Record also what has not changed since last time");
  app.add_flag("--keep-going", result.record.parse.keepGoing,
               "Save what can be recorded of sources with errors; the exit code is 1 all the same");
  app.add_option("--timeout", result.record.timeout,
                 "Kill what takes longer than this for one unit; 0: no limit, so unless set")
      ->type_name("SECONDS");
  app.add_flag("--prune", result.prune,
               "Remove the files of units that are not in the compile_commands.json any longer");
  app.add_flag("--launcher", result.isLauncher, "Run the command as well, before it is recorded");
  // What the files of one unit are called, for the processes that this program starts.
  app.add_option("--name", result.record.name)->group("");
}

/// Empty when all is well.
const char* misuse(const CommandLine& line, bool hasCommand) {
  if (line.isLauncher && !hasCommand) return "--launcher needs -- COMMAND";
  if (line.record.outputDirectory.empty() && !line.isLauncher) return "give -o DIR";
  if (line.prune && line.buildDirectory.empty()) return "--prune needs -p BUILD_DIR";
  if (line.buildDirectory.empty() && !hasCommand) return "give either -p BUILD_DIR or -- COMMAND";
  if (!line.buildDirectory.empty() && hasCommand) return "-p and -- COMMAND exclude each other";
  if (hasCommand && line.command.empty()) return "no command behind --";
  if (hasCommand && !line.files.empty()) return "FILE needs -p BUILD_DIR";
  return nullptr;
}

/// Nothing in here may keep the compiler from running.
void readLauncherOptions(CommandLine& result) {
  const char* options = std::getenv("FE_DB_RECORD_OPTIONS");
  const char* output = std::getenv("FE_DB_RECORD_OUTPUT");
  if (output != nullptr) result.record.outputDirectory = output;
  CLI::App app(kDescription, "fe_db_record");
  addOptions(app, result);
  try {
    std::vector<std::string> words = splitWords(options == nullptr ? "" : options);
    std::reverse(words.begin(), words.end());  // as the parser takes them
    app.parse(words);
  } catch (const CLI::ParseError& error) {
    result.launcherProblem = std::string("FE_DB_RECORD_OPTIONS: ") + error.what();
  }
  result.isLauncher = true;
}

}  // namespace

bool readCommandLine(int argc, char** argv, CommandLine& result, int& exitCode) {
  char** const end = argv + argc;
  if (argc > 1 && argv[1][0] != '-') {
    result.command.assign(argv + 1, end);
    readLauncherOptions(result);
    return true;
  }
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
