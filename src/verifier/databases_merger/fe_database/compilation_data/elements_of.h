#pragma once

#include "fe_database/compilation_data/containers.h"
#include "fe_database/elements/macro_groups.h"
#include "fe_db/compilation_data.h"

namespace orvalesca::databases_merger {

/// Calls visit(element) for each element; macros of a name come in their group's order.
template <class Set, class Visit>
void eachElement(Set& elements, Visit&& visit) {
  if constexpr (std::is_same_v<Set, MacroSet>) {
    MacroGroups::each(elements, visit);
  } else {
    for (auto& element : elements) visit(mutableElement(element));
  }
}

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
}

}  // namespace orvalesca::databases_merger
