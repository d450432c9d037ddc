#include <malloc.h>
#include <sqlite3.h>

#include <exception>
#include <new>
#include <stdexcept>
#include <utility>

#include "canonical_text.h"
#include "output.h"
#include "standard_streams.h"
#include "subcommands.h"
#include "tables.h"

namespace fe_db_tools {

Action namingFiles(std::string files, Action action) {
  return [files = std::move(files), action = std::move(action)] {
    try {
      return action();
    } catch (const std::bad_alloc&) {
      throw std::runtime_error(files + ": not enough memory");
    }
  };
}

void addTableOption(CLI::App& command, std::string& table) {
  std::vector<std::string> names;
  for (const Table& known : kTables) names.emplace_back(known.name);
  command.add_option("--table", table, "Only this table")->check(CLI::IsMember(std::move(names)));
}

void addWaitOption(CLI::App& command, int& waitSeconds) {
  command
      .add_option("--wait", waitSeconds,
                  "Seconds to wait while another program is writing the file")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
}

namespace {

/// Results that cannot be written are a failure. What a merge prints is only about the file that it
/// has written by then: to call that a failure would ask for a repetition, which counts twice.
void endOutput(bool isResult) {
  try {
    finishOutput();
  } catch (const std::runtime_error& error) {
    if (isResult) throw;
    std::cerr << "fe_db: " << error.what() << "; the merge itself is done\n";
  }
}

/// Where the user finds what is allowed: the help of the subcommand that was given, if any.
std::string adviceFor(const CLI::App& program) {
  const auto given = program.get_subcommands();
  return "; see fe_db " + (given.empty() ? "" : given.front()->get_name() + ' ') + "--help";
}

int run(int argc, char** argv) {
  CLI::App program(
      "Creates, prints, compares, merges and searches databases of facts about a code base.",
      "fe_db");
  program.require_subcommand(1);
  program.footer(
      "`fe_db SUBCOMMAND --help` describes a subcommand.\n"
      "Exit codes: 0 done; 1 a file failed, or a difference or damage was found; 2 wrong usage.");
  program.failure_message([](const CLI::App* app, const CLI::Error& error) {
    const std::string message = printable(error.what());
    const bool hasAdvice = message.find("--help") != std::string::npos;
    return "fe_db: " + message + (hasAdvice ? "" : adviceFor(*app)) + '\n';
  });
  Action action;
  addInit(program, action);
  addStats(program, action);
  addDump(program, action);
  addDiff(program, action);
  addMerge(program, action);
  addFind(program, action);
  addCheck(program, action);
  addIndex(program, action);
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int code = program.exit(error) == 0 ? kDone : kWrongUsage;
    endOutput(/*isResult=*/true);
    return code;
  }
  const int code = action();
  endOutput(/*isResult=*/!program.got_subcommand("merge"));
  return code;
}

}  // namespace
}  // namespace fe_db_tools

int main(int argc, char** argv) {
  try {
    fe_db_tools::openStandardStreams();
    // Nobody asks SQLite how much memory it has; counting takes a lock at each allocation, of which
    // there are several for a row. Only a program may say so, before SQLite is used.
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    // The memory of one source serves the next. Given back and fetched again in between, it costs a
    // twentieth of a merge in page faults.
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    return fe_db_tools::run(argc, argv);
  } catch (const fe_db_tools::OutputClosed&) {
    return fe_db_tools::kFailed;
  } catch (const std::exception& error) {
    fe_db_tools::report(error.what());
    return fe_db_tools::kFailed;
  }
}
