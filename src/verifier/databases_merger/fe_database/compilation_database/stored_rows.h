#pragma once

#include "fe_db/elements.h"

/// Which stored rows can become elements. A row may lack what its element cannot do without: files
/// get damaged, and other programs write them too.
namespace orvalesca::databases_merger {

/// `refersToLeftOut`: a reference of the row leads to a row that could not become an element, and
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
  } else if constexpr (std::is_same_v<T, ExternalIdentifier>) {
    const EntityDescription& description = row.getDescription();
    return !refersToLeftOut || !description.hasEntity() || description.entity != nullptr;
  } else {
    return true;
  }
}

}  // namespace orvalesca::databases_merger
