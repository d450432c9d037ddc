#pragma once

#include <boost/container/small_vector.hpp>
#include <cstddef>
#include <deque>
#include <vector>

#include "fe_db/element_keys.h"

namespace orvalesca::databases_merger {

/// Macros of one name by their positions: open addressing, so that a search in a name of tens of
/// thousands of macros reads one slot and one macro, and nothing else that is not in the cache.
class MacroPositions {
 public:
  /// The slot of the macro at the position; it holds null when there is none. REQUIRES: room for
  /// one more.
  Macro*& slotOf(const Localization& at);
  /// Room for so many macros; what was there is forgotten.
  void clear(std::size_t macros);
  bool hasRoomFor(std::size_t macros) const { return 2 * macros <= slots.size(); }

 private:
  std::vector<Macro*> slots;  ///< a power of two, at most half of them taken
  int shift = 0;
};

/// The macros of one name, in the order that everything which walks a group sees: the one inserted
/// first, then the others from the newest to the oldest. Kept here because a rehash of the
/// container turns groups round in some releases of Boost.
class MacroGroup {
 public:
  std::size_t size() const { return inserted.size(); }
  Macro& operator[](std::size_t step) const {
    return *inserted[step == 0 ? 0 : inserted.size() - step];
  }

  void append(Macro& macro);
  /// The first macro of the walk that is at the position, or is matched by a wildcard.
  Macro* find(const Localization& at);
  /// A member's position or wildcard has changed.
  void forgetPositions() { indexed = 0; }

 private:
  /// Longer groups are searched by an index, so that a name defined in thousands of files costs the
  /// same per occurrence as any other; shorter ones are walked faster.
  static constexpr std::size_t kLongestWalk = 8;

  Macro* findByWalk(const Localization& at) const;
  void bringIndexUpToDate();

  boost::container::small_vector<Macro*, 4> inserted;
  MacroPositions positions;
  std::size_t indexed = 0;  ///< how many of `inserted` are in `positions`
  bool hasWildcard = false;
};

/// The groups of a dataset. Most names have one macro only, and that has no group.
class MacroGroups {
 public:
  /// `known` is any macro of the name that `added` has.
  void join(Macro& known, Macro& added);
  void clear() { groups.clear(); }

  /// The first macro of the name that `known` has.
  static Macro& first(Macro& known);
  /// Among the macros of that name, as MacroGroup::find.
  static Macro* find(Macro& known, const Localization& at);

  /// Calls visit(macro) for each macro, names by their first macro's place in `insertionOrder`,
  /// each group in its own order.
  template <class Visit>
  static void each(const std::vector<Macro*>& insertionOrder, Visit&& visit) {
    for (std::size_t i = 0; i < insertionOrder.size(); ++i) {
      if (&first(*insertionOrder[i]) == insertionOrder[i]) eachOfName(*insertionOrder[i], visit);
    }
  }

  /// Calls visit(macro) for each macro of the name that `known` has, in the group's order.
  template <class Visit>
  static void eachOfName(Macro& known, Visit&& visit) {
    const MacroGroup* group = groupOf(known);
    if (group == nullptr) {
      visit(known);
    } else {
      for (std::size_t step = 0; step < group->size(); ++step) visit((*group)[step]);
    }
  }

 private:
  static MacroGroup* groupOf(const Macro& macro);

  std::deque<MacroGroup> groups;  ///< never move: their macros point at them
};

}  // namespace orvalesca::databases_merger
