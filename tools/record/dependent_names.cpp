#include "dependent_names.h"

#include <vector>

#include "clang/AST/ASTConcept.h"
#include "clang/AST/DeclTemplate.h"
#include "clang/AST/ExprConcepts.h"
#include "clang/AST/RecursiveASTVisitor.h"
#include "references.h"

namespace fe_db_tools {

namespace {

using Arguments = llvm::ArrayRef<clang::TemplateArgument>;

/// Null if there is none, or more than one.
const clang::NamedDecl* memberOf(clang::QualType type, clang::DeclarationName name) {
  const clang::CXXRecordDecl* record = type.isNull() ? nullptr : type->getAsCXXRecordDecl();
  if (record == nullptr || !record->hasDefinition()) return nullptr;
  record = record->getDefinition();
  const auto found = record->lookup(name);
  if (!found.empty()) return found.isSingleResult() ? found.front() : nullptr;
  for (const clang::CXXBaseSpecifier& base : record->bases()) {
    if (const clang::NamedDecl* inherited = memberOf(base.getType(), name)) return inherited;
  }
  return nullptr;
}

/// The class that all arguments give; null if some have a specialization of their own.
const clang::CXXRecordDecl* onlyPattern(const clang::TemplateSpecializationType& type) {
  auto* primary =
      llvm::dyn_cast_or_null<clang::ClassTemplateDecl>(type.getTemplateName().getAsTemplateDecl());
  if (primary == nullptr) return nullptr;
  llvm::SmallVector<clang::ClassTemplatePartialSpecializationDecl*, 4> partial;
  primary->getPartialSpecializations(partial);
  const bool isAlone =
      partial.empty() && llvm::none_of(primary->specializations(), [](const auto* special) {
        return special->isExplicitSpecialization();
      });
  return isAlone ? primary->getTemplatedDecl() : nullptr;
}

/// Visits a part of a template with the arguments for its parameters.
class DependentNames : public clang::RecursiveASTVisitor<DependentNames> {
 public:
  DependentNames(References& references, const clang::TemplateParameterList& parameters,
                 Arguments arguments)
      : references(references), depth(parameters.getDepth()), arguments(arguments) {}

  /// What a `template <Concept T>` checks is implicit.
  bool shouldVisitImplicitCode() const { return true; }

  void traverseParameters(const clang::TemplateParameterList& parameters) {
    for (clang::NamedDecl* parameter : parameters) TraverseDecl(parameter);
    TraverseStmt(const_cast<clang::Expr*>(parameters.getRequiresClause()));
  }

  bool TraverseNestedNameSpecifierLoc(clang::NestedNameSpecifierLoc at) {
    const clang::NestedNameSpecifier* name = at.getNestedNameSpecifier();
    if (name != nullptr && name->getKind() == clang::NestedNameSpecifier::Identifier) {
      refer(resolve(name->getPrefix()), name->getAsIdentifier(), at.getLocalBeginLoc());
    }
    return RecursiveASTVisitor::TraverseNestedNameSpecifierLoc(at);
  }
  bool VisitDependentNameTypeLoc(clang::DependentNameTypeLoc at) {
    refer(resolve(at.getTypePtr()->getQualifier()), at.getTypePtr()->getIdentifier(),
          at.getNameLoc());
    return true;
  }
  bool VisitDependentScopeDeclRefExpr(clang::DependentScopeDeclRefExpr* name) {
    refer(resolve(name->getQualifier()), name->getDeclName(), name->getLocation());
    return true;
  }
  bool VisitCXXDependentScopeMemberExpr(clang::CXXDependentScopeMemberExpr* member) {
    clang::QualType object = member->getBaseType().getNonReferenceType();
    if (member->isArrow()) object = object->getPointeeType();
    refer(resolve(object), member->getMember(), member->getMemberLoc());
    return true;
  }
  bool VisitTemplateSpecializationTypeLoc(clang::TemplateSpecializationTypeLoc at);
  bool VisitConceptSpecializationExpr(clang::ConceptSpecializationExpr* check);

 private:
  void refer(clang::QualType type, clang::DeclarationName name, clang::SourceLocation place) {
    const clang::NamedDecl* member = memberOf(type, name);
    if (const auto* named = llvm::dyn_cast_or_null<clang::TypeDecl>(member)) {
      references.toTypeDeclaration(*named, place);
    } else if (const auto* value = llvm::dyn_cast_or_null<clang::ValueDecl>(member)) {
      const bool isFunction = llvm::isa<clang::FunctionDecl>(value);
      references.toValue(*value, place,
                         isFunction ? References::Roles::AddressTaken : References::Roles::Read);
    }
  }

  /// Null for what is not known.
  clang::QualType resolve(clang::QualType type) const;
  clang::QualType resolve(const clang::NestedNameSpecifier* qualifier) const;
  clang::QualType memberType(clang::QualType type, clang::DeclarationName name) const;
  /// False if one of them is not known.
  bool resolve(Arguments dependent, std::vector<clang::TemplateArgument>& resolved) const;

  References& references;
  unsigned depth;
  Arguments arguments;
};

clang::QualType DependentNames::resolve(clang::QualType type) const {
  if (type.isNull() || !type->isDependentType()) return type;
  if (const auto* parameter = type->getAs<clang::TemplateTypeParmType>()) {
    const bool isKnown = parameter->getDepth() == depth && parameter->getIndex() < arguments.size();
    if (!isKnown) return {};
    const clang::TemplateArgument& argument = arguments[parameter->getIndex()];
    const bool isType = argument.getKind() == clang::TemplateArgument::Type;
    return isType ? argument.getAsType().getNonReferenceType() : clang::QualType();
  }
  if (const auto* name = type->getAs<clang::DependentNameType>()) {
    return memberType(resolve(name->getQualifier()), name->getIdentifier());
  }
  if (const auto* special = type->getAs<clang::TemplateSpecializationType>()) {
    const clang::CXXRecordDecl* pattern = onlyPattern(*special);
    if (pattern != nullptr) return pattern->getASTContext().getTypeDeclType(pattern);
  }
  return {};
}

clang::QualType DependentNames::resolve(const clang::NestedNameSpecifier* qualifier) const {
  if (qualifier == nullptr) return {};
  if (const clang::Type* type = qualifier->getAsType()) return resolve(clang::QualType(type, 0));
  if (qualifier->getKind() != clang::NestedNameSpecifier::Identifier) return {};
  return memberType(resolve(qualifier->getPrefix()), qualifier->getAsIdentifier());
}

clang::QualType DependentNames::memberType(clang::QualType type,
                                           clang::DeclarationName name) const {
  const auto* member = llvm::dyn_cast_or_null<clang::TypeDecl>(memberOf(type, name));
  return member == nullptr ? clang::QualType() : member->getASTContext().getTypeDeclType(member);
}

bool DependentNames::resolve(Arguments dependent,
                             std::vector<clang::TemplateArgument>& resolved) const {
  for (const clang::TemplateArgument& argument : dependent) {
    if (argument.getKind() != clang::TemplateArgument::Type) return false;
    const clang::QualType type = resolve(argument.getAsType());
    if (type.isNull() || type->isDependentType()) return false;
    resolved.emplace_back(type);
  }
  return true;
}

/// Of `typename Any<T>::name` as a whole Clang knows the result.
void referFromResult(References& references, const clang::TemplateSpecializationType& alias) {
  const auto* declaration = llvm::dyn_cast_or_null<clang::TypeAliasTemplateDecl>(
      alias.getTemplateName().getAsTemplateDecl());
  if (declaration == nullptr) return;
  const auto written = declaration->getTemplatedDecl()
                           ->getTypeSourceInfo()
                           ->getTypeLoc()
                           .getUnqualifiedLoc()
                           .getAs<clang::DependentNameTypeLoc>();
  if (written.isNull()) return;
  const clang::TypeDecl* named = alias.getAliasedType()->getAsTagDecl();
  if (const auto* type = alias.getAliasedType()->getAs<clang::TypedefType>()) {
    named = type->getDecl();
  }
  if (named == nullptr || named->getIdentifier() != written.getTypePtr()->getIdentifier()) return;
  const References::Instantiation instantiation(references, declaration->getLocation());
  references.toTypeDeclaration(*named, written.getNameLoc());
}

// --- Templates within templates.

void referFromAlias(References& references, const clang::TemplateName& name, Arguments arguments) {
  const auto* alias =
      llvm::dyn_cast_or_null<clang::TypeAliasTemplateDecl>(name.getAsTemplateDecl());
  if (alias == nullptr) return;
  if (alias->getTemplateParameters()->hasParameterPack()) arguments = {};
  const References::Instantiation instantiation(references, alias->getLocation());
  DependentNames names(references, *alias->getTemplateParameters(), arguments);
  names.TraverseTypeLoc(alias->getTemplatedDecl()->getTypeSourceInfo()->getTypeLoc());
}

void referFromConcept(References& references, const clang::ConceptDecl& definition,
                      Arguments arguments) {
  if (definition.getTemplateParameters()->hasParameterPack()) return;
  const References::Instantiation instantiation(references, definition.getLocation());
  DependentNames names(references, *definition.getTemplateParameters(), arguments);
  names.TraverseStmt(definition.getConstraintExpr());
}

bool DependentNames::VisitTemplateSpecializationTypeLoc(clang::TemplateSpecializationTypeLoc at) {
  const clang::TemplateSpecializationType& special = *at.getTypePtr();
  if (!special.isTypeAlias()) return true;
  std::vector<clang::TemplateArgument> resolved;
  if (!resolve(special.template_arguments(), resolved)) resolved.clear();
  referFromAlias(references, special.getTemplateName(), resolved);
  return true;
}

bool DependentNames::VisitConceptSpecializationExpr(clang::ConceptSpecializationExpr* check) {
  std::vector<clang::TemplateArgument> resolved;
  if (resolve(check->getTemplateArguments(), resolved)) {
    referFromConcept(references, *check->getNamedConcept(), resolved);
  }
  return true;
}

}  // namespace

void referFromAlias(References& references, const clang::TemplateSpecializationType& alias) {
  if (!alias.isTypeAlias() || alias.isDependentType()) return;
  referFromAlias(references, alias.getTemplateName(), alias.template_arguments());
  referFromResult(references, alias);
}

void referFromConcept(References& references, const clang::ConceptSpecializationExpr& check) {
  if (check.isInstantiationDependent()) return;
  referFromConcept(references, *check.getNamedConcept(), check.getTemplateArguments());
}

void referFromHead(References& references,
                   const clang::ClassTemplateSpecializationDecl& instantiated) {
  const clang::TemplateParameterList& parameters =
      *instantiated.getSpecializedTemplate()->getTemplateParameters();
  DependentNames(references, parameters, instantiated.getTemplateArgs().asArray())
      .traverseParameters(parameters);
  const auto* partial = instantiated.getSpecializedTemplateOrPartial()
                            .dyn_cast<clang::ClassTemplatePartialSpecializationDecl*>();
  if (partial == nullptr) return;
  DependentNames names(references, *partial->getTemplateParameters(),
                       instantiated.getTemplateInstantiationArgs().asArray());
  names.traverseParameters(*partial->getTemplateParameters());
  for (const clang::TemplateArgumentLoc& argument :
       partial->getTemplateArgsAsWritten()->arguments()) {
    names.TraverseTemplateArgumentLoc(argument);
  }
}

void referFromHead(References& references, const clang::FunctionDecl& instantiated) {
  const clang::FunctionTemplateDecl* primary = instantiated.getPrimaryTemplate();
  if (primary == nullptr) return;
  while (const clang::FunctionTemplateDecl* member = primary->getInstantiatedFromMemberTemplate()) {
    primary = member;
  }
  const clang::TemplateParameterList& parameters = *primary->getTemplateParameters();
  DependentNames names(references, parameters,
                       instantiated.getTemplateSpecializationArgs()->asArray());
  names.traverseParameters(parameters);
  const clang::Expr* required = primary->getTemplatedDecl()->getTrailingRequiresClause();
  names.TraverseStmt(const_cast<clang::Expr*>(required));
}

}  // namespace fe_db_tools
