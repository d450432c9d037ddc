#pragma once

#include <memory>
#include <string>
#include <vector>

#include "compile_command.h"

namespace fe_db_tools {

struct CompilerAnswer;

/// One source with the flags that it is compiled with.
struct Unit {
  std::string directory;           ///< that the command runs in
  std::string source;              ///< as the command has it
  std::vector<std::string> flags;  ///< cleaned
  std::string compiler;            ///< as the command has it
  /// The compiler's description of itself; null: it was not asked, or does not answer.
  std::shared_ptr<const CompilerAnswer> answer = nullptr;
  /// The absolute path of what it is compiled to; empty if that does not stay, or is not known.
  std::string object = {};

  /// Absolute and without links or dots.
  std::string sourcePath() const;
  /// File name of the source, and a hash of path, directory, flags and, for a cross compiler, the
  /// target in its name: the same for the same command, whoever records it.
  std::string name() const;
  /// The command that compiles just this source; cleaning it gives this unit again.
  CompileCommand command() const;
};

/// An entry that is not recorded although its command is understood.
struct RefusedUnit {
  std::string source;
  std::string reason;
};

/// Of all the texts, 16 digits: good for a file name.
std::string hashOf(const std::vector<std::string>& texts);

/// The path of `file` in `directory`, absolute and without links or dots; of a missing file
/// without dots.
std::string physicalPath(const std::string& directory, const std::string& file);

}  // namespace fe_db_tools
