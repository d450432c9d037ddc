#pragma once

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "support/quiet_test.h"
#include "support/run_program.h"
#include "support/sqlite_file.h"

namespace fe_db_tests {

namespace fs = std::filesystem;
using Path = const std::string&;
using Words = std::vector<std::string>;

/// Names the cases of a table by their member `rule`.
inline constexpr auto kRuleName = [](const auto& test) { return std::string(test.param.rule); };

/// Runs the program `fe_db` on files in the test's own directory.
class FeDbProgram : public QuietTest {
 protected:
  static ProgramResult feDb(Words arguments, const RunOptions& options = {}) {
    arguments.insert(arguments.begin(), FE_DB_PROGRAM);
    return runProgram(arguments, options);
  }

  /// Of a regular file; of anything else nothing.
  static std::string bytesOf(Path path) {
    std::ostringstream bytes;
    if (fs::is_regular_file(path)) bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
  }
  static long entries(Path folder) { return std::distance(fs::directory_iterator(folder), {}); }

  /// What it prints when nothing is wrong.
  static std::string outputOf(const Words& arguments, const RunOptions& options = {}) {
    const ProgramResult result = feDb(arguments, options);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors, "");
    return result.output;
  }

  /// It prints nothing but a message that has these words.
  static void expectRefusal(const Words& arguments, const std::string& words, int exitCode = 1) {
    const ProgramResult result = feDb(arguments);
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, testing::HasSubstr(words));
  }
};

}  // namespace fe_db_tests
