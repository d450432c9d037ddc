#pragma once

#include "persistence/generic_element.h"

namespace orvalesca::databases_merger {

class FrontendDatabase;
class Type;

/// Links a declared type to the type that it refers to. A declared type has at most one; the first
/// referenced type stays.
class TypeReference : public persistence::GenericElement {
 public:
  TypeReference() = default;
  TypeReference(Type* declaredType, Type* referencedType)
      : declaredType(declaredType), referencedType(referencedType) {}

  Type* getDeclaredType() const { return declaredType; }
  void setDeclaredType(Type* type) { declaredType = type; }
  Type* getReferencedType() const { return referencedType; }
  void setReferencedType(Type* type) { referencedType = type; }

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;

  Type* declaredType = nullptr;
  Type* referencedType = nullptr;
};

}  // namespace orvalesca::databases_merger
