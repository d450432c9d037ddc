#pragma once

#include "fe_db/located_element.h"

namespace orvalesca::databases_merger {

class FrontendDatabase;

/// Who includes whom: the file and line of the directive, and the file that it found. The column
/// is not used. The first kind stays.
class Include : public LocatedElement {
 public:
  Include() = default;
  Include(const Localization& localization, File* included, IncludeKind kind)
      : LocatedElement(localization), included(included), kind(kind) {}

  File* getIncluded() const { return included; }
  void setIncluded(File* file) { included = file; }
  IncludeKind getKind() const { return kind; }
  void setKind(IncludeKind newKind) { kind = newKind; }

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;

  File* included = nullptr;
  IncludeKind kind{};
};

}  // namespace orvalesca::databases_merger
