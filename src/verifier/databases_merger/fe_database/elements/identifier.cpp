#include "fe_db/identifier.h"

namespace orvalesca::databases_merger {

void Identifier::addOccurrence(IdentifierKind seenKind, std::uint32_t seenCount) {
  setId(0);
  // A bit that only the stored name has counts as a change: the row that this name will find
  // again may lack it.
  const bool changed = count != 0 || addsBits(kind, seenKind);
  count += seenCount;
  kind = kind | seenKind;
  dirty = dirty || changed;
}

bool Identifier::updateFromRow(const Identifier& row) {
  setId(row.getId());
  bool changed = true;
  if (count != 0) {
    count += row.count;
  } else {
    count = row.count;
    changed = addsBits(kind, row.kind);
  }
  kind = kind | row.kind;
  dirty = dirty || changed;
  return changed;
}

}  // namespace orvalesca::databases_merger
