#pragma once

#include "fe_db/named_element.h"

namespace orvalesca::databases_merger {

/// One declaration of a type. Two occurrences at one place with one name are one element, whatever
/// their kinds; the first kind stays.
class Type : public NamedElement {
 public:
  Type() = default;
  Type(Identifier* identifier, bool unnamed, const Localization& localization, TypeKind kind,
       std::uint32_t refCount, std::uint32_t refTagCount, bool local, bool incomplete)
      : NamedElement(identifier, localization, refCount),
        kind(kind),
        unnamed(unnamed),
        local(local),
        incomplete(incomplete),
        refTagCount(refTagCount) {}

  TypeKind getKind() const { return kind; }
  void setKind(TypeKind newKind) { kind = newKind; }
  bool getUnnamed() const { return unnamed; }
  void setUnnamed(bool on) { unnamed = on; }
  bool getLocal() const { return local; }
  void setLocal(bool on) { local = on; }
  bool getIncomplete() const { return incomplete; }
  void setIncomplete(bool on) { incomplete = on; }
  /// References through the tag; getRefCount() counts those by name.
  std::uint32_t getRefTagCount() const { return refTagCount; }
  void setRefTagCount(std::uint32_t count) { refTagCount = count; }

  /// Merges another copy of the same type: counts add up, the three flags are sticky. True when the
  /// row has to be written again: a count is there, or a flag that the other lacks.
  bool update(const Type& other) {
    return merge(other.getId(), other.unnamed, other.refCount, other.refTagCount, other.local,
                 other.incomplete);
  }

  /// The same with the other copy's fields.
  bool merge(long long otherId, bool otherUnnamed, std::uint32_t otherRefCount,
             std::uint32_t otherRefTagCount, bool otherLocal, bool otherIncomplete) {
    bool changed = NamedElement::merge(otherId, otherRefCount);
    refTagCount += otherRefTagCount;
    // The grown count: one that the row lacks must not be lost.
    changed = changed || refTagCount != 0;
    const auto makeSticky = [&changed](bool& mine, bool theirs) {
      changed = changed || (mine && !theirs);
      mine = mine || theirs;
    };
    makeSticky(unnamed, otherUnnamed);
    makeSticky(local, otherLocal);
    makeSticky(incomplete, otherIncomplete);
    dirty = dirty || changed;
    return changed;
  }

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;

  TypeKind kind{};
  bool unnamed = false;
  bool local = false;
  bool incomplete = false;
  std::uint32_t refTagCount = 0;
};

}  // namespace orvalesca::databases_merger
