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
  std::string compiler;              ///< as written, without a compiler cache before it
  std::vector<std::string> flags;    ///< without inputs, outputs and what serves linking
  std::vector<std::string> sources;  ///< C and C++, as written
  std::vector<std::string> skipped;  ///< assembler sources and headers to be precompiled
  std::string refusal;               ///< why the command cannot be recorded; else empty
};

/// Expands response files, takes a compiler cache's name off the front, separates sources from
/// flags. Cleaning what has been cleaned changes nothing.
CleanCommand cleanCommand(const CompileCommand& command);

/// The words of a command with response files expanded and GNU's long names of options written
/// short.
std::vector<std::string> plainWords(const CompileCommand& command);

/// Cleaned flags, each with the values that are words of their own.
std::vector<std::vector<std::string>> optionsOf(const std::vector<std::string>& flags);

/// True if the source is C++ under these flags.
bool isCppSource(const std::string& source, const std::vector<std::string>& flags);

}  // namespace fe_db_tools
