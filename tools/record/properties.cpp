#include "properties.h"

#include "clang/AST/DeclCXX.h"
#include "clang/Basic/SourceManager.h"
#include "entity_table.h"
#include "fe_db/function.h"
#include "fe_db/identifier.h"
#include "file_table.h"
#include "property_flags.h"
#include "type_table.h"

namespace fe_db_tools {

using Flag = dm::PropertyFlags;

namespace {

std::string_view nameOf(const dm::EntityReference& entity) {
  const dm::Identifier* name = entity.entity->getIdentifier();
  if (entity.kind == dm::IdentifierKind::Function) {
    name = static_cast<const dm::Function*>(entity.entity)->getSourceName();
  }
  return name == nullptr ? std::string_view() : std::string_view(name->getName());
}

}  // namespace

/// The whole of it, the name too; or else the name is pasted together.
bool Properties::isMadeByMacro(const clang::NamedDecl& declaration) const {
  const clang::SourceLocation name = declaration.getLocation();
  if (!name.isMacroID() || !files.written(name).isThroughBody) return false;
  if (sources.isWrittenInScratchSpace(sources.getSpellingLoc(name))) return true;
  return files.written(declaration.getBeginLoc()).isThroughBody &&
         files.written(declaration.getEndLoc()).isThroughBody;
}

Properties::Entity& Properties::entry(const dm::EntityReference& entity,
                                      const clang::NamedDecl* declaration) {
  const auto [known, isNew] = places.try_emplace(entity.entity, all.size());
  if (isNew) all.push_back({entity, Flag::None, declaration});
  return all[known->second];
}

void Properties::add(const dm::EntityReference& entity, const clang::NamedDecl& declaration) {
  if (entity.entity == nullptr) return;
  Entity& added = entry(entity, &declaration);
  added.flags = added.flags | flagsOf(declaration);
  if (isMadeByMacro(declaration)) added.flags = added.flags | Flag::DeclaredByMacro;
  const auto* method = llvm::dyn_cast<clang::CXXMethodDecl>(&declaration);
  if (method == nullptr) return;
  for (const clang::CXXMethodDecl* other : method->overridden_methods()) overridden.insert(other);
}

void Properties::add(const dm::EntityReference& entity, dm::PropertyFlags flags) {
  Entity& added = entry(entity, nullptr);
  added.flags = added.flags | flags;
}

void Properties::record(const TypeTable& types, EntityTable& entities) {
  for (const clang::CXXMethodDecl* method : overridden) {
    const auto place = places.find(entities.known(*method).entity);
    if (place == places.end()) continue;
    all[place->second].flags = all[place->second].flags | Flag::IsOverridden;
  }
  for (const Entity& one : all) {
    const clang::DeclContext* context =
        one.declaration == nullptr ? nullptr : one.declaration->getDeclContext();
    const auto* owner = llvm::dyn_cast_or_null<clang::TagDecl>(context);
    const bool isExcluded = excluded.names(nameOf(one.entity));
    sink.property(one.entity, isExcluded ? one.flags | Flag::NamedInExcludedText : one.flags,
                  owner == nullptr ? nullptr : types.known(*owner), scopes.of(context));
  }
}

}  // namespace fe_db_tools
