#include "instantiation_walk.h"

#include "clang/AST/ASTContext.h"
#include "dependent_names.h"
#include "file_table.h"
#include "llvm/ADT/DenseMap.h"
#include "reference_visitor.h"

namespace fe_db_tools {

namespace {

class InstantiationWalk : public ReferenceVisitor<InstantiationWalk> {
  using Base = ReferenceVisitor<InstantiationWalk>;

 public:
  InstantiationWalk(References& references, const FileTable& files, clang::ASTContext& context,
                    SystemFacts system)
      : Base(references, context), files(files), context(context), system(system) {}

  /// Of the templates among the declarations, at any depth.
  void walkTemplatesIn(const clang::DeclContext& context);
  template <class Template>
  void walkInstantiationsOf(Template& declaration);

  bool shouldVisitTemplateInstantiations() const { return true; }
  bool VisitLambdaExpr(clang::LambdaExpr* lambda);
  bool VisitVarDecl(clang::VarDecl* declaration);

 private:
  void enter(clang::ClassTemplateSpecializationDecl& instantiated);
  void enter(clang::VarTemplateSpecializationDecl& instantiated);
  void enter(clang::FunctionDecl& instantiated);

  /// Whether an instantiation with these arguments can name anything of interest.
  bool isOfInterest(const clang::Decl& instantiated,
                    llvm::ArrayRef<clang::TemplateArgument> arguments);
  bool concernsUser(llvm::ArrayRef<clang::TemplateArgument> arguments);
  bool concernsUser(clang::QualType type);
  bool isMadeOfUserTypes(clang::QualType type);

  const FileTable& files;
  clang::ASTContext& context;
  SystemFacts system;
  llvm::DenseSet<const clang::Decl*> known;            ///< templates, by their first declaration
  llvm::DenseMap<const clang::Type*, bool> userTypes;  ///< whether a canonical type is one
};

// --- Finding them.

void InstantiationWalk::walkTemplatesIn(const clang::DeclContext& context) {
  for (clang::Decl* declaration : context.decls()) {
    if (const auto* befriended = llvm::dyn_cast<clang::FriendDecl>(declaration)) {
      declaration = befriended->getFriendDecl();
      if (declaration == nullptr) continue;
    }
    if (auto* ofClass = llvm::dyn_cast<clang::ClassTemplateDecl>(declaration)) {
      walkInstantiationsOf(*ofClass);
    } else if (auto* ofFunction = llvm::dyn_cast<clang::FunctionTemplateDecl>(declaration)) {
      walkInstantiationsOf(*ofFunction);
    } else if (auto* ofVariable = llvm::dyn_cast<clang::VarTemplateDecl>(declaration)) {
      walkInstantiationsOf(*ofVariable);
    } else if (const auto* record = llvm::dyn_cast<clang::CXXRecordDecl>(declaration)) {
      const auto kind = record->getTemplateSpecializationKind();
      const bool isWritten =
          kind == clang::TSK_Undeclared || kind == clang::TSK_ExplicitSpecialization;
      if (isWritten && !record->isDependentContext()) walkTemplatesIn(*record);
    } else if (llvm::isa<clang::NamespaceDecl, clang::LinkageSpecDecl, clang::ExportDecl>(
                   declaration)) {
      walkTemplatesIn(*llvm::cast<clang::DeclContext>(declaration));
    }
  }
}

template <class Template>
void InstantiationWalk::walkInstantiationsOf(Template& declaration) {
  if (!known.insert(declaration.getCanonicalDecl()).second) return;
  for (auto* instantiated : declaration.specializations()) enter(*instantiated);
}

void InstantiationWalk::enter(clang::ClassTemplateSpecializationDecl& instantiated) {
  if (instantiated.isExplicitSpecialization()) return;  // it is written
  clang::CXXRecordDecl* definition = instantiated.getDefinition();
  if (definition == nullptr) return;
  if (!isOfInterest(instantiated, instantiated.getTemplateArgs().asArray())) {
    walkTemplatesIn(*definition);
    return;
  }
  const References::Instantiation instantiation(references, instantiated.getLocation());
  referFromHead(references, instantiated);
  TraverseDecl(definition);
}

void InstantiationWalk::enter(clang::VarTemplateSpecializationDecl& instantiated) {
  if (instantiated.isExplicitSpecialization()) return;
  if (!isOfInterest(instantiated, instantiated.getTemplateArgs().asArray())) return;
  const References::Instantiation instantiation(references, instantiated.getLocation());
  TraverseDecl(&instantiated);
}

void InstantiationWalk::enter(clang::FunctionDecl& instantiated) {
  if (instantiated.getTemplateSpecializationKind() == clang::TSK_ExplicitSpecialization) return;
  const clang::TemplateArgumentList* arguments = instantiated.getTemplateSpecializationArgs();
  if (!isOfInterest(instantiated, arguments->asArray())) return;
  const References::Instantiation instantiation(references, instantiated.getLocation());
  referFromHead(references, instantiated);
  for (clang::FunctionDecl* declaration : instantiated.redecls()) TraverseDecl(declaration);
}

// --- Whether one is worth walking.

bool InstantiationWalk::isOfInterest(const clang::Decl& instantiated,
                                     llvm::ArrayRef<clang::TemplateArgument> arguments) {
  return system == SystemFacts::all || !files.isInSystemHeader(instantiated.getLocation()) ||
         concernsUser(arguments);
}

bool InstantiationWalk::concernsUser(llvm::ArrayRef<clang::TemplateArgument> arguments) {
  return llvm::any_of(arguments, [&](const clang::TemplateArgument& argument) {
    switch (argument.getKind()) {
      case clang::TemplateArgument::Type:
        return concernsUser(argument.getAsType());
      case clang::TemplateArgument::Pack:
        return concernsUser(argument.getPackAsArray());
      case clang::TemplateArgument::Template: {
        const clang::TemplateDecl* given = argument.getAsTemplate().getAsTemplateDecl();
        return given != nullptr && !files.isInSystemHeader(given->getLocation());
      }
      default:
        return false;
    }
  });
}

bool InstantiationWalk::concernsUser(clang::QualType type) {
  const clang::Type* canonical = type.getCanonicalType().getTypePtr();
  const auto [known, isNew] = userTypes.try_emplace(canonical, false);
  if (!isNew) return known->second;
  const bool result = isMadeOfUserTypes(clang::QualType(canonical, 0));
  return userTypes[canonical] = result;
}

bool InstantiationWalk::isMadeOfUserTypes(clang::QualType type) {
  const clang::Type* inner = type->getPointeeOrArrayElementType();
  if (inner != type.getTypePtr()) return concernsUser(clang::QualType(inner, 0));
  if (type->isReferenceType()) return concernsUser(type.getNonReferenceType());
  if (const auto* member = type->getAs<clang::MemberPointerType>()) {
    return concernsUser(member->getPointeeType()) ||
           concernsUser(clang::QualType(member->getClass(), 0));
  }
  if (const auto* function = type->getAs<clang::FunctionProtoType>()) {
    return concernsUser(function->getReturnType()) ||
           llvm::any_of(function->param_types(),
                        [&](clang::QualType parameter) { return concernsUser(parameter); });
  }
  const clang::TagDecl* tag = type->getAsTagDecl();
  if (tag == nullptr) return false;
  if (!files.isInSystemHeader(tag->getLocation())) return true;
  const auto* special = llvm::dyn_cast<clang::ClassTemplateSpecializationDecl>(tag);
  if (special != nullptr && concernsUser(special->getTemplateArgs().asArray())) return true;
  const auto* around = llvm::dyn_cast<clang::CXXRecordDecl>(tag->getDeclContext());
  return around != nullptr && concernsUser(context.getRecordType(around));
}

// --- What the walk through one adds.

bool InstantiationWalk::VisitLambdaExpr(clang::LambdaExpr* lambda) {
  clang::FunctionTemplateDecl* generic = lambda->getCallOperator()->getDescribedFunctionTemplate();
  if (generic != nullptr) walkInstantiationsOf(*generic);
  return true;
}

/// The definition of a static member is apart from the class, and nowhere else.
bool InstantiationWalk::VisitVarDecl(clang::VarDecl* declaration) {
  Base::VisitVarDecl(declaration);
  if (!declaration->isStaticDataMember()) return true;
  clang::VarDecl* definition = declaration->getDefinition();
  if (definition == nullptr || definition == declaration) return true;
  return TraverseStmt(definition->getInit());
}

}  // namespace

void walkInstantiations(References& references, const FileTable& files, clang::ASTContext& context,
                        SystemFacts system,
                        llvm::ArrayRef<clang::FunctionTemplateDecl*> genericLambdas) {
  InstantiationWalk walk(references, files, context, system);
  walk.walkTemplatesIn(*context.getTranslationUnitDecl());
  for (clang::FunctionTemplateDecl* lambda : genericLambdas) walk.walkInstantiationsOf(*lambda);
}

}  // namespace fe_db_tools
