#pragma once

#include <string>
#include <utility>
#include <vector>

namespace fe_db_tests {

struct ProgramResult {
  int exitCode = -1;  ///< -1 when a signal ended it
  int signal = 0;
  std::string output;
  std::string errors;
};

struct RunOptions {
  std::string standardInput = {};   ///< a file to read from, nothing without one
  std::string standardOutput = {};  ///< a file to write to, `output` stays empty then
  std::string directory = {};       ///< to run in
  std::vector<std::pair<std::string, std::string>> environment = {};  ///< added to this process's
};

/// Runs a program to its end.
ProgramResult runProgram(const std::vector<std::string>& command, const RunOptions& options = {});

}  // namespace fe_db_tests
