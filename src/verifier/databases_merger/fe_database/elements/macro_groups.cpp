#include "fe_database/elements/macro_groups.h"

namespace orvalesca::databases_merger {

namespace {

bool matches(const Localization& stored, const Localization& sought) {
  return samePosition(stored, sought) || sought.wildcard || stored.wildcard;
}

}  // namespace

void MacroGroup::append(Macro& macro) {
  macro.group = this;
  inserted.push_back(&macro);
  // Here and not at the next search, so that a second sight allocates nothing.
  if (inserted.size() > kLongestWalk) bringIndexUpToDate();
}

Macro* MacroGroup::find(const Localization& at) {
  if (inserted.size() <= kLongestWalk || at.wildcard) return findByWalk(at);
  bringIndexUpToDate();
  if (hasWildcard) return findByWalk(at);
  const auto found = byPosition.find(at);
  return found == byPosition.end() ? nullptr : found->second;
}

Macro* MacroGroup::findByWalk(const Localization& at) const {
  for (std::size_t step = 0; step < size(); ++step) {
    Macro& macro = (*this)[step];
    if (matches(macro.getLocalization(), at)) return &macro;
  }
  return nullptr;
}

void MacroGroup::bringIndexUpToDate() {
  if (indexed == 0) {
    byPosition.clear();
    hasWildcard = false;
  }
  for (; indexed < inserted.size(); ++indexed) {
    Macro* macro = inserted[indexed];
    hasWildcard = hasWildcard || macro->getLocalization().wildcard;
    // Of several at one position the walk meets the first inserted or else the newest first.
    const auto [place, isNew] = byPosition.emplace(macro->getLocalization(), macro);
    if (!isNew && place->second != inserted[0]) place->second = macro;
  }
}

MacroGroup* MacroGroups::groupOf(const Macro& macro) { return macro.group; }

void MacroGroups::join(Macro& known, Macro& added) {
  if (known.group == nullptr) groups.emplace_back().append(known);
  known.group->append(added);
}

Macro& MacroGroups::first(Macro& known) {
  return known.group == nullptr ? known : (*known.group)[0];
}

Macro* MacroGroups::find(Macro& known, const Localization& at) {
  if (known.group != nullptr) return known.group->find(at);
  return matches(known.getLocalization(), at) ? &known : nullptr;
}

}  // namespace orvalesca::databases_merger
