#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fe_db_tools {

/// A compiler's description of itself, printed with `-v -dM -E`.
struct CompilerAnswer {
  std::string target;                    ///< in its own words, `arm-none-eabi`
  std::vector<std::string> directories;  ///< searched for <...>, in order
  std::vector<std::string> defaults;     ///< options that it assumes unless others are given
  /// Predefined macros that describe target and ABI, as after `#define `. Those that tell one
  /// compiler from another are not among them.
  std::vector<std::string> macros;

  /// For a compiler of this machine: Clang knows the rest.
  void keepPathsAndStandard();

  /// One line for each item. `parse` reads it back, and refuses what is cut off.
  std::string text() const;
  static std::optional<CompilerAnswer> parse(std::string_view text);
};

/// Reads what `-v` and `-dM` print. Nothing when there is no list of directories: then whatever ran
/// is no compiler of the kind that can be asked. `directory` is the one that relative names are of.
std::optional<CompilerAnswer> readAnswer(std::string_view messages, std::string_view macros,
                                         const std::string& directory);

/// A directory of headers that belong to a compiler and not to a system,
/// `.../gcc/TARGET/12/include`. They describe the compiler's own builtins, so no other compiler can
/// do much with them.
bool isCompilersOwn(std::string_view directory);

/// A directory of a C++ library, which has to come before those of C.
bool isOfCppLibrary(std::string_view directory);

/// Edits the text of Clang's predefined macros: of target and ABI it gets the compiler's. What
/// belongs to a processor or system is there exactly if the compiler has it.
std::string withMacrosOf(const CompilerAnswer& answer, std::string_view predefined);

}  // namespace fe_db_tools
