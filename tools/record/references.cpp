#include "references.h"

#include "clang/AST/ASTContext.h"
#include "clang/AST/DeclCXX.h"
#include "clang/AST/DeclTemplate.h"
#include "clang/AST/ExprCXX.h"
#include "entity_table.h"
#include "file_table.h"
#include "type_table.h"

namespace fe_db_tools {

namespace {

/// The template has resolved it already: it is no part of what depends on arguments.
bool isLocal(const clang::ValueDecl& declaration) {
  return llvm::isa<clang::ParmVarDecl>(declaration) ||
         declaration.getDeclContext()->isFunctionOrMethod();
}

/// What a parameter stands for is named where the argument is given.
bool isParameter(clang::TemplateName name) {
  return name.getAsSubstTemplateTemplateParm() != nullptr;
}

/// Null for a built-in type.
const clang::NamedDecl* declarationOf(clang::QualType type) {
  const clang::Type* bare = type.getTypePtr();
  if (const auto* alias = llvm::dyn_cast<clang::TypedefType>(bare)) return alias->getDecl();
  if (const auto* tag = llvm::dyn_cast<clang::TagType>(bare)) return tag->getDecl();
  if (const auto* own = llvm::dyn_cast<clang::InjectedClassNameType>(bare)) return own->getDecl();
  if (const auto* special = llvm::dyn_cast<clang::TemplateSpecializationType>(bare)) {
    return special->getTemplateName().getAsTemplateDecl();
  }
  if (const auto* deduced = llvm::dyn_cast<clang::DeducedTemplateSpecializationType>(bare)) {
    return deduced->getTemplateName().getAsTemplateDecl();
  }
  if (const auto* found = llvm::dyn_cast<clang::UsingType>(bare)) {
    return found->getFoundDecl()->getTargetDecl();
  }
  return nullptr;
}

}  // namespace

References::References(FileTable& files, TypeTable& types, EntityTable& entities,
                       const clang::ASTContext& context, SystemFacts system)
    : files(files),
      types(types),
      entities(entities),
      system(system),
      isRepeatable(context.getLangOpts().CPlusPlus) {}

References::Instantiation::Instantiation(References& references, clang::SourceLocation pattern)
    : references(references), outer(references.source) {
  const bool isForeign =
      references.system == SystemFacts::referenced && references.files.isInSystemHeader(pattern);
  references.source = isForeign ? Source::systemInstantiation : Source::instantiation;
}

bool References::isOfInterest(const clang::ValueDecl& declaration) const {
  if (source == Source::written) return true;
  if (isLocal(declaration) || declaration.isImplicit()) return false;
  return source == Source::instantiation || !files.isInSystemHeader(declaration.getLocation());
}

bool References::isTypeOfInterest(const clang::NamedDecl* declaration) const {
  if (source != Source::systemInstantiation) return true;
  return declaration != nullptr && !files.isInSystemHeader(declaration->getLocation());
}

bool References::isFirst(clang::SourceLocation place, const void* element) {
  return seen.insert({place.getRawEncoding(), element}).second;
}

template <class Element>
void References::add(Element* element, clang::SourceLocation place) {
  if (element == nullptr) return;
  if (isRepeatable && place.isValid() && !isFirst(place, element)) return;
  FactSink::refer(element);
}

void References::toValue(const clang::ValueDecl& declaration, clang::SourceLocation place) {
  if (!isOfInterest(declaration)) return;
  if (const auto* function = llvm::dyn_cast<clang::FunctionDecl>(&declaration)) {
    add(entities.function(*function), place);
  } else if (const auto* field = llvm::dyn_cast<clang::FieldDecl>(&declaration)) {
    add(entities.field(*field), place);
  } else if (llvm::isa<clang::VarDecl, clang::BindingDecl>(declaration)) {
    add(entities.variable(declaration), place);
  } else if (const auto* constant = llvm::dyn_cast<clang::EnumConstantDecl>(&declaration)) {
    entities.enumConstant(*constant);  // not counted; but one of a system header may be new
  }
}

void References::toType(clang::TypeLoc at, bool byTag) {
  const clang::SourceLocation place = at.getBeginLoc();
  const auto* special = llvm::dyn_cast<clang::TemplateSpecializationType>(at.getTypePtr());
  if (special != nullptr && isParameter(special->getTemplateName())) return;
  if (place.isInvalid()) return;  // made by the compiler, as for a transparent union
  if (declaredNames.contains(place) || !isTypeOfInterest(declarationOf(at.getType()))) return;
  dm::Type* type = types.named(at.getType());
  if (type == nullptr || !isFirst(place, type)) return;  // one name serves `T a, b;`
  byTag ? FactSink::referByTag(type) : FactSink::refer(type);
}

void References::toTypeDeclaration(const clang::TypeDecl& declaration,
                                   clang::SourceLocation place) {
  if (!isTypeOfInterest(&declaration)) return;
  if (const auto* alias = llvm::dyn_cast<clang::TypedefNameDecl>(&declaration)) {
    add(types.type(*alias), place);
  } else if (const auto* tag = llvm::dyn_cast<clang::TagDecl>(&declaration)) {
    add(types.type(*tag), place);
  }
}

void References::toTemplate(clang::TemplateName name, clang::SourceLocation place) {
  const clang::TemplateDecl* declaration = name.getAsTemplateDecl();
  if (declaration == nullptr || isParameter(name) || !isTypeOfInterest(declaration)) return;
  add(types.ofTemplate(name), place);
}

void References::ofBinding(const clang::BindingDecl& binding) {
  const clang::SourceLocation place = binding.getLocation();
  if (const clang::VarDecl* element = binding.getHoldingVar()) {
    if (isTypeOfInterest(declarationOf(element->getType().getNonReferenceType()))) {
      add(types.named(element->getType()), place);
    }
    const clang::Expr* init = element->getInit();
    const auto* get =
        init == nullptr ? nullptr : llvm::dyn_cast<clang::CallExpr>(init->IgnoreImplicit());
    if (get != nullptr && get->getDirectCallee() != nullptr) {
      toValue(*get->getDirectCallee(), place);
    }
  } else if (const clang::Expr* bound = binding.getBinding()) {
    const auto* member = llvm::dyn_cast<clang::MemberExpr>(bound->IgnoreImplicit());
    if (member != nullptr) toValue(*member->getMemberDecl(), place);
  }
}

void References::toLinkerName(std::string name, clang::SourceLocation place) {
  linkerNames.emplace_back(std::move(name), place);
}

void References::resolveLinkerNames() {
  for (const auto& [name, place] : linkerNames) {
    if (const clang::ValueDecl* named = entities.withLinkerName(name)) toValue(*named, place);
  }
  linkerNames.clear();
}

}  // namespace fe_db_tools
