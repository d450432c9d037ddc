#pragma once

#include "fe_db/kinds.h"
#include "llvm/ADT/DenseMap.h"
#include "llvm/ADT/SmallPtrSet.h"

namespace clang {
class CallExpr;
class CXXConstructExpr;
class CXXCtorInitializer;
class CXXOperatorCallExpr;
class Expr;
class GCCAsmStmt;
class Stmt;
class ValueDecl;
class VarDecl;
}  // namespace clang

namespace fe_db_tools {

/// What an expression does with the entity that it names. That is decided by what is around it: an
/// assignment writes to its left side, a call calls its callee.
///
/// A part stands for the whole: what writes to `s.x` or `a[1]` writes to `s` or `a`. What a
/// reference is bound to has its address taken if the reference can be written through.
class Roles {
 public:
  using Mask = orvalesca::databases_merger::ReferenceRoles;

  /// REQUIRES: called for each statement and expression before anything inside of it.
  void enter(const clang::Stmt& statement);
  void enter(const clang::VarDecl& variable);
  void enter(const clang::CXXCtorInitializer& initializer);

  /// `name`: a DeclRefExpr or MemberExpr that has been reached; `named`: what it names.
  Mask of(const clang::Expr& name, const clang::ValueDecl& named) const;
  /// Of the constructor.
  Mask of(const clang::CXXConstructExpr& construction) const;

 private:
  void mark(const clang::Expr* expression, Mask roles);
  void markDecayed(const clang::Expr* pointer, Mask roles);
  void bind(const clang::Expr* value);
  void construct(const clang::Expr* value);
  void enterOperator(const clang::CXXOperatorCallExpr& call);
  void enterCall(const clang::CallExpr& call);
  void enterAssembler(const clang::GCCAsmStmt& statement);
  void enterExpression(const clang::Expr& expression);

  llvm::DenseMap<const clang::Expr*, Mask> marked;
  llvm::SmallPtrSet<const clang::Expr*, 16> written;  ///< constructions that are asked for
};

}  // namespace fe_db_tools
