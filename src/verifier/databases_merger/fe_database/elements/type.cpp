#include "fe_db/type.h"

namespace orvalesca::databases_merger {

bool Type::merge(long long otherId, bool otherUnnamed, std::uint32_t otherRefCount,
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

}  // namespace orvalesca::databases_merger
