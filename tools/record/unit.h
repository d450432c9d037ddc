#pragma once

#include <string>
#include <vector>

#include "compile_command.h"

namespace fe_db_tools {

/// One source with the flags that it is compiled with.
struct Unit {
  std::string directory;           ///< that the command runs in
  std::string source;              ///< as the command has it
  std::vector<std::string> flags;  ///< cleaned

  /// Absolute and without links or dots.
  std::string sourcePath() const;
  /// File name of the source, and a hash of path, directory and flags: the same for the same
  /// command, whoever records it.
  std::string name() const;
  /// The command that compiles just this source; cleaning it gives this unit again.
  CompileCommand command() const;
};

/// The path of `file` in `directory`, absolute and without links or dots; of a missing file
/// without dots.
std::string physicalPath(const std::string& directory, const std::string& file);

}  // namespace fe_db_tools
