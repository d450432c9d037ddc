#include "ast_recorder.h"

#include <vector>

#include "clang/AST/ASTContext.h"
#include "effect_analysis.h"
#include "entity_table.h"
#include "file_table.h"
#include "implicit_calls.h"
#include "instantiation_walk.h"
#include "properties.h"
#include "reference_visitor.h"
#include "references.h"
#include "type_table.h"
#include "unevaluated.h"
#include "value_use.h"

namespace fe_db_tools {

namespace {

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
class AstRecorder : public ReferenceVisitor<AstRecorder> {
  using Base = ReferenceVisitor<AstRecorder>;

 public:
  AstRecorder(FactSink& sink, FileTable& files, TypeTable& types, EntityTable& entities,
              References& references, clang::ASTContext& context, SystemFacts system)
      : Base(references, context),
        sink(sink),
        files(files),
        types(types),
        entities(entities),
        implicitCalls(sink, files, entities, references, context),
        system(system),
        context(context) {}

  /// What the unit contains; then what is open until it has been seen.
  void recordUnit();

  /// Of the definitions recorded so far.
  void recordEffects();

  // --- The function that a call stands in.

  bool TraverseDecl(clang::Decl* declaration);
  bool TraverseParmVarDecl(clang::ParmVarDecl* parameter);
  bool TraverseLambdaExpr(clang::LambdaExpr* lambda, DataRecursionQueue* queue = nullptr);
  bool TraverseAttr(clang::Attr* attribute);
  bool dataTraverseStmtPre(clang::Stmt* statement);
  bool dataTraverseStmtPost(clang::Stmt* statement);

  // --- Declarations.

  bool VisitTagDecl(clang::TagDecl* declaration);
  bool VisitTypedefNameDecl(clang::TypedefNameDecl* declaration);
  bool VisitVarDecl(clang::VarDecl* declaration);
  bool VisitBindingDecl(clang::BindingDecl* declaration);
  bool VisitFunctionDecl(clang::FunctionDecl* declaration);
  bool VisitFieldDecl(clang::FieldDecl* declaration);
  bool VisitEnumConstantDecl(clang::EnumConstantDecl* declaration);
  bool VisitLabelStmt(clang::LabelStmt* label);

  // --- Calls.

  bool VisitStmt(clang::Stmt* statement);
  bool VisitCallExpr(clang::CallExpr* call);
  bool VisitCXXConstructExpr(clang::CXXConstructExpr* construction);
  bool VisitCXXRewrittenBinaryOperator(clang::CXXRewrittenBinaryOperator* operation);

 private:
  void recordCall(const clang::FunctionDecl& callee, clang::SourceLocation at, bool isValueUsed);

  FactSink& sink;
  FileTable& files;
  TypeTable& types;
  EntityTable& entities;
  ValueUse values;
  ImplicitCalls implicitCalls;
  SystemFacts system;
  clang::ASTContext& context;
  /// Null outside of functions and where nothing is evaluated.
  std::vector<const clang::FunctionDecl*> callers{nullptr};
  std::vector<clang::FunctionTemplateDecl*> genericLambdas;  ///< their call operators
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
  if (auto* generic = body->getDescribedFunctionTemplate()) genericLambdas.push_back(generic);
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
  return Base::dataTraverseStmtPre(statement);
}

bool AstRecorder::dataTraverseStmtPost(clang::Stmt* statement) {
  if (unevaluated.contains(statement)) callers.pop_back();
  return Base::dataTraverseStmtPost(statement);
}

// --- Declarations.

bool AstRecorder::VisitTagDecl(clang::TagDecl* declaration) {
  if (!declaration->isImplicit()) types.type(*declaration);
  return true;
}

bool AstRecorder::VisitTypedefNameDecl(clang::TypedefNameDecl* declaration) {
  if (!declaration->isImplicit()) types.type(*declaration);
  return true;
}

bool AstRecorder::VisitVarDecl(clang::VarDecl* declaration) {
  Base::VisitVarDecl(declaration);
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
  return Base::VisitBindingDecl(declaration);
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
  entities.enumConstant(*declaration);
  return true;
}

bool AstRecorder::VisitLabelStmt(clang::LabelStmt* label) {
  entities.label(*label->getDecl());
  return true;
}

// --- Calls.

bool AstRecorder::VisitStmt(clang::Stmt* statement) {
  values.enter(*statement);
  Base::VisitStmt(statement);
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
  Base::VisitCXXConstructExpr(construction);
  const clang::CXXConstructorDecl* callee = construction->getConstructor();
  if (!callee->isUserProvided() || construction->isElidable()) return true;
  recordCall(*callee, construction->getLocation(), !values.isDropped(*construction));
  return true;
}

bool AstRecorder::VisitCXXRewrittenBinaryOperator(clang::CXXRewrittenBinaryOperator* operation) {
  Base::VisitCXXRewrittenBinaryOperator(operation);
  const clang::Expr* inner = operation->getDecomposedForm().InnerBinOp;
  const auto* call = llvm::dyn_cast<clang::CallExpr>(inner->IgnoreImplicit());
  if (call == nullptr || call->getDirectCallee() == nullptr) return true;
  recordCall(*call->getDirectCallee(), operation->getOperatorLoc(), !values.isDropped(*operation));
  return true;
}

void AstRecorder::recordUnit() {
  TraverseDecl(context.getTranslationUnitDecl());
  if (context.getLangOpts().CPlusPlus) {
    walkInstantiations(references, files, context, system, genericLambdas);
  }
  implicitCalls.record();
  references.resolveLinkerNames();
  references.record();
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

void recordAst(FactSink& sink, FileTable& files, Properties& properties, clang::ASTContext& context,
               SystemFacts system, ReferenceFacts referenceFacts) {
  TypeTable types(sink, files, properties, context);
  EntityTable entities(sink, files, types, properties, context);
  References references(sink, files, types, entities, context, system, referenceFacts);
  AstRecorder recorder(sink, files, types, entities, references, context, system);
  recorder.recordUnit();
  properties.record(types, entities);
  // Of a body with errors parts are missing.
  if (!context.getDiagnostics().hasErrorOccurred()) recorder.recordEffects();
}

}  // namespace fe_db_tools
