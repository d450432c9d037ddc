#include "unevaluated.h"

#include "clang/AST/ASTContext.h"
#include "clang/AST/ExprCXX.h"
#include "clang/Basic/Builtins.h"

namespace fe_db_tools {

namespace {

/// The length of a variable length array is evaluated.
bool isEvaluated(const clang::UnaryExprOrTypeTraitExpr& size) {
  return size.getKind() == clang::UETT_SizeOf && size.getTypeOfArgument()->isVariablyModifiedType();
}

}  // namespace

void Unevaluated::addParts(const clang::Stmt& statement) {
  for (const clang::Stmt* part : statement.children()) add(part);
}

void Unevaluated::enter(const clang::Stmt& statement) {
  using clang::Stmt;
  switch (statement.getStmtClass()) {
    case Stmt::UnaryExprOrTypeTraitExprClass: {
      const auto& size = llvm::cast<clang::UnaryExprOrTypeTraitExpr>(statement);
      if (!isEvaluated(size)) addParts(size);
      break;
    }
    case Stmt::CXXNoexceptExprClass:
      addParts(statement);
      break;
    case Stmt::CXXTypeidExprClass:
      if (!llvm::cast<clang::CXXTypeidExpr>(statement).isPotentiallyEvaluated()) {
        addParts(statement);
      }
      break;
    case Stmt::GenericSelectionExprClass:
      enterGeneric(llvm::cast<clang::GenericSelectionExpr>(statement));
      break;
    case Stmt::ChooseExprClass: {
      const auto& choice = llvm::cast<clang::ChooseExpr>(statement);
      if (choice.isConditionDependent()) break;
      add(choice.isConditionTrue() ? choice.getRHS() : choice.getLHS());
      break;
    }
    case Stmt::CallExprClass: {
      const auto& call = llvm::cast<clang::CallExpr>(statement);
      const unsigned builtin = call.getBuiltinCallee();
      if (builtin == 0 || !context.BuiltinInfo.isUnevaluated(builtin)) break;
      for (const clang::Expr* argument : call.arguments()) add(argument);
      break;
    }
    case Stmt::IfStmtClass:
      enterChoice(llvm::cast<clang::IfStmt>(statement));
      break;
    default:
      break;
  }
}

void Unevaluated::enterGeneric(const clang::GenericSelectionExpr& generic) {
  addParts(generic);
  for (const clang::Expr* choice : generic.getAssocExprs()) {
    if (generic.isResultDependent() || choice == generic.getResultExpr()) operands.erase(choice);
  }
}

void Unevaluated::enterChoice(const clang::IfStmt& choice) {
  if (!choice.isConstexpr()) return;
  const auto kept = choice.getNondiscardedCase(context);
  if (!kept) return;
  for (const clang::Stmt* branch : {choice.getThen(), choice.getElse()}) {
    if (branch != *kept) add(branch);
  }
}

}  // namespace fe_db_tools
