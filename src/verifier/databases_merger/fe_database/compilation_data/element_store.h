#pragma once

#include <type_traits>
#include <utility>

#include "fe_database/compilation_data/element_lookup.h"
#include "fe_database/compilation_data/insertion_order.h"
#include "fe_database/elements/macro_groups.h"
#include "fe_db/compilation_data.h"

namespace orvalesca::databases_merger {

/// The container of each class that has one.
template <class T>
auto& CompilationData::elementsOf() {
  if constexpr (std::is_same_v<T, File>) return files;
  if constexpr (std::is_same_v<T, Identifier>) return identifiers;
  if constexpr (std::is_same_v<T, Macro>) return macros;
  if constexpr (std::is_same_v<T, MacroInvocation>) return macroInvocations;
  if constexpr (std::is_same_v<T, MacroInvocationCodeOrigin>) return macroInvocationCodeOrigins;
  if constexpr (std::is_same_v<T, MacroExpansion>) return macroExpansions;
  if constexpr (std::is_same_v<T, Type>) return types;
  if constexpr (std::is_same_v<T, TypeReference>) return typeReferences;
  if constexpr (std::is_same_v<T, Variable>) return variables;
  if constexpr (std::is_same_v<T, Function>) return functions;
  if constexpr (std::is_same_v<T, ExternalIdentifier>) return externalIdentifiers;
  if constexpr (std::is_same_v<T, Field>) return fields;
  if constexpr (std::is_same_v<T, EnumConstant>) return enumConstants;
  if constexpr (std::is_same_v<T, Label>) return labels;
  if constexpr (std::is_same_v<T, CallPoint>) return callPoints;
  if constexpr (std::is_same_v<T, Unit>) return units;
  if constexpr (std::is_same_v<T, UnitFile>) return unitFiles;
  if constexpr (std::is_same_v<T, Include>) return includes;
  if constexpr (std::is_same_v<T, Reference>) return references;
  if constexpr (std::is_same_v<T, Property>) return properties;
}

/// A first occurrence: the key is known not to be there.
template <class T, class... Arguments>
T& CompilationData::addElement(Arguments&&... arguments) {
  insertionOrder->makeRoom<T>();
  const auto place = elementsOf<T>().emplace(std::forward<Arguments>(arguments)...).first;
  return insertionOrder->note(mutableElement(*place));
}

/// Room for so many more elements, so that the container does not grow step by step, each time
/// hashing what it has once more.
template <class T>
void CompilationData::reserveElements(std::size_t count) {
  auto& elements = elementsOf<T>();
  if constexpr (requires { elements.reserve(count); }) elements.reserve(elements.size() + count);
  insertionOrder->of<T>().reserve(elements.size() + count);
}

/// An element as it is, unless there is one with its key; then that one.
template <class T>
T& CompilationData::insertElement(const T& element) {
  insertionOrder->makeRoom<T>();
  const auto [place, isNew] = elementsOf<T>().insert(element);
  return isNew ? insertionOrder->note(mutableElement(*place)) : mutableElement(*place);
}

/// Calls visit(element) for each element in insertion order; variables come sorted, and all
/// macros of a name with the first of them, in their group's order.
template <class T, class Visit>
void CompilationData::eachElement(Visit&& visit) {
  if constexpr (std::is_same_v<T, Macro>) {
    MacroGroups::each(insertionOrder->of<Macro>(), visit);
  } else if constexpr (std::is_same_v<T, Variable> || !OrderedElements::has<T>) {
    for (auto& element : elementsOf<T>()) visit(mutableElement(element));
  } else {
    // Not a range-based for: a visit may read rows, and so bring further elements in.
    const std::vector<T*>& order = insertionOrder->of<T>();
    for (std::size_t i = 0; i < order.size(); ++i) visit(*order[i]);
  }
}

}  // namespace orvalesca::databases_merger
