#pragma once

#include "fe_db/located_element.h"

namespace orvalesca::databases_merger {

class FrontendDatabase;
class Identifier;

/// Base of Type, Function, Variable, Macro, EnumConstant, Field and Label: a name at a position
/// and the references counted for it. EnumConstant and Label have no column for the count; it has
/// to stay 0 for them.
class NamedElement : public LocatedElement {
 public:
  explicit NamedElement(Identifier* identifier = nullptr, const Localization& localization = {},
                        std::uint32_t refCount = 0)
      : LocatedElement(localization), identifier(identifier), refCount(refCount) {}

  /// Not owned; an element of the same dataset.
  Identifier* getIdentifier() const { return identifier; }
  void setIdentifier(Identifier* name) { identifier = name; }
  std::uint32_t getRefCount() const { return refCount; }
  void setRefCount(std::uint32_t count) { refCount = count; }

  /// Merges another copy of the same element, a new occurrence or a stored row, into this one:
  /// takes its id and adds its count. True when the row has to be written again, that is, when this
  /// element had a count to add.
  bool update(const NamedElement& other) { return merge(other.getId(), other.refCount); }

  /// The same with the other copy's fields.
  bool merge(long long otherId, std::uint32_t otherRefCount) {
    setId(otherId);
    const bool changed = refCount != 0;
    refCount += otherRefCount;
    dirty = dirty || changed;
    return changed;
  }

 protected:
  Identifier* identifier;
  std::uint32_t refCount;
};

}  // namespace orvalesca::databases_merger
