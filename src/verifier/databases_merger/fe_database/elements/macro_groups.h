#pragma once

#include <boost/container/small_vector.hpp>
#include <boost/unordered_map.hpp>
#include <cstddef>

#include "fe_db/element_keys.h"

namespace orvalesca::databases_merger {

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
  /// The first macro of the walk that stands at the position, or is matched by a wildcard.
  Macro* find(const Localization& at);
  /// A member's position or wildcard has changed.
  void forgetPositions() { indexed = 0; }

 private:
  /// Longer groups are searched by an index, so that a name defined in thousands of files costs the
  /// same per sight as any other; shorter ones are walked faster.
  static constexpr std::size_t kLongestWalk = 8;

  Macro* findByWalk(const Localization& at) const;
  void bringIndexUpToDate();

  struct HashPosition {
    std::size_t operator()(const Localization& at) const { return hashPosition(at); }
  };
  struct SamePosition {
    bool operator()(const Localization& a, const Localization& b) const {
      return samePosition(a, b);
    }
  };

  boost::container::small_vector<Macro*, 2> inserted;
  boost::unordered_map<Localization, Macro*, HashPosition, SamePosition> byPosition;
  std::size_t indexed = 0;  ///< how many of `inserted` are in byPosition
  bool hasWildcard = false;
};

/// The groups of a dataset, by name. Groups never move: their macros point at them.
class MacroGroups {
 public:
  MacroGroup* find(const Identifier* identifier) {
    const auto found = groups.find(identifier);
    return found == groups.end() ? nullptr : &found->second;
  }
  MacroGroup& of(const Identifier* identifier) { return groups[identifier]; }
  void clear() { groups.clear(); }

  /// Calls visit(macro) for each macro of the container: group by group in the container's order,
  /// each group in its own.
  template <class Macros, class Visit>
  static void each(Macros& macros, Visit&& visit) {
    // A group is adjacent in the container, so the walk skips as many members as the group has.
    for (auto it = macros.begin(); it != macros.end();) {
      MacroGroup& group = groupOf(*it);
      for (std::size_t step = 0; step < group.size(); ++step) visit(group[step]);
      std::advance(it, group.size());
    }
  }

 private:
  static MacroGroup& groupOf(const Macro& macro);

  boost::unordered_map<const Identifier*, MacroGroup> groups;
};

}  // namespace orvalesca::databases_merger
