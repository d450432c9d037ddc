#pragma once

#include "fe_db/localization.h"
#include "persistence/generic_element.h"

namespace orvalesca::databases_merger {

class FrontendDatabase;
class Identifier;

/// Ties an external name to one variable or function that bears it.
class ExternalIdentifier : public persistence::GenericElement {
 public:
  ExternalIdentifier() = default;
  ExternalIdentifier(Identifier* identifier, const EntityDescription& description)
      : identifier(identifier), description(description) {}

  Identifier* getIdentifier() const { return identifier; }
  void setIdentifier(Identifier* name) { identifier = name; }
  const EntityDescription& getDescription() const { return description; }
  void setDescription(const EntityDescription& entity) { description = entity; }

  EntityKind getEntityKind() const { return description.kind; }
  void setEntityKind(EntityKind kind) { description.kind = kind; }

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;

  Identifier* identifier = nullptr;
  EntityDescription description;
};

}  // namespace orvalesca::databases_merger
