#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "clang/Basic/SourceLocation.h"
#include "clang/Basic/SourceManager.h"
#include "clang/Lex/PPCallbacks.h"
#include "clang/Lex/Token.h"
#include "clang/Lex/TokenConcatenation.h"

namespace clang {
class Preprocessor;
}

namespace fe_db_tools {

/// Builds the preprocessed text that the pp lines and columns refer to, as `clang -E` lays it out:
/// tokens on the line and in the column of their source, up to eight blank lines instead of a line
/// marker.
///
/// Where it differs: a `_Pragma` is left out, so that an expansion never spans lines; a `#pragma`
/// is printed as written, without expanding macros in it.
class PpPrinter {
 public:
  /// A place in the text. Line and column count from 1, in bytes; offset from 0.
  struct Place {
    unsigned line;
    unsigned column;
    std::size_t offset;
  };

  explicit PpPrinter(clang::Preprocessor& preprocessor);

  void fileChanged(clang::SourceLocation at, clang::PPCallbacks::FileChangeReason reason,
                   clang::SrcMgr::CharacteristicKind kind);
  void pragma(clang::SourceLocation hash);
  void ident(clang::SourceLocation at, std::string_view text);

  /// White space or new lines in front of a token.
  void spaceBefore(const clang::Token& token, bool onSameLine);
  void print(const clang::Token& token);
  void finish() { text += '\n'; }

  Place place() const;
  /// Line of the source that the text is at.
  unsigned sourceLine() const { return currentLine; }
  const std::string& getText() const { return text; }

 private:
  unsigned presumedLine(clang::SourceLocation at) const;
  bool moveToLine(unsigned line, bool startNewLine);
  void endLine();
  void writeLineMarker(const char* flag);
  void indent(const clang::Token& token);

  clang::Preprocessor& preprocessor;
  const clang::SourceManager& sources;
  clang::TokenConcatenation concatenation;
  clang::Token previous;
  clang::Token beforePrevious;

  std::string text;
  mutable unsigned line = 1;  ///< of the text, at `counted`
  mutable std::size_t lineStart = 0;
  mutable std::size_t counted = 0;

  unsigned currentLine = 1;
  std::string fileName;
  clang::SrcMgr::CharacteristicKind fileKind = clang::SrcMgr::C_User;
  bool hasTokens = false;  ///< on the line being written
  bool hasDirective = false;
  bool hasMarker = false;  ///< the first one has been written
  bool isMainFileEntered = false;
};

}  // namespace fe_db_tools
