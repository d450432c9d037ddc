#pragma once

#include <set>
#include <string>

#include "clang/Basic/Diagnostic.h"
#include "clang/Basic/DiagnosticOptions.h"
#include "clang/Frontend/TextDiagnosticPrinter.h"
#include "llvm/Support/raw_ostream.h"

namespace fe_db_tools {

/// Prints what concerns the source and counts its errors. The driver's messages about
/// flags come before that; they are kept, and printed only if the source is never reached.
///
/// Excused, that is neither printed nor counted, are errors that other compilers report as warnings
/// or not at all and that leave the declaration as it is.
class UnitDiagnostics : public clang::DiagnosticConsumer {
 public:
  UnitDiagnostics();

  void BeginSourceFile(const clang::LangOptions& language,
                       const clang::Preprocessor* preprocessor) override;
  void EndSourceFile() override;
  void HandleDiagnostic(clang::DiagnosticsEngine::Level level,
                        const clang::Diagnostic& diagnostic) override;

  /// The last error waits for its notes, which may excuse it. Before the errors are counted.
  void settle();
  void printKeptUnlessInSource();

  /// The first header that the project includes and does not have.
  std::string missingHeader;
  /// That Clang does not have.
  std::string unknownTarget;
  /// Where functions are declared with another type than an earlier call implied: `void f` after
  /// `f()`. A warning elsewhere.
  std::set<clang::SourceLocation> afterImplicit;
  /// Variables and the like with the name of a library function, which Clang knows unasked.
  std::set<std::string> ownNames;

 private:
  void note(const clang::Diagnostic& diagnostic);
  bool isExcusedBy(const clang::Diagnostic& note);

  llvm::IntrusiveRefCntPtr<clang::DiagnosticOptions> options;
  std::string kept;
  std::string latest;  ///< the last diagnostic and its notes
  llvm::raw_string_ostream keptStream;
  llvm::raw_string_ostream latestStream;
  clang::TextDiagnosticPrinter printer;
  clang::TextDiagnosticPrinter keeper;
  bool isInSource = false;
  bool isLatestError = false;
  bool isLatestExcused = false;
  unsigned latestId = 0;
  clang::SourceLocation latestPlace;
  std::string latestName;
};

}  // namespace fe_db_tools
