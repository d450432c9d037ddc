#include "fe_database/elements/macro_groups.h"

#include <bit>

namespace orvalesca::databases_merger {

namespace {

bool matches(const Localization& stored, const Localization& sought) {
  return samePosition(stored, sought) || sought.wildcard || stored.wildcard;
}

}  // namespace

Macro*& MacroPositions::slotOf(const Localization& at) {
  // The upper bits of a product depend on all bits of what is multiplied.
  std::size_t i = (hashPosition(at) * 0x9e3779b97f4a7c15u) >> shift;
  while (slots[i] != nullptr && !samePosition(slots[i]->getLocalization(), at)) {
    i = (i + 1) & (slots.size() - 1);
  }
  return slots[i];
}

void MacroPositions::clear(std::size_t macros) {
  // Twice what is needed, so that growing is rare.
  slots.assign(std::bit_ceil(4 * macros), nullptr);
  shift = 64 - std::countr_zero(slots.size());
}

void MacroGroup::append(Macro& macro) {
  macro.group.value = this;
  macro.isIndexed.value = true;
  inserted.push_back(&macro);
  // Here and not at the next search, so that a repeat allocates nothing.
  if (inserted.size() > kLongestWalk) bringIndexUpToDate();
}

Macro* MacroGroup::find(const Localization& at) {
  if (inserted.size() <= kLongestWalk || at.wildcard) return findByWalk(at);
  bringIndexUpToDate();
  if (hasWildcard) return findByWalk(at);
  return positions.slotOf(at);
}

Macro* MacroGroup::findByWalk(const Localization& at) const {
  for (std::size_t step = 0; step < size(); ++step) {
    Macro& macro = (*this)[step];
    if (matches(macro.getLocalization(), at)) return &macro;
  }
  return nullptr;
}

void MacroGroup::bringIndexUpToDate() {
  if (!positions.hasRoomFor(inserted.size())) indexed = 0;
  if (indexed == 0) {
    positions.clear(inserted.size());
    hasWildcard = false;
  }
  for (; indexed < inserted.size(); ++indexed) {
    Macro* macro = inserted[indexed];
    hasWildcard = hasWildcard || macro->getLocalization().wildcard;
    // Of several at one position the walk meets the first inserted or else the newest first.
    Macro*& slot = positions.slotOf(macro->getLocalization());
    if (slot == nullptr || slot != inserted[0]) slot = macro;
  }
}

MacroGroup* MacroGroups::groupOf(const Macro& macro) { return macro.group.value; }

void MacroGroups::join(Macro& known, Macro& added) {
  if (groupOf(known) == nullptr) groups.emplace_back().append(known);
  groupOf(known)->append(added);
}

Macro& MacroGroups::first(Macro& known) {
  return groupOf(known) == nullptr ? known : (*groupOf(known))[0];
}

Macro* MacroGroups::find(Macro& known, const Localization& at) {
  if (MacroGroup* group = groupOf(known)) return group->find(at);
  return matches(known.getLocalization(), at) ? &known : nullptr;
}

}  // namespace orvalesca::databases_merger
