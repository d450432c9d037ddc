#pragma once

#include <string>
#include <vector>

namespace fe_db_tools {

/// A command as somebody runs it, compiler first.
struct CompileCommand {
  std::string directory;
  std::vector<std::string> arguments;
};

/// What is left of a command for recording.
struct CleanCommand {
  std::vector<std::string> flags;    ///< without inputs, outputs and what serves linking
  std::vector<std::string> sources;  ///< C and C++, as written
  std::vector<std::string> skipped;  ///< assembler sources and headers to be precompiled
  std::string refusal;               ///< why the command cannot be recorded; else empty
};

/// Expands response files, takes a compiler cache's name off the front, tells sources from flags.
/// Cleaning what has been cleaned changes nothing.
CleanCommand cleanCommand(const CompileCommand& command);

}  // namespace fe_db_tools
