#pragma once

#include "clang/AST/Stmt.h"
#include "llvm/ADT/SmallPtrSet.h"

namespace clang {
class ASTContext;
class GenericSelectionExpr;
}  // namespace clang

namespace fe_db_tools {

/// Finds the expressions that no run of the program evaluates, so that a call in them is none:
/// operands of `sizeof`, `decltype`, `noexcept` and the like, requirements, what `_Generic` and
/// `if constexpr` do not choose.
class Unevaluated {
 public:
  explicit Unevaluated(const clang::ASTContext& context) : context(context) {}

  /// REQUIRES: called for each statement and expression before anything inside of it.
  void enter(const clang::Stmt& statement);
  /// For an operand that a type has.
  void add(const clang::Stmt* operand) {
    if (operand != nullptr) operands.insert(operand);
  }

  /// Of such an operand as a whole, not of its parts.
  bool contains(const clang::Stmt* statement) const {
    return statement->getStmtClass() == clang::Stmt::RequiresExprClass ||
           (!operands.empty() && operands.count(statement) != 0);
  }

 private:
  void addParts(const clang::Stmt& statement);
  void enterGeneric(const clang::GenericSelectionExpr& generic);
  void enterChoice(const clang::IfStmt& choice);

  const clang::ASTContext& context;
  llvm::SmallPtrSet<const clang::Stmt*, 16> operands;
};

}  // namespace fe_db_tools
