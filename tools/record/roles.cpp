#include "roles.h"

#include "clang/AST/DeclCXX.h"
#include "clang/AST/ExprCXX.h"
#include "clang/AST/StmtCXX.h"

namespace fe_db_tools {

namespace {

using Mask = Roles::Mask;
constexpr Mask kReadAndWritten = Mask::Read | Mask::Write;

/// Whether the cast's operand is the same object or function.
bool keepsObject(const clang::CastExpr& cast) {
  switch (cast.getCastKind()) {
    case clang::CK_NoOp:
    case clang::CK_LValueBitCast:
    case clang::CK_DerivedToBase:
    case clang::CK_UncheckedDerivedToBase:
    case clang::CK_BaseToDerived:
    case clang::CK_FunctionToPointerDecay:
    case clang::CK_BuiltinFnToFnPtr:
      return true;
    default:
      return false;
  }
}

/// The operand that is the same object as the expression; null if there is none.
const clang::Expr* sameObject(const clang::Expr* expression) {
  if (const auto* paren = llvm::dyn_cast<clang::ParenExpr>(expression)) return paren->getSubExpr();
  if (const auto* full = llvm::dyn_cast<clang::FullExpr>(expression)) return full->getSubExpr();
  if (const auto* cast = llvm::dyn_cast<clang::CastExpr>(expression)) {
    return keepsObject(*cast) ? cast->getSubExpr() : nullptr;
  }
  if (const auto* temporary = llvm::dyn_cast<clang::MaterializeTemporaryExpr>(expression)) {
    return temporary->getSubExpr();
  }
  if (const auto* generic = llvm::dyn_cast<clang::GenericSelectionExpr>(expression)) {
    return generic->isResultDependent() ? nullptr : generic->getResultExpr();
  }
  if (const auto* binary = llvm::dyn_cast<clang::BinaryOperator>(expression)) {
    if (binary->getOpcode() == clang::BO_Comma) return binary->getRHS();
    return binary->isAssignmentOp() ? binary->getLHS() : nullptr;
  }
  const auto* unary = llvm::dyn_cast<clang::UnaryOperator>(expression);
  if (unary == nullptr) return nullptr;
  switch (unary->getOpcode()) {
    case clang::UO_Extension:
    case clang::UO_Real:
    case clang::UO_Imag:
    case clang::UO_PreInc:
    case clang::UO_PreDec:
      return unary->getSubExpr();
    default:
      return nullptr;
  }
}

/// What makes the value, without what only keeps it.
const clang::Expr* unwrapped(const clang::Expr* value) {
  while (value != nullptr) {
    const clang::Expr* inner = nullptr;
    if (const auto* full = llvm::dyn_cast<clang::FullExpr>(value)) inner = full->getSubExpr();
    if (const auto* temporary = llvm::dyn_cast<clang::MaterializeTemporaryExpr>(value)) {
      inner = temporary->getSubExpr();
    }
    if (const auto* bound = llvm::dyn_cast<clang::CXXBindTemporaryExpr>(value)) {
      inner = bound->getSubExpr();
    }
    if (inner == nullptr) break;
    value = inner;
  }
  return value;
}

}  // namespace

// --- Marks. What is entered first is around the rest, and its marks stay.

void Roles::mark(const clang::Expr* expression, Mask roles) {
  while (expression != nullptr) {
    if (llvm::isa<clang::DeclRefExpr>(expression)) {
      marked.try_emplace(expression, roles);
      return;
    }
    if (const auto* member = llvm::dyn_cast<clang::MemberExpr>(expression)) {
      marked.try_emplace(member, roles);
      if (member->isArrow() || roles == Mask::Call) return;
      expression = member->getBase();
    } else if (const auto* open = llvm::dyn_cast<clang::CXXDependentScopeMemberExpr>(expression)) {
      if (open->isImplicitAccess() || open->isArrow() || roles == Mask::Call) return;
      expression = open->getBase();
    } else if (const auto* element = llvm::dyn_cast<clang::ArraySubscriptExpr>(expression)) {
      return markDecayed(element->getBase(), roles);
    } else if (const auto* choice = llvm::dyn_cast<clang::ConditionalOperator>(expression)) {
      mark(choice->getTrueExpr(), roles);
      expression = choice->getFalseExpr();
    } else {
      expression = sameObject(expression);
    }
  }
}

/// The array that the pointer comes from; a pointer itself is only read.
void Roles::markDecayed(const clang::Expr* pointer, Mask roles) {
  const auto* cast = llvm::dyn_cast<clang::ImplicitCastExpr>(pointer->IgnoreParens());
  if (cast == nullptr || cast->getCastKind() != clang::CK_ArrayToPointerDecay) return;
  mark(cast->getSubExpr(), roles);
}

void Roles::bind(const clang::Expr* value) {
  if (value == nullptr || !value->isLValue() || value->getType().isConstQualified()) return;
  mark(value, Mask::AddressTaken);
}

void Roles::construct(const clang::Expr* value) {
  const clang::Expr* maker = unwrapped(value);
  if (llvm::isa_and_nonnull<clang::CXXConstructExpr>(maker)) written.insert(maker);
}

// --- What is around.

void Roles::enter(const clang::Stmt& statement) {
  if (const auto* expression = llvm::dyn_cast<clang::Expr>(&statement)) {
    enterExpression(*expression);
  } else if (const auto* end = llvm::dyn_cast<clang::ReturnStmt>(&statement)) {
    bind(end->getRetValue());
  } else if (const auto* assembler = llvm::dyn_cast<clang::GCCAsmStmt>(&statement)) {
    enterAssembler(*assembler);
  }
}

void Roles::enterExpression(const clang::Expr& expression) {
  if (const auto* binary = llvm::dyn_cast<clang::BinaryOperator>(&expression)) {
    if (!binary->isAssignmentOp()) return;
    mark(binary->getLHS(), binary->isCompoundAssignmentOp() ? kReadAndWritten : Mask::Write);
  } else if (const auto* unary = llvm::dyn_cast<clang::UnaryOperator>(&expression)) {
    if (unary->isIncrementDecrementOp()) mark(unary->getSubExpr(), kReadAndWritten);
    if (unary->getOpcode() == clang::UO_AddrOf) mark(unary->getSubExpr(), Mask::AddressTaken);
  } else if (const auto* element = llvm::dyn_cast<clang::ArraySubscriptExpr>(&expression)) {
    markDecayed(element->getBase(), Mask::Read);
  } else if (const auto* cast = llvm::dyn_cast<clang::CastExpr>(&expression)) {
    markDecayed(cast, Mask::AddressTaken);
    if (llvm::isa<clang::ExplicitCastExpr>(cast)) construct(cast->getSubExpr());
  } else if (const auto* call = llvm::dyn_cast<clang::CallExpr>(&expression)) {
    enterCall(*call);
  } else if (const auto* construction = llvm::dyn_cast<clang::CXXConstructExpr>(&expression)) {
    for (const clang::Expr* argument : construction->arguments()) bind(argument);
  } else if (const auto* allocation = llvm::dyn_cast<clang::CXXNewExpr>(&expression)) {
    construct(allocation->getConstructExpr());
  } else if (const auto* lambda = llvm::dyn_cast<clang::LambdaExpr>(&expression)) {
    auto init = lambda->capture_init_begin();
    for (const clang::LambdaCapture& capture : lambda->captures()) {
      if (capture.getCaptureKind() == clang::LCK_ByRef) mark(*init, Mask::AddressTaken);
      ++init;
    }
  }
}

void Roles::enter(const clang::VarDecl& variable) {
  construct(variable.getInit());
  if (variable.getType()->isReferenceType()) bind(variable.getInit());
}

void Roles::enter(const clang::CXXCtorInitializer& initializer) {
  if (initializer.isWritten()) construct(initializer.getInit());
  bind(initializer.getInit());
}

void Roles::enterCall(const clang::CallExpr& call) {
  mark(call.getCallee(), Mask::Call);
  if (const auto* operation = llvm::dyn_cast<clang::CXXOperatorCallExpr>(&call)) {
    return enterOperator(*operation);
  }
  const clang::FunctionDecl* callee = call.getDirectCallee();
  // std::move and its like only pass on what they are given.
  if (callee != nullptr && callee->getBuiltinID() != 0) return;
  for (const clang::Expr* argument : call.arguments()) bind(argument);
}

void Roles::enterOperator(const clang::CXXOperatorCallExpr& call) {
  if (call.getNumArgs() == 0) return;
  if (call.isAssignmentOp()) {
    mark(call.getArg(0), call.getOperator() == clang::OO_Equal ? Mask::Write : kReadAndWritten);
  } else if (call.getOperator() == clang::OO_PlusPlus ||
             call.getOperator() == clang::OO_MinusMinus) {
    mark(call.getArg(0), kReadAndWritten);
  }
  for (unsigned i = 1; i < call.getNumArgs(); ++i) bind(call.getArg(i));
}

void Roles::enterAssembler(const clang::GCCAsmStmt& statement) {
  for (unsigned i = 0; i < statement.getNumOutputs(); ++i) {
    mark(statement.getOutputExpr(i),
         statement.isOutputPlusConstraint(i) ? kReadAndWritten : Mask::Write);
  }
}

// --- Answers.

Mask Roles::of(const clang::Expr& name, const clang::ValueDecl& named) const {
  const auto known = marked.find(&name);
  const bool isFunction = llvm::isa<clang::FunctionDecl>(named);
  if (known == marked.end()) return isFunction ? Mask::AddressTaken : Mask::Read;
  if (known->second == Mask::Call && !isFunction) return Mask::Read;
  return isFunction && known->second != Mask::Call ? Mask::AddressTaken : known->second;
}

Mask Roles::of(const clang::CXXConstructExpr& construction) const {
  const bool isWritten =
      llvm::isa<clang::CXXTemporaryObjectExpr>(construction) || written.count(&construction) != 0;
  return isWritten ? Mask::Call : Mask::Call | Mask::Implicit;
}

}  // namespace fe_db_tools
