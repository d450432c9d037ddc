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

/// The same for all declarations and instantiations of an entity.
const clang::Decl* written(const clang::NamedDecl& declaration) {
  const clang::Decl* pattern = nullptr;
  if (const auto* function = llvm::dyn_cast<clang::FunctionDecl>(&declaration)) {
    pattern = function->getTemplateInstantiationPattern();
  } else if (const auto* record = llvm::dyn_cast<clang::CXXRecordDecl>(&declaration)) {
    pattern = record->getTemplateInstantiationPattern();
  } else if (const auto* variable = llvm::dyn_cast<clang::VarDecl>(&declaration)) {
    pattern = variable->getTemplateInstantiationPattern();
  } else if (const auto* ofTemplate = llvm::dyn_cast<clang::TemplateDecl>(&declaration)) {
    pattern = ofTemplate->getTemplatedDecl();
  }
  return (pattern != nullptr ? pattern : &declaration)->getCanonicalDecl();
}

}  // namespace

References::References(FactSink& sink, FileTable& files, TypeTable& types, EntityTable& entities,
                       const clang::ASTContext& context, SystemFacts system, ReferenceFacts facts)
    : sink(sink),
      files(files),
      types(types),
      entities(entities),
      system(system),
      isRepeatable(context.getLangOpts().CPlusPlus),
      isRecorded(facts == ReferenceFacts::all) {}

// --- What is around a reference.

bool References::open(const clang::Decl* declaration) {
  const bool isOpened =
      llvm::isa_and_nonnull<clang::FunctionDecl, clang::TagDecl, clang::VarDecl>(declaration) &&
      !llvm::isa<clang::ParmVarDecl>(declaration);
  if (isOpened) enclosing.push_back(llvm::cast<clang::NamedDecl>(declaration));
  return isOpened;
}

bool References::isWithin(const clang::NamedDecl* declaration) const {
  if (declaration == nullptr) return false;
  return llvm::any_of(enclosing, [&](const clang::NamedDecl* around) {
    return around->getDeclName() == declaration->getDeclName() &&
           written(*around) == written(*declaration);
  });
}

References::Roles References::around(const clang::NamedDecl* declaration) const {
  return (unevaluatedDepth != 0 ? Roles::NotEvaluated : Roles::None) |
         (isWithin(declaration) ? Roles::WithinItself : Roles::None);
}

// --- Counting.

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

/// Of a repeat only the roles are new.
bool References::isFirst(const dm::EntityReference& entity, clang::SourceLocation place,
                         Roles roles) {
  const auto [known, isNew] =
      seen.try_emplace({place.getRawEncoding(), entity.entity}, references.size());
  if (!isRecorded) return isNew;
  if (isNew) {
    references.push_back({entity, place, roles});
  } else {
    references[known->second].roles = references[known->second].roles | roles;
  }
  return isNew;
}

/// What is not counted.
void References::note(const dm::EntityReference& entity, clang::SourceLocation place, Roles roles) {
  if (isRecorded && entity.entity != nullptr) references.push_back({entity, place, roles});
}

template <class Element>
void References::add(Element* element, clang::SourceLocation place, Roles roles) {
  if (element == nullptr) return;
  if (isRepeatable && place.isValid()) {
    if (!isFirst(element, place, roles)) return;
  } else {
    note(element, place, roles);
  }
  FactSink::refer(element);
}

void References::toValue(const clang::ValueDecl& declaration, clang::SourceLocation place,
                         Roles roles) {
  if (!isOfInterest(declaration)) return;
  const Roles all = isRecorded ? roles | around(&declaration) : roles;
  if (const auto* function = llvm::dyn_cast<clang::FunctionDecl>(&declaration)) {
    add(entities.function(*function), place, all);
  } else if (const auto* field = llvm::dyn_cast<clang::FieldDecl>(&declaration)) {
    add(entities.field(*field), place, all);
  } else if (llvm::isa<clang::VarDecl, clang::BindingDecl>(declaration)) {
    add(entities.variable(declaration), place, all);
  } else if (const auto* constant = llvm::dyn_cast<clang::EnumConstantDecl>(&declaration)) {
    note(entities.enumConstant(*constant), place, all);  // not counted
  }
}

void References::toType(clang::TypeLoc at, bool byTag, Roles role) {
  const clang::SourceLocation place = at.getBeginLoc();
  const auto* special = llvm::dyn_cast<clang::TemplateSpecializationType>(at.getTypePtr());
  if (special != nullptr && isParameter(special->getTemplateName())) return;
  if (place.isInvalid()) return;  // made by the compiler, as for a transparent union
  if (declaredNames.contains(place) || !isTypeOfInterest(declarationOf(at.getType()))) return;
  dm::Type* type = types.named(at.getType());
  if (type == nullptr) return;
  const Roles all = isWithin(declarationOf(at.getType())) ? role | Roles::WithinItself : role;
  if (!isFirst(type, place, all)) return;  // one name serves `T a, b;`
  byTag ? FactSink::referByTag(type) : FactSink::refer(type);
}

void References::toTypeDeclaration(const clang::TypeDecl& declaration,
                                   clang::SourceLocation place) {
  if (!isTypeOfInterest(&declaration)) return;
  if (const auto* alias = llvm::dyn_cast<clang::TypedefNameDecl>(&declaration)) {
    add(types.type(*alias), place, Roles::TypeUse);
  } else if (const auto* tag = llvm::dyn_cast<clang::TagDecl>(&declaration)) {
    add(types.type(*tag), place, Roles::TypeUse);
  }
}

void References::toTemplate(clang::TemplateName name, clang::SourceLocation place) {
  const clang::TemplateDecl* declaration = name.getAsTemplateDecl();
  if (declaration == nullptr || isParameter(name) || !isTypeOfInterest(declaration)) return;
  add(types.ofTemplate(name), place, Roles::TypeUse);
}

void References::toKnown(const clang::NamedDecl& declaration, clang::SourceLocation place,
                         Roles roles) {
  if (!isRecorded || place.isInvalid()) return;
  if (source == Source::systemInstantiation && files.isInSystemHeader(declaration.getLocation())) {
    return;
  }
  const Roles unevaluated = unevaluatedDepth != 0 ? Roles::NotEvaluated : Roles::None;
  later.push_back({&declaration, place, roles | unevaluated});
}

void References::implicitly(dm::Function* function, clang::SourceLocation place) {
  note(function, place, Roles::Call | Roles::Implicit);
}

void References::ofBinding(const clang::BindingDecl& binding) {
  const clang::SourceLocation place = binding.getLocation();
  if (const clang::VarDecl* element = binding.getHoldingVar()) {
    if (isTypeOfInterest(declarationOf(element->getType().getNonReferenceType()))) {
      add(types.named(element->getType()), place, Roles::TypeUse | Roles::Implicit);
    }
    const clang::Expr* init = element->getInit();
    const auto* get =
        init == nullptr ? nullptr : llvm::dyn_cast<clang::CallExpr>(init->IgnoreImplicit());
    if (get != nullptr && get->getDirectCallee() != nullptr) {
      toValue(*get->getDirectCallee(), place, Roles::Call | Roles::Implicit);
    }
  } else if (const clang::Expr* bound = binding.getBinding()) {
    const auto* member = llvm::dyn_cast<clang::MemberExpr>(bound->IgnoreImplicit());
    if (member != nullptr) {
      toValue(*member->getMemberDecl(), place, Roles::Read | Roles::Implicit);
    }
  }
}

void References::toLinkerName(std::string name, clang::SourceLocation place) {
  linkerNames.emplace_back(std::move(name), place);
}

void References::resolveLinkerNames() {
  for (const auto& [name, place] : linkerNames) {
    const clang::ValueDecl* named = entities.withLinkerName(name);
    if (named != nullptr) toValue(*named, place, Roles::AddressTaken);
  }
  linkerNames.clear();
}

void References::record() {
  for (const Later& reference : later) {
    note(entities.known(*reference.declaration), reference.place, reference.roles);
  }
  for (const Seen& reference : references) {
    const WrittenPlace place = files.written(reference.place);
    const Roles way = place.isThroughBody ? Roles::ThroughMacroBody : Roles::None;
    sink.reference(reference.entity, files.locate(place.at), reference.roles | way);
  }
  later = {};
  references = {};
}

}  // namespace fe_db_tools
