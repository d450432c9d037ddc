#pragma once

#include <functional>

namespace fe_db_tools {

/// What a command line asks for.
struct Command {
  /// Returns the exit code. Throws std::runtime_error with a message for the user.
  std::function<int()> run;
  bool isMerge = false;
};

/// Help and what is wrong with a command line have been printed when this returns; `run` then only
/// returns the exit code.
Command parseCommandLine(int argc, char** argv);

}  // namespace fe_db_tools
