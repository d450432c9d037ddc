#pragma once

#include "fe_db/entity_reference.h"

namespace orvalesca::databases_merger {

class FrontendDatabase;

/// One written place where an entity is used, and what for.
class Reference : public LocatedElement {
 public:
  Reference() = default;
  Reference(const EntityReference& entity, const Localization& localization, ReferenceRoles roles)
      : LocatedElement(localization), entity(entity), roles(roles) {}

  const EntityReference& getEntity() const { return entity; }
  void setEntity(const EntityReference& newEntity) { entity = newEntity; }
  IdentifierKind getEntityKind() const { return entity.kind; }
  void setEntityKind(IdentifierKind kind) { entity.kind = kind; }
  ReferenceRoles getRoles() const { return roles; }
  void setRoles(ReferenceRoles newRoles) { roles = newRoles; }

  /// Merges another copy of the same element into this one: takes its id and adds its roles. True
  /// when this one has roles that the other lacks, so that the other's row has to be written again.
  bool update(const Reference& other) {
    setId(other.getId());
    const bool changed = addsBits(roles, other.roles);
    roles = roles | other.roles;
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
  ReferenceRoles roles{};
};

}  // namespace orvalesca::databases_merger
