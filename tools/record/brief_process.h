#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace fe_db_tools {

/// What a program that was run for its output has printed.
struct BriefOutput {
  std::string output;
  std::string errors;
  std::string
      problem;  ///< why there is nothing to go by: cannot be run, takes too long; else empty
};

/// Runs `command` in `directory` with nothing to read and the environment of a question to a
/// compiler: messages in English, no paths from variables that Clang reads itself, no file that a
/// variable asks a compiler to write. Ends it, and what it has started, when it takes longer than
/// `patience` or prints more than any compiler does.
BriefOutput runBriefly(const std::vector<std::string>& command, const std::string& directory,
                       std::chrono::milliseconds patience);

}  // namespace fe_db_tools
