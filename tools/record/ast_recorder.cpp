#include "ast_recorder.h"

#include <vector>

#include "clang/AST/ASTContext.h"
#include "clang/AST/RecursiveASTVisitor.h"
#include "clang/Basic/Version.h"
#include "effect_analysis.h"
#include "entity_table.h"
#include "file_table.h"
#include "implicit_calls.h"
#include "llvm/ADT/DenseSet.h"
#include "type_table.h"
#include "unevaluated.h"
#include "value_use.h"

namespace fe_db_tools {

namespace {

const clang::FieldDecl* fieldOf(const clang::DesignatedInitExpr::Designator& designator) {
#if CLANG_VERSION_MAJOR >= 17
  return designator.getFieldDecl();
#else
  return designator.getField();
#endif
}

/// Where a reader sees the call: at the callee's name or at the operator.
clang::SourceLocation positionOf(const clang::CallExpr& call) {
  clang::SourceLocation at;
  const auto* operation = llvm::dyn_cast<clang::CXXOperatorCallExpr>(&call);
  const bool hasBrackets =
      operation != nullptr && (operation->getOperator() == clang::OO_Call ||
                               operation->getOperator() == clang::OO_Subscript);
  if (operation != nullptr && !hasBrackets) {
    at = operation->getOperatorLoc();
  } else {
    // The name of an operator with brackets is where they open.
    const clang::Expr* callee = call.getCallee()->IgnoreParenImpCasts();
    if (const auto* name = llvm::dyn_cast<clang::DeclRefExpr>(callee)) at = name->getLocation();
    if (const auto* member = llvm::dyn_cast<clang::MemberExpr>(callee)) at = member->getMemberLoc();
  }
  return at.isValid() ? at : call.getExprLoc();
}

/// Templates are visited as they are written, and not what they are instantiated to.
class AstRecorder : public clang::RecursiveASTVisitor<AstRecorder> {
  using Base = clang::RecursiveASTVisitor<AstRecorder>;

 public:
  AstRecorder(FactSink& sink, FileTable& files, clang::ASTContext& context, SystemFacts system)
      : sink(sink),
        files(files),
        types(sink, files, context),
        entities(sink, files, types, context),
        unevaluated(context),
        implicitCalls(sink, files, entities, context),
        system(system),
        context(context) {}

  /// After the whole unit has been visited.
  void recordImplicitCalls() { implicitCalls.record(); }
  /// Of the definitions recorded so far.
  void recordEffects();

  // --- The function that a call stands in.

  bool TraverseDecl(clang::Decl* declaration);
  bool TraverseParmVarDecl(clang::ParmVarDecl* parameter);
  bool TraverseLambdaExpr(clang::LambdaExpr* lambda, DataRecursionQueue* queue = nullptr);
  bool TraverseAttr(clang::Attr* attribute);
  bool dataTraverseStmtPre(clang::Stmt* statement);
  bool dataTraverseStmtPost(clang::Stmt* statement);
  bool VisitDecltypeTypeLoc(clang::DecltypeTypeLoc at);
  bool VisitTypeOfExprTypeLoc(clang::TypeOfExprTypeLoc at);

  // --- Declarations.

  bool VisitTagDecl(clang::TagDecl* declaration);
  bool VisitClassTemplateSpecializationDecl(clang::ClassTemplateSpecializationDecl* declaration);
  bool VisitTypedefNameDecl(clang::TypedefNameDecl* declaration);
  bool VisitVarDecl(clang::VarDecl* declaration);
  bool VisitBindingDecl(clang::BindingDecl* declaration);
  bool VisitFunctionDecl(clang::FunctionDecl* declaration);
  bool VisitFieldDecl(clang::FieldDecl* declaration);
  bool VisitEnumConstantDecl(clang::EnumConstantDecl* declaration);
  bool VisitLabelStmt(clang::LabelStmt* label);

  // --- References.

  bool VisitDeclRefExpr(clang::DeclRefExpr* reference);
  bool VisitMemberExpr(clang::MemberExpr* reference);
  bool VisitDesignatedInitExpr(clang::DesignatedInitExpr* initializer);
  bool VisitOffsetOfExpr(clang::OffsetOfExpr* expression);
  bool TraverseConstructorInitializer(clang::CXXCtorInitializer* initializer);

  bool VisitElaboratedTypeLoc(clang::ElaboratedTypeLoc at);
  bool VisitTagTypeLoc(clang::TagTypeLoc at);
  bool VisitTypedefTypeLoc(clang::TypedefTypeLoc at) { return referToType(at); }
  bool VisitUsingTypeLoc(clang::UsingTypeLoc at) { return referToType(at); }
  bool VisitBuiltinTypeLoc(clang::BuiltinTypeLoc at) { return referToType(at); }
  bool VisitInjectedClassNameTypeLoc(clang::InjectedClassNameTypeLoc at) { return referToType(at); }
  bool VisitTemplateSpecializationTypeLoc(clang::TemplateSpecializationTypeLoc at) {
    return referToType(at);
  }
  bool VisitDeducedTemplateSpecializationTypeLoc(clang::DeducedTemplateSpecializationTypeLoc at) {
    return referToType(at);
  }

  // --- Calls.

  bool VisitStmt(clang::Stmt* statement);
  bool VisitCallExpr(clang::CallExpr* call);
  bool VisitCXXConstructExpr(clang::CXXConstructExpr* construction);
  bool VisitCXXRewrittenBinaryOperator(clang::CXXRewrittenBinaryOperator* operation);

 private:
  bool referToType(clang::TypeLoc at);
  void referTo(const clang::ValueDecl& declaration);
  void recordCall(const clang::FunctionDecl& callee, clang::SourceLocation at, bool isValueUsed);
  void recordEnumConstant(const clang::EnumConstantDecl& declaration);

  FactSink& sink;
  FileTable& files;
  TypeTable types;
  EntityTable entities;
  ValueUse values;
  Unevaluated unevaluated;
  ImplicitCalls implicitCalls;
  SystemFacts system;
  clang::ASTContext& context;
  /// Null outside of functions and where nothing is evaluated.
  std::vector<const clang::FunctionDecl*> callers{nullptr};
  const void* tagged = nullptr;  ///< the name behind a `struct`, `union`, `class` or `enum`
  llvm::DenseSet<const clang::EnumConstantDecl*> seenSystemConstants;
  llvm::DenseSet<clang::SourceLocation> seenTypeNames;  ///< one name serves `T a, b;`
};

bool AstRecorder::TraverseDecl(clang::Decl* declaration) {
  if (declaration == nullptr) return true;
  if (system == SystemFacts::referenced && files.isInSystemHeader(declaration->getLocation())) {
    return true;
  }
  const auto* function = llvm::dyn_cast<clang::FunctionDecl>(declaration);
  const bool isScope = function != nullptr || llvm::isa<clang::TagDecl>(declaration);
  if (isScope) callers.push_back(function);
  const bool goOn = Base::TraverseDecl(declaration);
  if (isScope) callers.pop_back();
  return goOn;
}

/// A default argument is evaluated by whoever calls.
bool AstRecorder::TraverseParmVarDecl(clang::ParmVarDecl* parameter) {
  callers.push_back(nullptr);
  const bool goOn = Base::TraverseParmVarDecl(parameter);
  callers.pop_back();
  return goOn;
}

/// As the base does it, but for the body, whose calls are those of the lambda's call operator: it
/// must not be put off until the operator is no longer the caller.
bool AstRecorder::TraverseLambdaExpr(clang::LambdaExpr* lambda, DataRecursionQueue*) {
  WalkUpFromLambdaExpr(lambda);
  for (unsigned i = 0; i < lambda->capture_size(); ++i) {
    const clang::LambdaCapture* capture = lambda->capture_begin() + i;
    if (!capture->isExplicit()) continue;
    if (!TraverseLambdaCapture(lambda, capture, lambda->capture_init_begin()[i])) return false;
  }
  const clang::CXXMethodDecl* body = lambda->getCallOperator();
  entities.function(*body);
  callers.push_back(body);
  bool goOn = true;
  if (const clang::TypeSourceInfo* written = body->getTypeSourceInfo()) {
    const auto type = written->getTypeLoc().getAsAdjusted<clang::FunctionProtoTypeLoc>();
    if (type && lambda->hasExplicitParameters()) {
      for (clang::ParmVarDecl* parameter : type.getParams()) goOn &= TraverseDecl(parameter);
    }
    if (type && lambda->hasExplicitResultType()) goOn &= TraverseTypeLoc(type.getReturnLoc());
  }
  goOn = goOn && TraverseStmt(lambda->getBody());
  callers.pop_back();
  return goOn;
}

bool AstRecorder::TraverseAttr(clang::Attr* attribute) {
  callers.push_back(nullptr);
  const bool goOn = Base::TraverseAttr(attribute);
  callers.pop_back();
  return goOn;
}

bool AstRecorder::dataTraverseStmtPre(clang::Stmt* statement) {
  if (unevaluated.contains(statement)) callers.push_back(nullptr);
  return true;
}

bool AstRecorder::dataTraverseStmtPost(clang::Stmt* statement) {
  if (unevaluated.contains(statement)) callers.pop_back();
  return true;
}

bool AstRecorder::VisitDecltypeTypeLoc(clang::DecltypeTypeLoc at) {
  unevaluated.add(at.getUnderlyingExpr());
  return true;
}

bool AstRecorder::VisitTypeOfExprTypeLoc(clang::TypeOfExprTypeLoc at) {
  if (!at.getType()->isVariablyModifiedType()) unevaluated.add(at.getUnderlyingExpr());
  return true;
}

// --- Declarations.

bool AstRecorder::VisitTagDecl(clang::TagDecl* declaration) {
  if (!declaration->isImplicit()) types.type(*declaration);
  return true;
}

/// The template's name in it declares; older Clangs visit it as a reference.
bool AstRecorder::VisitClassTemplateSpecializationDecl(
    clang::ClassTemplateSpecializationDecl* declaration) {
  seenTypeNames.insert(declaration->getLocation());
  return true;
}

bool AstRecorder::VisitTypedefNameDecl(clang::TypedefNameDecl* declaration) {
  if (!declaration->isImplicit()) types.type(*declaration);
  return true;
}

bool AstRecorder::VisitVarDecl(clang::VarDecl* declaration) {
  if (declaration->isImplicit()) return true;
  if (llvm::isa<clang::ParmVarDecl>(declaration)) {
    // Parameters of a mere declaration are documentation.
    const auto* function = llvm::dyn_cast<clang::FunctionDecl>(declaration->getDeclContext());
    if (function == nullptr || !function->doesThisDeclarationHaveABody()) return true;
  }
  entities.variable(*declaration);
  implicitCalls.enter(*declaration, callers.back());
  return true;
}

bool AstRecorder::VisitBindingDecl(clang::BindingDecl* declaration) {
  entities.variable(*declaration);
  return true;
}

bool AstRecorder::VisitFunctionDecl(clang::FunctionDecl* declaration) {
  if (declaration->isImplicit()) return true;
  entities.function(*declaration);
  implicitCalls.enter(*declaration);
  return true;
}

bool AstRecorder::VisitFieldDecl(clang::FieldDecl* declaration) {
  if (!declaration->isImplicit()) entities.field(*declaration);
  return true;
}

bool AstRecorder::VisitEnumConstantDecl(clang::EnumConstantDecl* declaration) {
  recordEnumConstant(*declaration);
  return true;
}

void AstRecorder::recordEnumConstant(const clang::EnumConstantDecl& declaration) {
  const llvm::StringRef name = declaration.getName();
  sink.enumConstant({name.data(), name.size()}, files.locate(declaration.getLocation()));
}

bool AstRecorder::VisitLabelStmt(clang::LabelStmt* label) {
  const llvm::StringRef name = label->getDecl()->getName();
  sink.label({name.data(), name.size()}, files.locate(label->getIdentLoc()));
  return true;
}

// --- References.

void AstRecorder::referTo(const clang::ValueDecl& declaration) {
  if (const auto* function = llvm::dyn_cast<clang::FunctionDecl>(&declaration)) {
    FactSink::refer(entities.function(*function));
  } else if (const auto* field = llvm::dyn_cast<clang::FieldDecl>(&declaration)) {
    FactSink::refer(entities.field(*field));
  } else if (llvm::isa<clang::VarDecl, clang::BindingDecl>(declaration)) {
    FactSink::refer(entities.variable(declaration));
  } else if (const auto* constant = llvm::dyn_cast<clang::EnumConstantDecl>(&declaration)) {
    // Not counted; but one of a system header may not have been seen.
    if (system == SystemFacts::referenced && files.isInSystemHeader(constant->getLocation()) &&
        seenSystemConstants.insert(constant).second) {
      recordEnumConstant(*constant);
    }
  }
}

bool AstRecorder::VisitDeclRefExpr(clang::DeclRefExpr* reference) {
  referTo(*reference->getDecl());
  return true;
}

bool AstRecorder::VisitMemberExpr(clang::MemberExpr* reference) {
  referTo(*reference->getMemberDecl());
  return true;
}

bool AstRecorder::VisitDesignatedInitExpr(clang::DesignatedInitExpr* initializer) {
  for (const clang::DesignatedInitExpr::Designator& designator : initializer->designators()) {
    if (!designator.isFieldDesignator()) continue;
    if (const clang::FieldDecl* field = fieldOf(designator)) referTo(*field);
  }
  return true;
}

bool AstRecorder::VisitOffsetOfExpr(clang::OffsetOfExpr* expression) {
  for (unsigned i = 0; i < expression->getNumComponents(); ++i) {
    const clang::OffsetOfNode& component = expression->getComponent(i);
    if (component.getKind() == clang::OffsetOfNode::Field) referTo(*component.getField());
  }
  return true;
}

bool AstRecorder::TraverseConstructorInitializer(clang::CXXCtorInitializer* initializer) {
  if (initializer->isWritten() && initializer->isAnyMemberInitializer()) {
    referTo(*initializer->getAnyMember());
  }
  return Base::TraverseConstructorInitializer(initializer);
}

bool AstRecorder::VisitElaboratedTypeLoc(clang::ElaboratedTypeLoc at) {
  const auto keyword = at.getTypePtr()->getKeyword();
  const bool isTag = clang::TypeWithKeyword::KeywordIsTagTypeKind(keyword);
  tagged = isTag ? at.getNamedTypeLoc().getOpaqueData() : nullptr;
  return true;
}

bool AstRecorder::VisitTagTypeLoc(clang::TagTypeLoc at) {
  return at.isDefinition() || referToType(at);
}

bool AstRecorder::referToType(clang::TypeLoc at) {
  if (!seenTypeNames.insert(at.getBeginLoc()).second) return true;
  dm::Type* type = types.named(at.getType());
  if (at.getOpaqueData() == tagged) {
    FactSink::referByTag(type);
  } else {
    FactSink::refer(type);
  }
  return true;
}

// --- Calls.

bool AstRecorder::VisitStmt(clang::Stmt* statement) {
  values.enter(*statement);
  unevaluated.enter(*statement);
  if (context.getLangOpts().CPlusPlus) implicitCalls.enter(*statement, callers.back());
  return true;
}

void AstRecorder::recordCall(const clang::FunctionDecl& callee, clang::SourceLocation at,
                             bool isValueUsed) {
  if (callers.back() == nullptr) return;
  dm::Function* from = entities.function(*callers.back());
  dm::Function* to = entities.function(callee);
  if (from != nullptr && to != nullptr) sink.call(from, to, files.locate(at), isValueUsed);
}

bool AstRecorder::VisitCallExpr(clang::CallExpr* call) {
  if (const clang::FunctionDecl* callee = call->getDirectCallee()) {
    const bool isValueUsed = !callee->getReturnType()->isVoidType() && !values.isDropped(*call);
    recordCall(*callee, positionOf(*call), isValueUsed);
  }
  return true;
}

bool AstRecorder::VisitCXXConstructExpr(clang::CXXConstructExpr* construction) {
  const clang::CXXConstructorDecl* callee = construction->getConstructor();
  if (!callee->isUserProvided() || construction->isElidable()) return true;
  FactSink::refer(entities.function(*callee));
  recordCall(*callee, construction->getLocation(), !values.isDropped(*construction));
  return true;
}

/// `a != b` made of an operator==: the call is not written, so the base does not visit it.
bool AstRecorder::VisitCXXRewrittenBinaryOperator(clang::CXXRewrittenBinaryOperator* operation) {
  const clang::Expr* inner = operation->getDecomposedForm().InnerBinOp;
  const auto* call = llvm::dyn_cast<clang::CallExpr>(inner->IgnoreImplicit());
  if (call == nullptr || call->getDirectCallee() == nullptr) return true;
  FactSink::refer(entities.function(*call->getDirectCallee()));
  recordCall(*call->getDirectCallee(), operation->getOperatorLoc(), !values.isDropped(*operation));
  return true;
}

void AstRecorder::recordEffects() {
  EffectAnalysis effects(context);
  const auto hasEffect = [](const EntityTable::Functions::value_type& entry) {
    return entry.second != nullptr && entry.second->getIsDefined() &&
           entry.first->isThisDeclarationADefinition();
  };
  for (const auto& entry : entities.allFunctions()) {
    if (hasEffect(entry)) effects.add(*entry.first);
  }
  effects.run();
  llvm::DenseSet<const dm::Function*> seen;
  for (const auto& entry : entities.allFunctions()) {
    if (!hasEffect(entry)) continue;
    dm::EffectKind effect = effects.of(*entry.first);
    // Two that a macro makes at one position are one element.
    const bool isFirst = seen.insert(entry.second).second;
    if (!isFirst && entry.second->getEffect() != effect) effect = dm::EffectKind::Unknown;
    entry.second->setEffect(effect);
  }
}

}  // namespace

void recordAst(FactSink& sink, FileTable& files, clang::ASTContext& context, SystemFacts system) {
  AstRecorder recorder(sink, files, context, system);
  recorder.TraverseDecl(context.getTranslationUnitDecl());
  recorder.recordImplicitCalls();
  // Of a body with errors parts are missing.
  if (!context.getDiagnostics().hasErrorOccurred()) recorder.recordEffects();
}

}  // namespace fe_db_tools
