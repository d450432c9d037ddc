#pragma once

#include "llvm/ADT/SmallPtrSet.h"

namespace clang {
class CompoundStmt;
class Expr;
class Stmt;
class StmtExpr;
}  // namespace clang

namespace fe_db_tools {

/// Finds the calls whose value is dropped: those that are a statement, on the left of a comma,
/// under a cast to void, and the like. The cast counts as dropping: it says so in the source.
class ValueUse {
 public:
  /// REQUIRES: called for each statement and expression before anything inside of it.
  void enter(const clang::Stmt& statement);

  /// `call`: a CallExpr or CXXConstructExpr that has been reached.
  bool isDropped(const clang::Expr& call) const { return dropped.count(&call) != 0; }

 private:
  void dropValueOf(const clang::Stmt* statement);
  void dropOperands(const clang::Expr& expression);
  void enterBlock(const clang::CompoundStmt& block);

  llvm::SmallPtrSet<const clang::Expr*, 32> dropped;
  llvm::SmallPtrSet<const clang::Stmt*, 8> blocksWithValue;  ///< of ({ }) whose value is used
};

}  // namespace fe_db_tools
