#pragma once

#include <memory>

#include "tests/processes/child_process.h"
#include "tests/support/content.h"
#include "tests/support/quiet_test.h"
#include "tests/support/sqlite_file.h"

namespace fe_db_tests {

/// A compilation database, and the processes that save into it.
class ProcessTest : public QuietTest {
 protected:
  ProcessTest() { unsetenv(kQueue); }
  ~ProcessTest() override { unsetenv(kQueue); }

  static constexpr char kQueue[] = "ORVALESCA_TRANSACTIONS_QUEUE_NAME_FE";

  std::unique_ptr<ChildProcess> start(const std::string& file,
                                      const std::vector<std::string>& options) {
    return std::make_unique<ChildProcess>(commandOf(file, options),
                                          path("process" + std::to_string(++started)));
  }
  ProgramResult run(const std::string& file, const std::vector<std::string>& options) {
    return runProgram(commandOf(file, options));
  }
  void expectSaved(const ProgramResult& result) {
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors, "");
  }
  /// As `fe_db init` makes one for many processes.
  std::string emptyDatabase(const std::string& name) {
    fe_db_tools::createCompilationDatabase(path(name), fe_db_tools::KeyIndexes::yes);
    return path(name);
  }
  /// What was there before, for the tests that break something.
  std::string filledDatabase(const std::string& name) {
    const std::string file = emptyDatabase(name);
    expectSaved(run(file, {"unit=0", "bulk=200"}));
    return file;
  }

 private:
  static std::vector<std::string> commandOf(const std::string& file,
                                            const std::vector<std::string>& options) {
    std::vector<std::string> command = {RECORDING_PROCESS, file};
    command.insert(command.end(), options.begin(), options.end());
    return command;
  }

  int started = 0;
};

}  // namespace fe_db_tests
