#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
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

/// For errors that name the option and what is wrong with its value.
void addNumber(CLI::App& app, const std::string& name, const std::string& type, unsigned least,
               unsigned most, std::function<void(unsigned)> take, const std::string& description) {
  const auto read = [=](const std::string& text) {
    unsigned number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || *end != '\0' || number < least || number > most) {
      throw CLI::ValidationError(
          name.substr(0, name.find(',')) + ' ' + text,
          "give a number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    take(number);
  };
  app.add_option_function<std::string>(name, read, description)->type_name(type);
}

void addOptions(CLI::App& app, CommandLine& result) {
  app.add_option("-o,--output", result.record.outputDirectory, "Directory for the databases")
      ->type_name("DIR");
  app.add_option("-p,--build", result.buildDirectory, "Where compile_commands.json is")
      ->type_name("BUILD_DIR");
  app.add_option("FILE", result.files, "Record only these sources of the compile_commands.json");
  addNumber(
      app, "-j,--jobs", "N", 1, 1024, [&result](unsigned number) { result.jobs = number; },
      "Processes at a time; as many as processors unless set");
  app.add_option_function<std::string>(
         "--system",
         [&result](const std::string& which) {
           result.record.parse.system = which == "all" ? SystemFacts::all : SystemFacts::referenced;
         },
         "Declarations in system headers: those that user code refers to (so unless set), or all")
      ->type_name("WHICH")
      ->check(CLI::IsMember({"referenced", "all"}));
  app.add_option_function<std::string>(
         "--references",
         [&result](const std::string& which) {
           result.record.parse.references =
               which == "all" ? ReferenceFacts::all : ReferenceFacts::none;
         },
         "The place of each reference: all of them, so unless set, or none")
      ->type_name("WHICH")
      ->check(CLI::IsMember({"all", "none"}));
  app.add_flag(
      "--keep-preprocessed", result.record.keepPreprocessed,
      "Also write DIR/<unit>.i, the text that the preprocessed lines and columns refer to");
  app.add_option("--resource-dir", result.record.parse.resourceDirectory,
                 "Clang's own headers, when they are not where they were at build time")
      ->type_name("DIR");
  app.add_flag("--force", result.record.force, "Record also what has not changed since last time");
  app.add_flag("--keep-going", result.record.parse.keepGoing,
               "Save what can be recorded of sources with errors; the exit code is 1 all the same");
  addNumber(
      app, "--timeout", "SECONDS", 0, 1'000'000,
      [&result](unsigned number) { result.record.timeout = number; },
      "Kill what takes longer than this for one unit; 0: no limit, so unless set");
  app.add_option("--extra-arg", result.record.parse.extraArguments,
                 "An argument for Clang, after those of the command; may be given again")
      ->type_name("ARG")
      ->allow_extra_args(false);
  app.add_option("--remove-arg", result.record.parse.removedArguments,
                 "Keep arguments that match the pattern from Clang; may be given again")
      ->type_name("GLOB")
      ->allow_extra_args(false);
  app.add_flag("--prune", result.prune,
               "Remove the files of units that are not in the compile_commands.json any longer");
  app.add_flag("--launcher", result.isLauncher, "Run the command as well, before it is recorded");
  // What the files of one unit are called, for the processes that this program starts.
  app.add_option("--name", result.record.name)->group("");
  app.add_option("--compiler-answer", result.compilerAnswer)->group("");
  app.add_option("--object", result.object)->group("");
}

/// Parses options as a shell has split them. The parser takes a word that begins with a hyphen for
/// an option also where it is the value of one: such a value has to be in the same word.
void parse(CLI::App& app, const std::vector<std::string>& words) {
  std::vector<std::string> joined;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const bool hasAnyValue = words[i] == "--extra-arg" || words[i] == "--remove-arg";
    joined.push_back(words[i]);
    if (hasAnyValue && i + 1 < words.size()) joined.back() += '=' + words[++i];
  }
  std::reverse(joined.begin(), joined.end());  // as the parser takes them
  app.parse(joined);
}

std::string messageOf(const CLI::ParseError& error) {
  std::string text = error.what();
  // An option that does not exist comes with all of its values.
  if (dynamic_cast<const CLI::ExtrasError*>(&error) == nullptr) return text;
  const std::size_t first = text.find(": ");
  return first == std::string::npos ? text : "unknown option " + text.substr(first + 2);
}

/// Empty when all is well.
const char* misuse(const CommandLine& line, bool hasCommand) {
  if (line.isLauncher && !hasCommand) return "--launcher needs -- COMMAND";
  if (line.record.outputDirectory.empty() && !line.isLauncher) return "give -o DIR";
  if (line.prune && line.buildDirectory.empty()) return "--prune needs -p BUILD_DIR";
  if (line.buildDirectory.empty() && !hasCommand) return "give either -p BUILD_DIR or -- COMMAND";
  if (!line.buildDirectory.empty() && hasCommand) return "-p and -- COMMAND exclude each other";
  if (hasCommand && line.command.empty()) return "no command after --";
  if (hasCommand && !line.files.empty()) return "FILE needs -p BUILD_DIR";
  return "";
}

/// Nothing in here may keep the compiler from running.
void readLauncherOptions(CommandLine& result) {
  const char* options = std::getenv("FE_DB_RECORD_OPTIONS");
  const char* output = std::getenv("FE_DB_RECORD_OUTPUT");
  if (output != nullptr) result.record.outputDirectory = output;
  CLI::App app(kDescription, "fe_db_record");
  app.set_version_flag("--version", std::string("fe_db_record ") + FE_DB_VERSION);
  addOptions(app, result);
  try {
    parse(app, splitWords(options == nullptr ? "" : options));
  } catch (const CLI::ParseError& error) {
    result.launcherProblem = "FE_DB_RECORD_OPTIONS: " + messageOf(error);
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
  app.set_version_flag("--version", std::string("fe_db_record ") + FE_DB_VERSION);
  addOptions(app, result);
  std::string problem;
  try {
    parse(app, std::vector<std::string>(argc > 0 ? argv + 1 : argv, dashes));
    problem = misuse(result, hasCommand);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {  // --help, --version
      exitCode = app.exit(error);
      return false;
    }
    problem = messageOf(error);
  }
  if (problem.empty()) return true;
  std::fprintf(stderr, "fe_db_record: %s; see fe_db_record --help\n", problem.c_str());
  exitCode = kWrongUsage;
  return false;
}

}  // namespace fe_db_tools
