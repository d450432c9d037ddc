#include "stored_place.h"

#include "clang/AST/DeclCXX.h"
#include "clang/AST/ExprCXX.h"

namespace fe_db_tools {

namespace {

/// The pointer is the value of this variable, incremented or not.
Effect throughVariable(const clang::Expr& variable) {
  const clang::Expr* inner = variable.IgnoreParens();
  const auto* step = llvm::dyn_cast<clang::UnaryOperator>(inner);
  if (step != nullptr && step->isIncrementDecrementOp()) {
    inner = step->getSubExpr()->IgnoreParens();
  }
  const auto* name = llvm::dyn_cast<clang::DeclRefExpr>(inner);
  const bool isParameter = name != nullptr && llvm::isa<clang::ParmVarDecl>(name->getDecl());
  return isParameter ? Effect::some : Effect::unknown;
}

Effect intoNamed(const clang::DeclRefExpr& name) {
  // In a lambda: a variable of the function around it, or the lambda's own copy, which stays.
  if (name.refersToEnclosingVariableOrCapture()) return Effect::some;
  if (const auto* binding = llvm::dyn_cast<clang::BindingDecl>(name.getDecl())) {
    return binding->getBinding() == nullptr ? Effect::unknown
                                            : effectOfStore(*binding->getBinding());
  }
  const auto* variable = llvm::dyn_cast<clang::VarDecl>(name.getDecl());
  if (variable == nullptr) return Effect::unknown;
  if (variable->hasGlobalStorage()) return Effect::some;
  if (!variable->getType()->isReferenceType()) return Effect::none;
  return llvm::isa<clang::ParmVarDecl>(variable) ? Effect::some : Effect::unknown;
}

Effect intoMember(const clang::MemberExpr& member) {
  if (!llvm::isa<clang::FieldDecl>(member.getMemberDecl())) return Effect::some;
  if (member.getMemberDecl()->getType()->isReferenceType()) return Effect::unknown;
  return member.isArrow() ? effectOfStoreThrough(*member.getBase())
                          : effectOfStore(*member.getBase());
}

}  // namespace

Effect effectOfStore(const clang::Expr& expression) {
  const clang::Expr* place = expression.IgnoreParens();
  if (const auto* name = llvm::dyn_cast<clang::DeclRefExpr>(place)) return intoNamed(*name);
  if (const auto* member = llvm::dyn_cast<clang::MemberExpr>(place)) return intoMember(*member);
  if (const auto* element = llvm::dyn_cast<clang::ArraySubscriptExpr>(place)) {
    return effectOfStoreThrough(*element->getBase());
  }
  if (const auto* cast = llvm::dyn_cast<clang::CastExpr>(place)) {
    return cast->getSubExpr()->isGLValue() ? effectOfStore(*cast->getSubExpr()) : Effect::unknown;
  }
  if (const auto* unary = llvm::dyn_cast<clang::UnaryOperator>(place)) {
    if (unary->getOpcode() == clang::UO_Deref) return effectOfStoreThrough(*unary->getSubExpr());
  }
  const bool isTemporary =
      llvm::isa<clang::MaterializeTemporaryExpr, clang::CompoundLiteralExpr>(place);
  return isTemporary ? Effect::none : Effect::unknown;
}

Effect effectOfStoreThrough(const clang::Expr& expression) {
  const clang::Expr* pointer = expression.IgnoreParens();
  if (llvm::isa<clang::CXXThisExpr>(pointer)) return Effect::some;
  if (const auto* cast = llvm::dyn_cast<clang::CastExpr>(pointer)) {
    const clang::Expr& inner = *cast->getSubExpr();
    if (cast->getCastKind() == clang::CK_LValueToRValue) return throughVariable(inner);
    if (cast->getCastKind() == clang::CK_ArrayToPointerDecay) return effectOfStore(inner);
    return inner.getType()->isPointerType() ? effectOfStoreThrough(inner) : Effect::unknown;
  }
  if (const auto* unary = llvm::dyn_cast<clang::UnaryOperator>(pointer)) {
    if (unary->getOpcode() == clang::UO_AddrOf) return effectOfStore(*unary->getSubExpr());
    return throughVariable(*unary);
  }
  const auto* binary = llvm::dyn_cast<clang::BinaryOperator>(pointer);
  if (binary == nullptr || !binary->isAdditiveOp()) return Effect::unknown;
  const bool isLeft = binary->getLHS()->getType()->isPointerType();
  return effectOfStoreThrough(isLeft ? *binary->getLHS() : *binary->getRHS());
}

}  // namespace fe_db_tools
