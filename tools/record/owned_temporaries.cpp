#include "owned_temporaries.h"

#include "clang/AST/ExprCXX.h"
#include "clang/AST/StmtCXX.h"

namespace fe_db_tools {

namespace {

/// The part that is the same object as the whole; null for none.
const clang::Expr* sameObject(const clang::Expr& value) {
  if (const auto* full = llvm::dyn_cast<clang::FullExpr>(&value)) return full->getSubExpr();
  if (const auto* paren = llvm::dyn_cast<clang::ParenExpr>(&value)) return paren->getSubExpr();
  if (const auto* bound = llvm::dyn_cast<clang::CXXBindTemporaryExpr>(&value)) {
    return bound->getSubExpr();
  }
  if (const auto* cast = llvm::dyn_cast<clang::CastExpr>(&value)) {
    const bool isSame = cast->getCastKind() == clang::CK_NoOp ||
                        cast->getCastKind() == clang::CK_ConstructorConversion ||
                        cast->getCastKind() == clang::CK_UserDefinedConversion;
    return isSame ? cast->getSubExpr() : nullptr;
  }
  const clang::Expr* source = elidedCopy(value);
  const auto* temporary = llvm::dyn_cast_or_null<clang::MaterializeTemporaryExpr>(source);
  return temporary == nullptr ? source : temporary->getSubExpr();
}

}  // namespace

const clang::Expr* elidedCopy(const clang::Expr& construction) {
  const auto* copy = llvm::dyn_cast<clang::CXXConstructExpr>(&construction);
  return copy != nullptr && copy->isElidable() ? copy->getArg(0) : nullptr;
}

void OwnedTemporaries::own(const clang::Stmt* value) {
  const auto* expression = llvm::dyn_cast_or_null<clang::Expr>(value);
  while (expression != nullptr) {
    if (const auto* bound = llvm::dyn_cast<clang::CXXBindTemporaryExpr>(expression)) {
      owned.insert(bound);
    } else if (const auto* choice = llvm::dyn_cast<clang::ConditionalOperator>(expression)) {
      own(choice->getTrueExpr());
      own(choice->getFalseExpr());
    } else if (const auto* binary = llvm::dyn_cast<clang::BinaryOperator>(expression)) {
      if (binary->getOpcode() == clang::BO_Comma) own(binary->getRHS());
    }
    expression = sameObject(*expression);
  }
}

void OwnedTemporaries::enter(const clang::Stmt& statement) {
  using clang::Stmt;
  switch (statement.getStmtClass()) {
    case Stmt::ReturnStmtClass:
      return own(llvm::cast<clang::ReturnStmt>(statement).getRetValue());
    case Stmt::CXXThrowExprClass:
      return own(llvm::cast<clang::CXXThrowExpr>(statement).getSubExpr());
    case Stmt::CXXNewExprClass:
      return own(llvm::cast<clang::CXXNewExpr>(statement).getInitializer());
    case Stmt::CXXDefaultInitExprClass:
      return own(llvm::cast<clang::CXXDefaultInitExpr>(statement).getExpr());
    case Stmt::CXXConstructExprClass:
      return own(sameObject(llvm::cast<clang::Expr>(statement)));
    case Stmt::LambdaExprClass:
      for (const clang::Expr* copy : llvm::cast<clang::LambdaExpr>(statement).capture_inits()) {
        own(copy);
      }
      return;
    case Stmt::InitListExprClass: {
      const auto& list = llvm::cast<clang::InitListExpr>(statement);
      const clang::InitListExpr* meant = list.isSemanticForm() ? &list : list.getSemanticForm();
      if (meant == nullptr) return;
      for (const clang::Expr* element : meant->inits()) own(element);
      return;
    }
    default:
      return;
  }
}

}  // namespace fe_db_tools
