#pragma once

#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "fe_db/element_containers.h"

namespace fe_db_tools {

/// The units that a merge has so far. One that is merged twice counts everything twice.
class KnownUnits {
 public:
  void add(const orvalesca::databases_merger::UnitSet& units);

  /// Those of `units` that are known, for the user, in order of their names.
  std::vector<std::string> find(const orvalesca::databases_merger::UnitSet& units) const;

 private:
  using Key = std::tuple<std::string, std::string, std::string, std::string>;
  static Key keyOf(const orvalesca::databases_merger::Unit& unit);

  std::set<Key> keys;
};

/// The first few, and how many more.
std::string listed(const std::vector<std::string>& names);

}  // namespace fe_db_tools
