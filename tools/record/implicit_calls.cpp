#include "implicit_calls.h"

#include "clang/AST/Attr.h"
#include "clang/AST/DeclCXX.h"
#include "clang/AST/ExprCXX.h"
#include "clang/AST/StmtCXX.h"
#include "clang/Basic/Version.h"
#include "entity_table.h"
#include "file_table.h"
#include "references.h"

namespace fe_db_tools {

namespace {

/// What makes the value, without what the compiler has put around it.
const clang::Expr* maker(const clang::Expr* value) {
  while (value != nullptr) {
    const clang::Expr* inner = elidedCopy(*value);
    if (const auto* full = llvm::dyn_cast<clang::FullExpr>(value)) inner = full->getSubExpr();
    if (const auto* paren = llvm::dyn_cast<clang::ParenExpr>(value)) inner = paren->getSubExpr();
    if (const auto* cast = llvm::dyn_cast<clang::CastExpr>(value)) inner = cast->getSubExpr();
    if (const auto* bound = llvm::dyn_cast<clang::CXXBindTemporaryExpr>(value)) {
      inner = bound->getSubExpr();
    }
    if (const auto* temporary = llvm::dyn_cast<clang::MaterializeTemporaryExpr>(value)) {
      inner = temporary->getSubExpr();
    }
    if (inner == nullptr) break;
    value = inner;
  }
  return value;
}

const clang::Expr* initOf(const clang::Stmt* declaration) {
  const auto* one = llvm::dyn_cast_or_null<clang::DeclStmt>(declaration);
  if (one == nullptr || !one->isSingleDecl()) return nullptr;
  const auto* variable = llvm::dyn_cast<clang::VarDecl>(one->getSingleDecl());
  return variable == nullptr ? nullptr : variable->getInit();
}

clang::SourceLocation placeOf(const clang::CXXBaseSpecifier& base) {
  const clang::TypeSourceInfo* written = base.getTypeSourceInfo();
  return written == nullptr ? base.getBeginLoc() : written->getTypeLoc().getBeginLoc();
}

clang::SourceLocation placeOf(const clang::CXXCtorInitializer& part,
                              const clang::CXXRecordDecl& parent) {
  if (part.isAnyMemberInitializer()) return part.getAnyMember()->getLocation();
  for (const clang::CXXBaseSpecifier& base : parent.bases()) {
    const auto* record = base.getType()->getAsCXXRecordDecl();
    if (record == part.getBaseClass()->getAsCXXRecordDecl()) return placeOf(base);
  }
  return {};
}

}  // namespace

void ImplicitCalls::add(const clang::FunctionDecl* callee, const Site& site,
                        clang::SourceLocation otherwise) {
  if (callee == nullptr) return;
  const auto* method = llvm::dyn_cast<clang::CXXMethodDecl>(callee);
  const bool isSpecial = llvm::isa<clang::CXXConstructorDecl, clang::CXXDestructorDecl>(callee);
  if (isSpecial && !method->isUserProvided()) return;
  dm::Function* to = entities.function(*callee);
  if (to == nullptr) return;
  if (site.isReference) {
    FactSink::refer(to);
    references.implicitly(to, site.at);
  }
  if (site.caller == nullptr) return;
  dm::Function* from = entities.function(*site.caller);
  if (from == nullptr) return;
  calls.push_back({from, to, files.locate(site.at), files.locate(otherwise)});
}

void ImplicitCalls::record() {
  for (const Call& call : calls) {
    const bool isTaken =
        call.otherwise.file != nullptr && sink.isOtherCall(call.caller, call.callee, call.at);
    sink.call(call.caller, call.callee, isTaken ? call.otherwise : call.at, /*isValueUsed=*/true);
  }
}

void ImplicitCalls::destroy(clang::QualType type, const Site& site,
                            clang::SourceLocation otherwise) {
  if (type.isNull() || type->isDependentType()) return;
  const auto* record = type->getBaseElementTypeUnsafe()->getAsCXXRecordDecl();
  if (record == nullptr || !record->hasDefinition() || record->hasTrivialDestructor()) return;
  add(record->getDestructor(), site, otherwise);
}

/// The call that the statement is, below conversions of its value.
void ImplicitCalls::addOutermost(const clang::Stmt* statement, const Site& site,
                                 clang::SourceLocation otherwise) {
  const auto* value = llvm::dyn_cast_or_null<clang::Expr>(statement);
  while (value != nullptr) {
    value = maker(value);
    const auto* negation = llvm::dyn_cast<clang::UnaryOperator>(value);
    const auto* rewritten = llvm::dyn_cast<clang::CXXRewrittenBinaryOperator>(value);
    const auto* construction = llvm::dyn_cast<clang::CXXConstructExpr>(value);
    if (const auto* call = llvm::dyn_cast<clang::CallExpr>(value)) {
      return add(call->getDirectCallee(), site, otherwise);
    }
    if (construction != nullptr && construction->getConstructor()->isUserProvided()) {
      return add(construction->getConstructor(), site, otherwise);
    }
    value = nullptr;
    if (negation != nullptr && negation->getOpcode() == clang::UO_LNot) {
      value = negation->getSubExpr();
    } else if (rewritten != nullptr) {
      value = rewritten->getSemanticForm();
    } else if (construction != nullptr && construction->getNumArgs() > 0) {
      value = construction->getArg(0);
    }
  }
}

/// All calls in what is written elsewhere.
void ImplicitCalls::addWithin(const clang::Stmt* statement, const Site& site) {
  if (statement == nullptr || llvm::isa<clang::LambdaExpr, clang::BlockExpr>(statement)) return;
  if (const auto* call = llvm::dyn_cast<clang::CallExpr>(statement)) {
    add(call->getDirectCallee(), site);
  } else if (const auto* construction = llvm::dyn_cast<clang::CXXConstructExpr>(statement)) {
    if (!construction->isElidable()) add(construction->getConstructor(), site);
  }
  visit(*statement, site);
  unevaluated.enter(*statement);
  for (const clang::Stmt* part : statement->children()) {
    if (part != nullptr && !unevaluated.contains(part)) addWithin(part, site);
  }
}

/// `value`: without what the compiler has put around it.
void ImplicitCalls::addConstruction(const clang::Expr& value, Site site) {
  if (site.at.isInvalid()) site.at = value.getExprLoc();
  if (const auto* construction = llvm::dyn_cast<clang::CXXConstructExpr>(&value)) {
    add(construction->getConstructor(), site);
    for (const clang::Expr* argument : construction->arguments()) {
      if (llvm::isa<clang::CXXDefaultArgExpr>(argument)) visit(*argument, site);
    }
  } else if (const auto* conversion = llvm::dyn_cast<clang::CXXMemberCallExpr>(&value)) {
    add(conversion->getDirectCallee(), site);
  } else if (llvm::isa<clang::CXXDefaultInitExpr>(value)) {
    visit(value, site);
  }
}

// --- Statements and expressions.

void ImplicitCalls::enter(const clang::Stmt& statement, const clang::FunctionDecl* caller) {
  visit(statement, {caller, {}});
}

/// `site`: without a place, the statement is in the source as it is.
void ImplicitCalls::visit(const clang::Stmt& statement, const Site& site) {
  using clang::Stmt;
  owned.enter(statement);
  const auto placeOr = [&](clang::SourceLocation own) {
    return Site{site.caller, site.at.isValid() ? site.at : own};
  };
  switch (statement.getStmtClass()) {
    case Stmt::CXXDefaultArgExprClass: {
      const auto& argument = llvm::cast<clang::CXXDefaultArgExpr>(statement);
      const Site parameter{site.caller, argument.getParam()->getLocation(), false};
      return addWithin(argument.getExpr(), parameter);
    }
    case Stmt::CXXDefaultInitExprClass: {
      const auto& value = llvm::cast<clang::CXXDefaultInitExpr>(statement);
      return addWithin(value.getExpr(), {site.caller, value.getField()->getLocation(), false});
    }
    case Stmt::CXXBindTemporaryExprClass: {
      const auto& temporary = llvm::cast<clang::CXXBindTemporaryExpr>(statement);
      if (owned.contains(temporary)) return;
      return add(temporary.getTemporary()->getDestructor(), placeOr(temporary.getEndLoc()));
    }
    case Stmt::MaterializeTemporaryExprClass:
      return enterExtended(llvm::cast<clang::MaterializeTemporaryExpr>(statement), site);
    case Stmt::InitListExprClass:
      if (site.at.isValid()) return;
      return enterInitializers(llvm::cast<clang::InitListExpr>(statement), site.caller);
    case Stmt::CXXDeleteExprClass: {
      const auto& expression = llvm::cast<clang::CXXDeleteExpr>(statement);
      const Site here = placeOr(expression.getBeginLoc());
      destroy(expression.getDestroyedType(), here);
      return addAllocation(expression.getOperatorDelete(), here);
    }
    case Stmt::CXXNewExprClass: {
      const auto& expression = llvm::cast<clang::CXXNewExpr>(statement);
      return addAllocation(expression.getOperatorNew(), placeOr(expression.getBeginLoc()));
    }
    default:
      return enterStatement(statement, site.caller);
  }
}

/// Those that are never part of what is written elsewhere.
void ImplicitCalls::enterStatement(const clang::Stmt& statement,
                                   const clang::FunctionDecl* caller) {
  if (const auto* loop = llvm::dyn_cast<clang::CXXForRangeStmt>(&statement)) {
    enterRangeFor(*loop, caller);
  } else if (const auto* body = llvm::dyn_cast<clang::CoroutineBodyStmt>(&statement)) {
    enterCoroutine(*body, caller);
  } else if (const auto* suspension = llvm::dyn_cast<clang::CoroutineSuspendExpr>(&statement)) {
    enterSuspension(*suspension, caller);
  } else if (const auto* end = llvm::dyn_cast<clang::CoreturnStmt>(&statement)) {
    addOutermost(end->getPromiseCall(), {caller, end->getKeywordLoc()});
  }
}

void ImplicitCalls::enterExtended(const clang::MaterializeTemporaryExpr& temporary,
                                  const Site& site) {
  if (temporary.getStorageDuration() == clang::SD_FullExpression) return;
  llvm::SmallVector<const clang::Expr*, 2> commas;
  llvm::SmallVector<clang::SubobjectAdjustment, 2> adjustments;
  const clang::Expr* object =
      temporary.getSubExpr()->skipRValueSubobjectAdjustments(commas, adjustments);
  owned.own(object);
  const bool isLocal = temporary.getStorageDuration() == clang::SD_Automatic;
  const clang::FunctionDecl* caller = isLocal ? site.caller : nullptr;
  const clang::ValueDecl* variable = temporary.getExtendingDecl();
  if (variable == nullptr || variable->isImplicit() || site.at.isValid()) {
    destroy(object->getType(), {caller, site.at.isValid() ? site.at : object->getEndLoc()});
  } else {
    destroy(object->getType(), {caller, variable->getLocation()}, variable->getBeginLoc());
  }
}

/// Only the list as it is written is visited, without what the language adds to it.
void ImplicitCalls::enterInitializers(const clang::InitListExpr& list,
                                      const clang::FunctionDecl* caller) {
  const clang::InitListExpr* meant = list.isSemanticForm() ? &list : list.getSemanticForm();
  if (meant == nullptr) return;
  if (meant == &list && list.isSyntacticForm()) return;
  llvm::SmallPtrSet<const clang::Expr*, 8> written;
  for (const clang::Expr* value : list.inits()) written.insert(maker(value));
  llvm::SmallVector<const clang::Expr*, 8> values(meant->inits().begin(), meant->inits().end());
  if (meant->hasArrayFiller()) values.push_back(meant->getArrayFiller());
  for (std::size_t i = 0; i < values.size(); ++i) {
    const clang::Expr* value = maker(values[i]);
    if (value == nullptr || written.count(value) != 0) continue;
    const auto* nested = llvm::dyn_cast<clang::InitListExpr>(value);
    const bool isVisited = nested != nullptr && nested->getSyntacticForm() != nullptr &&
                           written.count(nested->getSyntacticForm()) != 0;
    if (nested != nullptr && !isVisited) {
      values.append(nested->inits().begin(), nested->inits().end());
    }
    if (nested == nullptr) addConstruction(*value, {caller, {}});
  }
}

void ImplicitCalls::enterRangeFor(const clang::CXXForRangeStmt& loop,
                                  const clang::FunctionDecl* caller) {
  const clang::Expr& range = *loop.getRangeInit();
  addOutermost(initOf(loop.getBeginStmt()), {caller, range.getBeginLoc()}, range.getEndLoc());
  addOutermost(initOf(loop.getEndStmt()), {caller, loop.getRParenLoc()});
  addOutermost(loop.getCond(), {caller, loop.getColonLoc()});
  addOutermost(loop.getInc(), {caller, loop.getForLoc()});
  addOutermost(initOf(loop.getLoopVarStmt()), {caller, loop.getLoopVariable()->getLocation()});
}

/// Those of the compiler have no place; those of a library are called wherever anything is made.
void ImplicitCalls::addAllocation(const clang::FunctionDecl* function, const Site& site) {
  if (function != nullptr && !files.isInSystemHeader(function->getLocation())) add(function, site);
}

void ImplicitCalls::enterCoroutine(const clang::CoroutineBodyStmt& body,
                                   const clang::FunctionDecl* caller) {
  if (caller == nullptr || body.hasDependentPromiseType()) return;
  const auto operandOf = [](const clang::Stmt* statement) {
    const auto* value = maker(llvm::dyn_cast_or_null<clang::Expr>(statement));
    const auto* wait = llvm::dyn_cast_or_null<clang::CoroutineSuspendExpr>(value);
    return wait == nullptr ? nullptr : wait->getCommonExpr();
  };
  addOutermost(body.getReturnValueInit(), {caller, caller->getLocation()});
  addOutermost(operandOf(body.getInitSuspendStmt()), {caller, body.getBody()->getBeginLoc()});
  addOutermost(operandOf(body.getFinalSuspendStmt()), {caller, body.getBody()->getEndLoc()});
  addOutermost(body.getExceptionHandler(), {caller, caller->getBeginLoc()});
}

/// What the promise or an operator make of the operand, and the functions of what they make.
void ImplicitCalls::enterSuspension(const clang::CoroutineSuspendExpr& suspension,
                                    const clang::FunctionDecl* caller) {
  const Site here{caller, suspension.getKeywordLoc()};
  const clang::Expr* operand = nullptr;
#if CLANG_VERSION_MAJOR >= 15
  operand = suspension.getOperand();
#endif
  if (operand != nullptr && maker(suspension.getCommonExpr()) != maker(operand)) {
    addOutermost(suspension.getCommonExpr(), here);
  }
  addOutermost(suspension.getReadyExpr(), here);
  addOutermost(suspension.getSuspendExpr(), here);
  addOutermost(suspension.getResumeExpr(), here);
}

// --- Declarations.

void ImplicitCalls::enter(const clang::VarDecl& variable, const clang::FunctionDecl* caller) {
  if (llvm::isa<clang::ParmVarDecl>(variable) || variable.isInvalidDecl()) return;
  const Site here{caller, variable.getLocation()};
  if (const auto* cleanup = variable.getAttr<clang::CleanupAttr>()) {
    add(cleanup->getFunctionDecl(), {caller, here.at, /*isReference=*/false});
  }
  if (!variable.getASTContext().getLangOpts().CPlusPlus) return;
  owned.own(variable.getInit());
  if (const auto* bindings = llvm::dyn_cast<clang::DecompositionDecl>(&variable)) {
    for (const clang::BindingDecl* binding : bindings->bindings()) {
      const clang::VarDecl* holder = binding->getHoldingVar();
      if (holder == nullptr) continue;
      // References::ofBinding counts what it is bound to.
      addOutermost(holder->getInit(), {caller, binding->getLocation(), /*isReference=*/false});
    }
  }
  if (variable.getType()->isReferenceType() ||
      variable.isThisDeclarationADefinition() == clang::VarDecl::DeclarationOnly) {
    return;
  }
  // Of a lambda's own variables the copies in the lambda are left.
  const bool isLocal = variable.hasLocalStorage() && !variable.isInitCapture();
  destroy(variable.getType(), {isLocal ? caller : nullptr, here.at}, variable.getBeginLoc());
}

void ImplicitCalls::enter(const clang::FunctionDecl& definition) {
  if (!definition.doesThisDeclarationHaveABody() || definition.isDefaulted() ||
      definition.isDependentContext()) {
    return;
  }
  if (const auto* constructor = llvm::dyn_cast<clang::CXXConstructorDecl>(&definition)) {
    enterConstructor(*constructor);
  } else if (const auto* destructor = llvm::dyn_cast<clang::CXXDestructorDecl>(&definition)) {
    enterDestructor(*destructor);
  }
}

void ImplicitCalls::enterConstructor(const clang::CXXConstructorDecl& constructor) {
  for (const clang::CXXCtorInitializer* part : constructor.inits()) {
    owned.own(part->getInit());
    if (part->isWritten()) continue;
    const clang::SourceLocation at = placeOf(*part, *constructor.getParent());
    if (at.isValid()) addConstruction(*maker(part->getInit()), {&constructor, at});
  }
}

/// Of members and direct bases: other virtual bases have no place in the class.
void ImplicitCalls::enterDestructor(const clang::CXXDestructorDecl& destructor) {
  const clang::CXXRecordDecl& parent = *destructor.getParent();
  if (parent.isUnion()) return;
  for (const clang::CXXBaseSpecifier& base : parent.bases()) {
    destroy(base.getType(), {&destructor, placeOf(base)});
  }
  for (const clang::FieldDecl* field : parent.fields()) {
    destroy(field->getType(), {&destructor, field->getLocation()});
  }
}

}  // namespace fe_db_tools
