#include "known_units.h"

#include <algorithm>

namespace fe_db_tools {

using orvalesca::databases_merger::Unit;
using orvalesca::databases_merger::UnitSet;

/// As the library's key, with the path in place of the file, which each dataset has its own of.
KnownUnits::Key KnownUnits::keyOf(const Unit& unit) {
  const std::string& output = unit.getOutput();
  return {unit.getMainFile()->getPath(), unit.getDirectory(), output,
          output.empty() ? unit.getCommand() : ""};
}

void KnownUnits::add(const UnitSet& units) {
  for (const Unit& unit : units) keys.insert(keyOf(unit));
}

std::vector<std::string> KnownUnits::find(const UnitSet& units) const {
  std::vector<std::string> names;
  for (const Unit& unit : units) {
    if (!keys.contains(keyOf(unit))) continue;
    const std::string& place = unit.getOutput().empty() ? unit.getCommand() : unit.getOutput();
    names.push_back(unit.getMainFile()->getPath() + (place.empty() ? "" : " (" + place + ")"));
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string listed(const std::vector<std::string>& names) {
  constexpr std::size_t kMost = 10;
  std::string list;
  for (std::size_t i = 0; i < names.size() && i < kMost; ++i) {
    list += (i == 0 ? "" : ", ") + names[i];
  }
  if (names.size() > kMost) list += " and " + std::to_string(names.size() - kMost) + " more";
  return list;
}

}  // namespace fe_db_tools
