#pragma once

#include "fe_db/element_containers.h"

namespace orvalesca::databases_merger {

/// Elements lie in their sets as constants, to protect the key; the rest of them may change.
template <class T>
T& mutableElement(const T& element) {
  return const_cast<T&>(element);
}

/// The element with the key, or null. Searches by the key's fields: no element is built for it.
template <class Set, class Key>
typename Set::value_type* findElement(const Set& elements, const Key& key) {
  const auto found = elements.find(key, elements.hash_function(), elements.key_eq());
  return found == elements.end() ? nullptr : &mutableElement(*found);
}

inline Variable* findElement(const VariableSet& variables, const LocIdentifierKey& key) {
  const auto found = variables.find(key);
  return found == variables.end() ? nullptr : &mutableElement(*found);
}

}  // namespace orvalesca::databases_merger
