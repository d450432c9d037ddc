#pragma once

#include "fe_db/linked_element.h"

namespace orvalesca::databases_merger {

/// A declaration or definition of a variable. Its position has to have a file: variables are kept
/// in the order of path, line and column.
class Variable : public LinkedElement {
 public:
  Variable() = default;
  Variable(Identifier* identifier, const Localization& localization, Type* type, bool isDefined,
           LinkageKind linkage, std::uint32_t refCount)
      : LinkedElement(identifier, localization, refCount, type, isDefined, linkage) {}

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;
};

}  // namespace orvalesca::databases_merger
