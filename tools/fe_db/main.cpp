#include <malloc.h>
#include <sqlite3.h>

#include <exception>
#include <iostream>

#include "command_line.h"
#include "output.h"
#include "standard_streams.h"
#include "subcommands.h"

namespace fe_db_tools {
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

int run(int argc, char** argv) {
  const Command command = parseCommandLine(argc, argv);
  const int code = command.run();
  endOutput(/*isResult=*/!command.isMerge);
  return code;
}

}  // namespace
}  // namespace fe_db_tools

int main(int argc, char** argv) {
  try {
    fe_db_tools::openStandardStreams();
    // SQLite's memory statistics are not used; counting takes a lock at each allocation, of which
    // there are several for a row. Only a program may say so, before SQLite is used.
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    // The memory of one source is reused for the next. Returned and requested again in between, it
    // costs a twentieth of a merge in page faults.
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    return fe_db_tools::run(argc, argv);
  } catch (const fe_db_tools::OutputClosed&) {
    return fe_db_tools::kFailed;
  } catch (const fe_db_tools::WrongUsage& error) {
    fe_db_tools::report(error.what());
    return fe_db_tools::kWrongUsage;
  } catch (const std::exception& error) {
    fe_db_tools::report(error.what());
    return fe_db_tools::kFailed;
  }
}
