#include "entity_table.h"

#include "clang/AST/Attr.h"
#include "clang/AST/DeclCXX.h"
#include "clang/AST/DeclTemplate.h"
#include "file_table.h"
#include "properties.h"

namespace fe_db_tools {

namespace {

dm::LinkageKind linkageOf(const clang::NamedDecl& declaration) {
  if (!declaration.hasLinkage()) return kinds::kNoLinkage;
  return declaration.hasExternalFormalLinkage() && declaration.isExternallyVisible()
             ? kinds::kExternalLinkage
             : kinds::kInternalLinkage;
}

/// Called or entered without a call that a reader of the source could see.
bool isSpecial(const clang::FunctionDecl& function) {
  if (function.isMain() || function.isOverloadedOperator()) return true;
  if (llvm::isa<clang::CXXConstructorDecl, clang::CXXDestructorDecl, clang::CXXConversionDecl>(
          function)) {
    return true;
  }
  if (function.getLiteralIdentifier() != nullptr) return true;
  return function.hasAttr<clang::ConstructorAttr>() || function.hasAttr<clang::DestructorAttr>() ||
         function.hasAttr<clang::UsedAttr>();
}

std::string_view nameOf(const clang::NamedDecl& declaration) {
  const clang::IdentifierInfo* name = declaration.getIdentifier();
  return name == nullptr ? std::string_view()
                         : std::string_view(name->getNameStart(), name->getLength());
}

bool isDefinition(const clang::ValueDecl& declaration) {
  const auto* variable = llvm::dyn_cast<clang::VarDecl>(&declaration);
  return variable == nullptr ||
         variable->isThisDeclarationADefinition() != clang::VarDecl::DeclarationOnly;
}

/// The declaration in the source: not what the compiler makes of a template.
const clang::ValueDecl& writtenVariable(const clang::ValueDecl& declaration) {
  const auto* variable = llvm::dyn_cast<clang::VarDecl>(&declaration);
  if (variable == nullptr) return declaration;
  const clang::VarDecl* pattern = variable->getTemplateInstantiationPattern();
  return pattern != nullptr ? *pattern : *variable;
}

}  // namespace

const clang::FunctionDecl& EntityTable::writtenFunction(const clang::FunctionDecl& declaration) {
  const clang::FunctionDecl* pattern = declaration.getTemplateInstantiationPattern();
  const clang::FunctionDecl& written = pattern != nullptr ? *pattern : declaration;
  // Clang does not connect the lambdas of an instantiation with those of its template.
  const auto* method = llvm::dyn_cast<clang::CXXMethodDecl>(&written);
  if (method == nullptr || !method->getParent()->isLambda()) return written;
  return *lambdas.try_emplace(written.getLocation().getRawEncoding(), &written).first->second;
}

dm::Function* EntityTable::function(const clang::FunctionDecl& declaration) {
  const clang::FunctionDecl& written = writtenFunction(declaration);
  const auto [known, isNew] = functions.try_emplace(&written);
  if (!isNew) return known->second;
  dm::Function* added = addFunction(written);
  return functions[&written] = added;
}

dm::Function* EntityTable::addFunction(const clang::FunctionDecl& declaration) {
  const dm::Localization at = files.locate(declaration.getLocation());
  if (at.file == nullptr || llvm::isa<clang::CXXDeductionGuideDecl>(declaration)) return nullptr;
  const std::string unique = names.of(declaration);
  const std::string source = sourceName(declaration);
  const dm::LinkageKind linkage = linkageOf(declaration);
  dm::Function* function = sink.function(
      {.uniqueName = unique,
       .sourceName = source,
       .at = at,
       .isDefined = declaration.isThisDeclarationADefinition() && !declaration.isDeleted(),
       .isSpecial = isSpecial(declaration),
       .linkage = linkage});
  properties.add(function, declaration);
  if (function != nullptr && linkage == kinds::kExternalLinkage) {
    const std::string linkerName = names.linkerName(declaration);
    if (!linkerName.empty()) sink.externalName(linkerName, function);
  }
  return function;
}

dm::Variable* EntityTable::variable(const clang::ValueDecl& declaration) {
  const clang::ValueDecl& written = writtenVariable(declaration);
  const auto [known, isNew] = variables.try_emplace(&written);
  if (!isNew) return known->second;
  dm::Variable* added = addVariable(written);
  return variables[&written] = added;
}

dm::Variable* EntityTable::addVariable(const clang::ValueDecl& declaration) {
  const std::string_view name = nameOf(declaration);
  const dm::Localization at = files.locate(declaration.getLocation());
  if (name.empty() || at.file == nullptr) return nullptr;
  const dm::LinkageKind linkage = linkageOf(declaration);
  dm::Variable* variable = sink.variable({.name = name,
                                          .at = at,
                                          .type = types.named(declaration.getType()),
                                          .isDefined = isDefinition(declaration),
                                          .linkage = linkage});
  properties.add(variable, declaration);
  const auto* global = llvm::dyn_cast<clang::VarDecl>(&declaration);
  if (global != nullptr && linkage == kinds::kExternalLinkage) {
    const std::string linkerName = names.linkerName(*global);
    if (!linkerName.empty()) sink.externalName(linkerName, variable);
  }
  return variable;
}

dm::Field* EntityTable::field(const clang::FieldDecl& declaration) {
  const std::string_view name = nameOf(declaration);
  if (name.empty()) return nullptr;
  const auto [known, isNew] = fields.try_emplace(
      {declaration.getLocation().getRawEncoding(), declaration.getIdentifier()}, nullptr);
  if (!isNew) return known->second;
  const dm::Localization at = files.locate(declaration.getLocation());
  if (at.file == nullptr) return nullptr;
  known->second = sink.field(name, at);
  properties.add(known->second, declaration);
  return known->second;
}

dm::EnumConstant* EntityTable::enumConstant(const clang::EnumConstantDecl& declaration) {
  const clang::SourceLocation at = declaration.getLocation();
  const auto [known, isNew] = enumConstants.try_emplace(at.getRawEncoding());
  if (!isNew) return known->second;
  known->second = sink.enumConstant(nameOf(declaration), files.locate(at));
  properties.add(known->second, declaration);
  return known->second;
}

void EntityTable::label(const clang::LabelDecl& declaration) {
  dm::Label* label =
      sink.label(nameOf(declaration), files.locate(declaration.getStmt()->getIdentLoc()));
  labels[&declaration] = label;
  properties.add(label, declaration);
}

dm::EntityReference EntityTable::known(const clang::NamedDecl& declaration) {
  if (const auto* function = llvm::dyn_cast<clang::FunctionDecl>(&declaration)) {
    return functions.lookup(&writtenFunction(*function));
  }
  if (const auto* field = llvm::dyn_cast<clang::FieldDecl>(&declaration)) {
    return fields.lookup({field->getLocation().getRawEncoding(), field->getIdentifier()});
  }
  if (const auto* label = llvm::dyn_cast<clang::LabelDecl>(&declaration)) {
    return labels.lookup(label);
  }
  return {};
}

const clang::ValueDecl* EntityTable::withLinkerName(std::string_view name) {
  for (const auto& entry : functions) {
    if (names.linkerName(*entry.first) != name) continue;
    const clang::FunctionDecl* definition = entry.first->getDefinition();
    return definition != nullptr ? definition : entry.first->getCanonicalDecl();
  }
  for (const auto& entry : variables) {
    const auto* variable = llvm::dyn_cast<clang::VarDecl>(entry.first);
    if (variable == nullptr || !variable->isFileVarDecl()) continue;
    if (names.linkerName(*variable) != name) continue;
    const clang::VarDecl* definition = variable->getDefinition();
    return definition != nullptr ? definition : variable->getCanonicalDecl();
  }
  return nullptr;
}

}  // namespace fe_db_tools
