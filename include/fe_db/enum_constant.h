#pragma once

#include "fe_db/named_element.h"

namespace orvalesca::databases_merger {

/// An enumeration constant. Its count has no column and stays 0.
class EnumConstant : public NamedElement {
 public:
  using NamedElement::NamedElement;

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;
};

}  // namespace orvalesca::databases_merger
