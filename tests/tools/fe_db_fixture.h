#pragma once

#include <string>
#include <vector>

#include "support/quiet_test.h"
#include "support/run_program.h"
#include "support/sqlite_file.h"

namespace fe_db_tests {

/// Names the cases of a table by their member `rule`.
inline constexpr auto kRuleName = [](const auto& test) { return std::string(test.param.rule); };

/// Runs the program `fe_db` on files in the test's own directory.
class FeDbProgram : public QuietTest {
 protected:
  static ProgramResult feDb(std::vector<std::string> arguments, const RunOptions& options = {}) {
    arguments.insert(arguments.begin(), FE_DB_PROGRAM);
    return runProgram(arguments, options);
  }

  /// What it prints when nothing is wrong.
  static std::string outputOf(const std::vector<std::string>& arguments) {
    const ProgramResult result = feDb(arguments);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors, "");
    return result.output;
  }

  /// It prints nothing but a message that has these words.
  static void expectRefusal(const std::vector<std::string>& arguments, const std::string& words,
                            int exitCode = 1) {
    const ProgramResult result = feDb(arguments);
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, testing::HasSubstr(words));
  }
};

}  // namespace fe_db_tests
