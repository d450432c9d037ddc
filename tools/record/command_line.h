#pragma once

#include <optional>
#include <string>
#include <vector>

#include "unit_recorder.h"

namespace fe_db_tools {

/// What the program was asked to do.
struct CommandLine {
  RecordOptions record;
  std::string buildDirectory;      ///< of a compile_commands.json; empty: record `command`
  std::vector<std::string> files;  ///< of the database only these; empty: all
  std::size_t jobs = 1;
  std::vector<std::string> command;  ///< after --, or all of a launcher's
  /// For the processes that this program starts: what the compiler has answered. Unset: ask it.
  std::optional<std::string> compilerAnswer;
  /// For them, too: what their commands, which are cleaned, no longer say.
  std::optional<std::string> object;
  bool prune = false;
  bool isLauncher = false;
  std::string launcherProblem;  ///< why a launcher cannot record; the command is run all the same
};

/// True: go on. False: the program ends with `exitCode`; the message or help is printed.
bool readCommandLine(int argc, char** argv, CommandLine& result, int& exitCode);

}  // namespace fe_db_tools
