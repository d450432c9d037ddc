#pragma once

#include "fe_db/linked_element.h"

namespace orvalesca::databases_merger {

/// A declaration or definition of a function.
class Function : public LinkedElement {
 public:
  Function() = default;
  Function(Identifier* identifier, Identifier* sourceName, const Localization& localization,
           bool isDefined, bool isSpecial, EffectKind effect, LinkageKind linkage)
      : LinkedElement(identifier, localization, 0, nullptr, isDefined, linkage),
        sourceName(sourceName),
        isSpecial(isSpecial),
        effect(effect) {}

  /// The name as written in the source; getIdentifier() is the one that identifies the function.
  Identifier* getSourceName() const { return sourceName; }
  void setSourceName(Identifier* name) { sourceName = name; }
  bool getIsSpecial() const { return isSpecial; }
  void setIsSpecial(bool on) { isSpecial = on; }
  EffectKind getEffect() const { return effect; }
  void setEffect(EffectKind newEffect) { effect = newEffect; }

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;

  Identifier* sourceName = nullptr;
  bool isSpecial = false;
  EffectKind effect = EffectKind::Unknown;
};

}  // namespace orvalesca::databases_merger
