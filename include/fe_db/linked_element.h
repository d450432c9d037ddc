#pragma once

#include "fe_db/named_element.h"

namespace orvalesca::databases_merger {

class Type;

/// Base of Variable and Function: something that a linker may know. A declaration and a definition
/// have two positions and are two elements.
class LinkedElement : public NamedElement {
 public:
  LinkedElement() = default;
  LinkedElement(Identifier* identifier, const Localization& localization, std::uint32_t refCount,
                Type* type, bool isDefined, LinkageKind linkage)
      : NamedElement(identifier, localization, refCount),
        type(type),
        isDefined(isDefined),
        linkage(linkage) {}

  /// Null for a function, and for a variable of no recorded type. Not owned.
  Type* getType() const { return type; }
  void setType(Type* newType) { type = newType; }
  bool getIsDefined() const { return isDefined; }
  void setIsDefined(bool on) { isDefined = on; }
  LinkageKind getLinkage() const { return linkage; }
  void setLinkage(LinkageKind newLinkage) { linkage = newLinkage; }

 private:
  Type* type = nullptr;
  bool isDefined = false;
  LinkageKind linkage = LinkageKind::None;
};

}  // namespace orvalesca::databases_merger
