#pragma once

#include "fe_db/macro.h"
#include "llvm/ADT/DenseMap.h"
#include "llvm/ADT/DenseSet.h"
#include "macro_expansion.h"

namespace clang {
class ASTContext;
class DeclContext;
class EnumConstantDecl;
class IdentifierInfo;
class Preprocessor;
}  // namespace clang

namespace fe_db_tools {

namespace dm = orvalesca::databases_merger;

/// Enum constants that a bare name means everywhere in the unit: those of the file's scope whose
/// name nothing else bears in any scope that could hide it.
class EnumConstants {
 public:
  explicit EnumConstants(const clang::ASTContext& context);
  /// Null for every other name.
  const clang::EnumConstantDecl* find(const clang::IdentifierInfo& name) const;

 private:
  void collect(const clang::DeclContext& scope, bool isFileScope);

  bool isCpp;
  llvm::DenseMap<const clang::IdentifierInfo*, const clang::EnumConstantDecl*> constants;
  llvm::DenseSet<const clang::IdentifierInfo*> others;
};

/// The value that the tokens have as an integer expression of C with the types of the target; the
/// alternative tells the signedness of its type. None for tokens that are no such expression
/// (casts, calls, sizeof, strings, floating point) or that the languages give no value: division by
/// zero, overflow of a signed type, a shift by too much or of something negative to the left.
///
/// REQUIRES: as answerOf(), for what the compiler's own macros in it become.
dm::Macro::Value valueOf(const Tokens& tokens, clang::Preprocessor& preprocessor,
                         const EnumConstants& constants);

}  // namespace fe_db_tools
