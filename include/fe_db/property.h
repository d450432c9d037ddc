#pragma once

#include <string>
#include <string_view>
#include "fe_db/entity_reference.h"

namespace orvalesca::databases_merger {

class FrontendDatabase;

/// What an entity is, beyond the columns of its own table.
class Property : public persistence::GenericElement {
 public:
  Property() = default;
  Property(const EntityReference& entity, PropertyFlags flags, Type* owner, std::string_view scope)
      : entity(entity), flags(flags), owner(owner), scope(scope) {}

  const EntityReference& getEntity() const { return entity; }
  void setEntity(const EntityReference& newEntity) { entity = newEntity; }
  IdentifierKind getEntityKind() const { return entity.kind; }
  void setEntityKind(IdentifierKind kind) { entity.kind = kind; }
  PropertyFlags getFlags() const { return flags; }
  void setFlags(PropertyFlags newFlags) { flags = newFlags; }
  /// The type that the entity is a member of, or null.
  Type* getOwner() const { return owner; }
  void setOwner(Type* type) { owner = type; }
  /// The namespaces and classes around it, as C++ writes them; empty in C.
  const std::string& getScope() const { return scope; }
  void setScope(const std::string& newScope) { scope = newScope; }

  /// Merges another copy of the same element into this one: takes its id and adds its flags; owner
  /// and scope stay. True when this one has flags that the other lacks, so that the other's row has
  /// to be written again.
  bool update(const Property& other) {
    setId(other.getId());
    const bool changed = addsBits(flags, other.flags);
    flags = flags | other.flags;
    return changed;
  }

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;

  EntityReference entity;
  PropertyFlags flags{};
  Type* owner = nullptr;
  std::string scope;
};

}  // namespace orvalesca::databases_merger
