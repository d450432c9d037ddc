#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "clang/Basic/SourceLocation.h"
#include "fact_sink.h"
#include "llvm/ADT/DenseMap.h"
#include "pp_printer.h"

namespace clang {
class Preprocessor;
class SourceManager;
}  // namespace clang

namespace fe_db_tools {

class FileTable;

/// Ties the tokens that come out of the preprocessor to the macro calls that they come from, and
/// records invocations, expansions and the origin of each token.
///
/// Clang announces each expansion before its first token. A call that no other call contains is an
/// outer one: it waits until a token with its location is printed, is open until a token of
/// something else comes, and is recorded then. Calls that wait while a token of something later
/// comes have expanded to nothing. Everything else is nested in the latest outer call: its name
/// is in a macro body or in an argument.
class MacroTracker {
 public:
  MacroTracker(FactSink& sink, FileTable& files, const clang::Preprocessor& preprocessor,
               const PpPrinter& printer);

  /// `call` reaches from the name to the closing parenthesis.
  void expands(dm::Macro* macro, clang::SourceLocation name, clang::SourceRange call);

  /// Whether the token belongs to the outer call that is open.
  bool continues(clang::SourceLocation token) const;
  /// Before the white space in front of a token that does not continue the open call.
  void leave(clang::SourceLocation token);
  /// After that white space.
  void addToken(clang::SourceLocation token);
  /// After a token is printed.
  void printed(clang::SourceLocation token, const PpPrinter::Place& start);
  /// Nothing goes on beyond this place: a file begins or ends.
  void flush();

 private:
  struct Nested {
    dm::Macro* macro;
    clang::SourceLocation name;
    unsigned start = 0;
    unsigned end = 0;           ///< column after its last token
    std::size_t lastToken = 0;  ///< of the outer call, from 1; 0: it has none
  };
  struct Token {
    clang::SourceLocation at;
    unsigned offset;
    unsigned length;
  };
  struct Outer {
    dm::Macro* macro = nullptr;
    clang::SourceLocation name;
    clang::FileID file;
    unsigned nameOffset = 0;
    unsigned endOffset = 0;  ///< in the file, after the call
    bool isOpen = false;
    PpPrinter::Place start{};
    std::size_t textEnd = 0;
    std::vector<Nested> nested;
    llvm::DenseMap<clang::SourceLocation, std::size_t> nestedByName;
    std::vector<Token> tokens;
  };

  bool isInDirective(clang::SourceLocation at) const;
  bool containsName(const Outer& outer, clang::SourceLocation name) const;
  void extendCall(Outer& outer, clang::SourceLocation end) const;
  unsigned endOffsetOf(clang::SourceLocation lastToken) const;

  void growNested(Outer& outer, const Token& token);
  using NestedList = std::vector<std::size_t>;
  const NestedList& nestedAround(const Outer& outer, clang::SourceLocation at);
  void collectNested(const Outer& outer, clang::SourceLocation at, NestedList& found,
                     std::vector<clang::FileID>& seen) const;

  void recordFront();
  void recordOrigins(const Outer& outer, dm::MacroInvocation* invocation);
  bool isParameterOf(const Outer& outer, clang::SourceLocation token) const;
  dm::Localization originOf(const Outer& outer, clang::SourceLocation token);

  FactSink& sink;
  FileTable& files;
  const clang::Preprocessor& preprocessor;
  const clang::SourceManager& sources;
  const PpPrinter& printer;
  std::deque<Outer> waiting;  ///< in the order of their announcement; only the first may be open
  llvm::DenseMap<clang::FileID, NestedList> nestedByEntry;  ///< of the open call
};

}  // namespace fe_db_tools
