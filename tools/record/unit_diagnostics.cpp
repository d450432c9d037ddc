#include "unit_diagnostics.h"

#include "clang/AST/ASTDiagnostic.h"
#include "clang/AST/DeclarationName.h"
#include "clang/Basic/DiagnosticIDs.h"
#include "clang/Basic/SourceManager.h"
#include "clang/Lex/LexDiagnostic.h"
#include "clang/Sema/SemaDiagnostic.h"

namespace fe_db_tools {

namespace {

using Level = clang::DiagnosticsEngine::Level;

/// An attribute that Clang cannot take as it is written is left out, and no fact depends on it.
bool concernsAttribute(unsigned id) {
  switch (id) {
    case clang::diag::err_attribute_argument_n_type:
    case clang::diag::err_attribute_argument_type:
    case clang::diag::err_attribute_too_few_arguments:
    case clang::diag::err_attribute_too_many_arguments:
    case clang::diag::err_attribute_wrong_decl_type:
    case clang::diag::err_attribute_wrong_decl_type_str:
    case clang::diag::err_attribute_wrong_number_arguments:
    case clang::diag::err_attributes_are_not_compatible:
      return true;
    default:
      return false;
  }
}

/// What Clang, or a pragma of the source, has only raised to an error can be a warning or nothing
/// to another compiler.
bool isExcused(unsigned id) {
  return clang::DiagnosticIDs::isBuiltinWarningOrExtension(id) || concernsAttribute(id);
}

/// The name that a diagnostic is about, if it is about one.
std::string nameIn(const clang::Diagnostic& diagnostic) {
  if (diagnostic.getNumArgs() == 0) return {};
  switch (diagnostic.getArgKind(0)) {
    case clang::DiagnosticsEngine::ak_std_string:
      return diagnostic.getArgStdStr(0);
    case clang::DiagnosticsEngine::ak_identifierinfo:
      return diagnostic.getArgIdentifier(0)->getName().str();
    case clang::DiagnosticsEngine::ak_declarationname:
      return clang::DeclarationName::getFromOpaqueInteger(diagnostic.getRawArg(0)).getAsString();
    default:
      return {};
  }
}

}  // namespace

UnitDiagnostics::UnitDiagnostics()
    : options(new clang::DiagnosticOptions),
      keptStream(kept),
      latestStream(latest),
      printer(latestStream, options.get()),
      keeper(keptStream, options.get()) {}

void UnitDiagnostics::BeginSourceFile(const clang::LangOptions& language,
                                      const clang::Preprocessor* preprocessor) {
  isInSource = true;
  printer.BeginSourceFile(language, preprocessor);
}

void UnitDiagnostics::EndSourceFile() {
  settle();
  printer.EndSourceFile();
}

void UnitDiagnostics::HandleDiagnostic(Level level, const clang::Diagnostic& diagnostic) {
  note(diagnostic);
  if (!isInSource) return keeper.HandleDiagnostic(level, diagnostic);
  if (level == Level::Note) {
    isLatestExcused = isLatestExcused || isExcusedBy(diagnostic);
    if (!isLatestExcused) printer.HandleDiagnostic(level, diagnostic);
    return;
  }
  settle();
  isLatestError = level >= Level::Error;
  isLatestExcused = isLatestError && isExcused(diagnostic.getID());
  latestId = diagnostic.getID();
  latestPlace = diagnostic.getLocation();
  latestName = nameIn(diagnostic);
  if (!isLatestExcused) printer.HandleDiagnostic(level, diagnostic);
}

bool UnitDiagnostics::isExcusedBy(const clang::Diagnostic& note) {
  const unsigned id = note.getID();
  if (latestId == clang::diag::err_conflicting_types &&
      id == clang::diag::note_previous_implicit_declaration) {
    afterImplicit.insert(latestPlace);
    return true;
  }
  // A function that nobody has declared is where it was first mentioned.
  if (latestId == clang::diag::err_redefinition_different_kind &&
      id == clang::diag::note_previous_definition && note.getLocation() == latestPlace) {
    ownNames.insert(latestName);
    return true;
  }
  return false;
}

void UnitDiagnostics::settle() {
  constexpr unsigned kMostShown = 20;
  if (isLatestError && !isLatestExcused) ++NumErrors;
  if (!isLatestExcused && NumErrors <= kMostShown) llvm::errs() << latestStream.str();
  latestStream.flush();
  latest.clear();
  isLatestError = isLatestExcused = false;
}

void UnitDiagnostics::printKeptUnlessInSource() {
  if (!isInSource) llvm::errs() << keptStream.str();
}

void UnitDiagnostics::note(const clang::Diagnostic& diagnostic) {
  const unsigned id = diagnostic.getID();
  if (id == clang::diag::err_target_unknown_triple) unknownTarget = nameIn(diagnostic);
  // What a header of the system includes is no part of the project.
  if (id == clang::diag::err_pp_file_not_found && missingHeader.empty() &&
      !diagnostic.getSourceManager().isInSystemHeader(diagnostic.getLocation())) {
    missingHeader = nameIn(diagnostic);
  }
}

}  // namespace fe_db_tools
