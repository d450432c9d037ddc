#include "effect_analysis.h"

#include <algorithm>

#include "clang/AST/ASTContext.h"
#include "clang/AST/RecursiveASTVisitor.h"
#include "clang/Basic/Builtins.h"
#include "clang/Basic/SourceManager.h"
#include "record_kinds.h"
#include "stored_place.h"
#include "unevaluated.h"

namespace fe_db_tools {

namespace {

/// What one body shows, with what the compiler adds to it: conversions, default arguments,
/// destructors. Ends as soon as an effect is found. Operands that are not evaluated, and bodies of
/// lambdas and local classes, are no part of it.
class BodyScan : public clang::RecursiveASTVisitor<BodyScan> {
  using Base = clang::RecursiveASTVisitor<BodyScan>;

 public:
  explicit BodyScan(clang::ASTContext& context) : unevaluated(context), context(context) {}

  void scan(const clang::FunctionDecl& function);
  Effect own = Effect::none;
  std::vector<const clang::FunctionDecl*> callees;

  bool shouldVisitImplicitCode() const { return true; }
  bool TraverseDecl(clang::Decl* declaration) {
    if (llvm::isa_and_nonnull<clang::TagDecl, clang::FunctionDecl>(declaration)) return true;
    return Base::TraverseDecl(declaration);
  }
  bool TraverseLambdaExpr(clang::LambdaExpr* lambda, DataRecursionQueue* = nullptr) {
    for (clang::Expr* capture : lambda->capture_inits()) {
      if (!TraverseStmt(capture)) return false;
    }
    return true;
  }
  bool TraverseBlockExpr(clang::BlockExpr*, DataRecursionQueue* = nullptr) { return true; }
  bool dataTraverseStmtPre(clang::Stmt* statement) { return !unevaluated.contains(statement); }
  bool TraverseDecltypeTypeLoc(clang::DecltypeTypeLoc) { return true; }
  bool TraverseTypeOfExprTypeLoc(clang::TypeOfExprTypeLoc at) {
    return !at.getType()->isVariablyModifiedType() || Base::TraverseTypeOfExprTypeLoc(at);
  }

  // --- Accesses.

  bool VisitExpr(clang::Expr* expression) {
    return !expression->isGLValue() || !isWatched(expression->getType()) || raise(Effect::some);
  }
  bool VisitBinaryOperator(clang::BinaryOperator* operation) {
    return !operation->isAssignmentOp() || raise(effectOfStore(*operation->getLHS()));
  }
  bool VisitUnaryOperator(clang::UnaryOperator* operation) {
    return !operation->isIncrementDecrementOp() || raise(effectOfStore(*operation->getSubExpr()));
  }
  bool VisitVAArgExpr(clang::VAArgExpr* next) {
    const clang::Expr& list = *next->getSubExpr();
    return raise(list.isGLValue() ? effectOfStore(list) : effectOfStoreThrough(list));
  }
  bool VisitDeclRefExpr(clang::DeclRefExpr* name) {
    // The first use in a thread initialises.
    const auto* variable = llvm::dyn_cast<clang::VarDecl>(name->getDecl());
    const bool isDynamic =
        variable != nullptr && variable->getTLSKind() == clang::VarDecl::TLS_Dynamic;
    return !isDynamic || raise(Effect::unknown);
  }
  bool VisitVarDecl(clang::VarDecl* variable);
  bool VisitBindingDecl(clang::BindingDecl* binding) {
    return binding->getHoldingVar() == nullptr || TraverseDecl(binding->getHoldingVar());
  }

  // --- Calls.

  bool VisitCallExpr(clang::CallExpr* call);
  bool VisitCXXConstructExpr(clang::CXXConstructExpr* construction) {
    return callSpecial(construction->getConstructor());
  }
  bool VisitCXXInheritedCtorInitExpr(clang::CXXInheritedCtorInitExpr* construction) {
    return callSpecial(construction->getConstructor());
  }
  bool VisitCXXBindTemporaryExpr(clang::CXXBindTemporaryExpr* temporary) {
    return callSpecial(temporary->getTemporary()->getDestructor());
  }
  bool VisitCXXDefaultInitExpr(clang::CXXDefaultInitExpr* value) {
    return TraverseStmt(value->getExpr());
  }
  bool VisitArrayInitLoopExpr(clang::ArrayInitLoopExpr* loop) {
    return TraverseStmt(loop->getCommonExpr()->getSourceExpr());
  }

  // --- Ways out, and ways to stay in. A loop on a constant may never end; one on anything else
  // does, as the languages let a compiler assume.

  bool VisitForStmt(clang::ForStmt* loop) { return endless(*loop->getBody(), loop->getCond()); }
  bool VisitWhileStmt(clang::WhileStmt* loop) { return endless(*loop->getBody(), loop->getCond()); }
  bool VisitDoStmt(clang::DoStmt* loop) { return endless(*loop->getBody(), loop->getCond()); }
  bool VisitGotoStmt(clang::GotoStmt* jump) {
    const bool isForward = context.getSourceManager().isBeforeInTranslationUnit(
        jump->getGotoLoc(), jump->getLabel()->getLocation());
    return isForward || raise(Effect::unknown);
  }
  bool VisitStmt(clang::Stmt* statement);

 private:
  /// False when nothing more can be learned.
  bool raise(Effect effect) {
    own = std::max(own, effect);
    return own != Effect::some;
  }

  void scanParts(const clang::FunctionDecl& function);
  bool call(const clang::FunctionDecl& callee);
  bool callSpecial(const clang::CXXMethodDecl* callee) {
    if (callee == nullptr) return raise(Effect::unknown);
    return callee->isTrivial() || call(*callee);
  }
  bool destroy(clang::QualType type);
  Effect effectOfBuiltin(const clang::CallExpr& call, unsigned builtin) const;

  bool endless(const clang::Stmt& body, const clang::Expr* condition);

  static bool isWatched(clang::QualType type) {
    if (type.isNull()) return false;  // (a, b) as it was written, beside what it means
    const clang::RecordDecl* record = type->getAsRecordDecl();
    return type.isVolatileQualified() || type->isAtomicType() ||
           (record != nullptr && record->hasVolatileMember());
  }

  Unevaluated unevaluated;
  clang::ASTContext& context;
};

bool BodyScan::VisitStmt(clang::Stmt* statement) {
  using namespace clang;
  unevaluated.enter(*statement);
  if (llvm::isa<AtomicExpr, CXXNewExpr, CXXDeleteExpr, CXXThrowExpr, CoroutineBodyStmt>(
          statement)) {
    return raise(Effect::some);
  }
  if (const auto* code = llvm::dyn_cast<GCCAsmStmt>(statement)) {
    const bool isVolatile = code->isVolatile() || code->getNumOutputs() == 0;
    return raise(isVolatile ? Effect::some : Effect::unknown);
  }
  // These throw for an object of another class, and for none.
  const auto* cast = llvm::dyn_cast<CXXDynamicCastExpr>(statement);
  const auto* query = llvm::dyn_cast<CXXTypeidExpr>(statement);
  const bool mayThrow = (cast != nullptr && cast->isGLValue()) ||
                        (query != nullptr && query->isPotentiallyEvaluated());
  const bool isOpaque =
      mayThrow ||
      llvm::isa<MSAsmStmt, IndirectGotoStmt, PseudoObjectExpr, OMPExecutableDirective>(statement);
  return !isOpaque || raise(Effect::unknown);
}

void BodyScan::scan(const clang::FunctionDecl& function) {
  if (function.isDependentContext()) {
    own = Effect::unknown;
  } else if (function.isNoReturn()) {
    own = Effect::some;
  } else if (function.doesThisDeclarationHaveABody() ||
             llvm::isa<clang::CXXDestructorDecl>(function)) {
    scanParts(function);  // a defaulted destructor has no body before it is needed
  } else if (!llvm::isa<clang::CXXConstructorDecl>(function) || !function.isTrivial()) {
    own = Effect::unknown;
  }
}

void BodyScan::scanParts(const clang::FunctionDecl& function) {
  for (clang::ParmVarDecl* parameter : function.parameters()) {
    if (const clang::TypeSourceInfo* written = parameter->getTypeSourceInfo()) {
      TraverseTypeLoc(written->getTypeLoc());
    }
    VisitVarDecl(parameter);
  }
  const auto* method = llvm::dyn_cast<clang::CXXMethodDecl>(&function);
  if (const auto* constructor = llvm::dyn_cast<clang::CXXConstructorDecl>(&function)) {
    for (const clang::CXXCtorInitializer* part : constructor->inits()) {
      TraverseStmt(part->getInit());
    }
    // Whoever drops the object drops a call of the destructor with it: a guard is not useless.
    destroy(context.getRecordType(method->getParent()));
  } else if (llvm::isa<clang::CXXDestructorDecl>(function)) {
    const clang::CXXRecordDecl& parent = *method->getParent();
    for (const clang::CXXBaseSpecifier& base : parent.bases()) destroy(base.getType());
    for (const clang::CXXBaseSpecifier& base : parent.vbases()) destroy(base.getType());
    for (const clang::FieldDecl* field : parent.fields()) destroy(field->getType());
  }
  TraverseStmt(function.getBody());
}

bool BodyScan::VisitVarDecl(clang::VarDecl* variable) {
  if (isWatched(variable->getType()) && !variable->hasExternalStorage()) return raise(Effect::some);
  if (const auto* cleanup = variable->getAttr<clang::CleanupAttr>()) {
    if (!call(*cleanup->getFunctionDecl())) return false;
  }
  if (!variable->isStaticLocal())
    return variable->hasGlobalStorage() || destroy(variable->getType());
  const bool isConstant = !context.getLangOpts().CPlusPlus || !variable->hasInit() ||
                          variable->hasConstantInitialization();
  const bool isTrivial = variable->needsDestruction(context) == clang::QualType::DK_none;
  return (isConstant && isTrivial) || raise(Effect::unknown);
}

// --- Calls.

bool BodyScan::VisitCallExpr(clang::CallExpr* expression) {
  const clang::FunctionDecl* callee = expression->getDirectCallee();
  if (callee == nullptr) {
    const bool isNothing =
        llvm::isa<clang::CXXPseudoDestructorExpr>(expression->getCallee()->IgnoreParens());
    return isNothing || raise(Effect::unknown);
  }
  if (const auto* method = llvm::dyn_cast<clang::CXXMethodDecl>(callee)) {
    if (method->isVirtual()) return raise(Effect::unknown);
    if (method->isTrivial() && method->isOverloadedOperator()) {  // assigns memberwise
      const bool isOperator = llvm::isa<clang::CXXOperatorCallExpr>(expression);
      return raise(isOperator ? effectOfStore(*expression->getArg(0)) : Effect::unknown);
    }
  }
  const unsigned builtin = callee->getDefinition() == nullptr ? callee->getBuiltinID() : 0;
  if (builtin != 0 && effectOfBuiltin(*expression, builtin) != Effect::unknown) {
    return raise(effectOfBuiltin(*expression, builtin));
  }
  return call(*callee);
}

bool BodyScan::call(const clang::FunctionDecl& callee) {
  if (callee.isNoReturn()) return raise(Effect::some);
  if (const clang::FunctionDecl* definition = callee.getDefinition()) {
    callees.push_back(definition);
    return !definition->isWeak() || raise(Effect::unknown);  // the linker may take another
  }
  const bool isPure = callee.hasAttr<clang::PureAttr>() || callee.hasAttr<clang::ConstAttr>();
  return isPure || raise(Effect::unknown);
}

bool BodyScan::destroy(clang::QualType type) {
  const auto* record = type->getBaseElementTypeUnsafe()->getAsCXXRecordDecl();
  if (record == nullptr || !record->hasDefinition() || record->hasTrivialDestructor()) return true;
  return callSpecial(record->getDestructor());
}

/// Of those that store through their first argument and do nothing else. Unknown for all others.
Effect BodyScan::effectOfBuiltin(const clang::CallExpr& call, unsigned builtin) const {
  if (context.BuiltinInfo.isUnevaluated(builtin)) return Effect::none;
  switch (builtin) {
    case clang::Builtin::BImemcpy:
    case clang::Builtin::BImemmove:
    case clang::Builtin::BImemset:
    case clang::Builtin::BI__builtin_memcpy:
    case clang::Builtin::BI__builtin_memmove:
    case clang::Builtin::BI__builtin_memset:
    case clang::Builtin::BI__builtin_va_start:
    case clang::Builtin::BI__builtin_va_copy:
    case clang::Builtin::BI__builtin_va_end:
      return call.getNumArgs() > 0 ? effectOfStoreThrough(*call.getArg(0)) : Effect::unknown;
    default:
      return Effect::unknown;
  }
}

// --- Loops.

/// Whether a `return`, or a `break` of the loop itself, is in it.
bool hasExit(const clang::Stmt* statement, bool breakLeaves) {
  if (statement == nullptr || llvm::isa<clang::Expr>(statement)) return false;
  if (llvm::isa<clang::ReturnStmt>(statement)) return true;
  if (llvm::isa<clang::BreakStmt>(statement)) return breakLeaves;
  breakLeaves &= !llvm::isa<clang::ForStmt, clang::WhileStmt, clang::DoStmt, clang::CXXForRangeStmt,
                            clang::SwitchStmt>(statement);
  return llvm::any_of(statement->children(),
                      [&](const clang::Stmt* part) { return hasExit(part, breakLeaves); });
}

bool BodyScan::endless(const clang::Stmt& body, const clang::Expr* condition) {
  bool isTrue = condition == nullptr;
  const bool isKnown = isTrue || condition->EvaluateAsBooleanCondition(isTrue, context);
  return !isKnown || !isTrue || hasExit(&body, /*breakLeaves=*/true) || raise(Effect::unknown);
}

}  // namespace

std::size_t EffectAnalysis::indexOf(const clang::FunctionDecl& definition) {
  const auto [known, isNew] = indexes.try_emplace(&definition, nodes.size());
  if (isNew) nodes.push_back({&definition});
  return known->second;
}

void EffectAnalysis::run() {
  for (std::size_t i = 0; i < nodes.size(); ++i) {  // grows by callees
    BodyScan body(context);
    body.scan(*nodes[i].function);
    std::vector<std::size_t> callees;
    for (const clang::FunctionDecl* callee : body.callees) callees.push_back(indexOf(*callee));
    nodes[i].effect = body.own;
    nodes[i].callees = std::move(callees);
  }
  for (bool hasChanged = true; hasChanged;) {
    hasChanged = false;
    // Callees tend to come after their callers.
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
      for (const std::size_t callee : node->callees) {
        if (nodes[callee].effect <= node->effect) continue;
        node->effect = nodes[callee].effect;
        hasChanged = true;
      }
    }
  }
}

dm::EffectKind EffectAnalysis::of(const clang::FunctionDecl& definition) const {
  // Who calls it may get an overrider, or what another unit has for a weak one.
  const auto* method = llvm::dyn_cast<clang::CXXMethodDecl>(&definition);
  const bool isReplaceable = definition.isWeak() || (method != nullptr && method->isVirtual());
  // Clang writes the body of a defaulted one where it is used: units would disagree.
  const bool isSettled =
      !definition.isDefaulted() || llvm::isa<clang::CXXDestructorDecl>(definition) ||
      (llvm::isa<clang::CXXConstructorDecl>(definition) && definition.isTrivial());
  if (!isSettled) return dm::EffectKind::Unknown;
  switch (nodes[indexes.lookup(&definition)].effect) {
    case Effect::none:
      return isReplaceable ? dm::EffectKind::Unknown : dm::EffectKind::NoEffect;
    case Effect::some:
      return kinds::kHasEffects;
    case Effect::unknown:
      break;
  }
  return dm::EffectKind::Unknown;
}

}  // namespace fe_db_tools
