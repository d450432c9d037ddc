#pragma once

#include <cstddef>

#include "fe_database/compilation_database/columns.h"
#include "fe_db/compilation_database.h"
#include "fe_db/elements.h"
#include "persistence/sqlite_report.h"

/// Which stored rows can become elements. A row may lack what its element cannot do without: files
/// get damaged, and other programs write them too.
namespace orvalesca::databases_merger {

/// `refersToLeftOut`: a reference of the row is to a row that could not become an element, and
/// so reads as null. Where the field has to be set, the row shares that fate.
template <class T>
bool canBecomeElement(const T& row, bool refersToLeftOut) {
  if constexpr (requires { row.getIdentifier(); }) {
    if (row.getIdentifier() == nullptr) return false;
  }
  if constexpr (std::is_same_v<T, Variable>) {
    return row.getFile() != nullptr;
  } else if constexpr (std::is_same_v<T, CallPoint>) {
    return !refersToLeftOut || (row.getCaller() != nullptr && row.getCallee() != nullptr);
  } else if constexpr (ExtensionElements::has<T>) {
    return everyRequired(row, [](const auto* referred) { return referred != nullptr; });
  } else if constexpr (std::is_same_v<T, ExternalIdentifier>) {
    const EntityDescription& description = row.getDescription();
    return !refersToLeftOut || !description.hasEntity() || description.entity != nullptr;
  } else {
    return true;
  }
}

/// A merge goes by names, positions and entities, so it needs whatever these are made of. A
/// reference to a row that is not there or was left out has been read as null.
template <class T>
bool canBeMerged(const T& row) {
  if constexpr (std::is_same_v<T, Function>) {
    if (row.getSourceName() == nullptr) return false;
  } else if constexpr (std::is_same_v<T, CallPoint>) {
    return row.getCaller() != nullptr && row.getCallee() != nullptr;
  } else if constexpr (std::is_same_v<T, ExternalIdentifier>) {
    const EntityDescription& description = row.getDescription();
    if (description.hasEntity() && description.entity == nullptr) return false;
  }
  return canBecomeElement(row, /*refersToLeftOut=*/false);
}

/// Rows of one table that share a fate, for one report line about all of them.
class RowTally {
 public:
  void note(long long id) {
    if (count++ == 0) firstId = id;
  }

  template <class T>
  void report(const FrontendDatabase& db, const char* fate) const {
    // Mostly what goes without saying: the entity was skipped.
    if (count == 0 || ExtensionElements::has<T>) return;
    persistence::reportMessage("%s: table %s: %lld rows %s, the first with id %lld",
                               db.getPath().c_str(), TableColumns<T>::kName, count, fate, firstId);
  }

 private:
  long long count = 0;
  long long firstId = 0;
};

}  // namespace orvalesca::databases_merger
