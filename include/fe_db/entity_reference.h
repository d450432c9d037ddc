#pragma once

#include "fe_db/enum_constant.h"
#include "fe_db/field.h"
#include "fe_db/function.h"
#include "fe_db/label.h"
#include "fe_db/macro.h"
#include "fe_db/type.h"
#include "fe_db/variable.h"

namespace orvalesca::databases_merger {

/// The bit of Identifier.Kind that stands for the class, or 0: what the columns EntityKind hold.
template <class T>
inline constexpr IdentifierKind entityKindOf{};
// clang-format off
template <> inline constexpr auto entityKindOf<Type>         = IdentifierKind::Type;
template <> inline constexpr auto entityKindOf<Function>     = IdentifierKind::Function;
template <> inline constexpr auto entityKindOf<Variable>     = IdentifierKind::Variable;
template <> inline constexpr auto entityKindOf<Macro>        = IdentifierKind::Macro;
template <> inline constexpr auto entityKindOf<EnumConstant> = IdentifierKind::EnumConstant;
template <> inline constexpr auto entityKindOf<Field>        = IdentifierKind::Field;
template <> inline constexpr auto entityKindOf<Label>        = IdentifierKind::Label;
// clang-format on

/// A named element of any class and the bit that says which. Not owned; an element of the same
/// dataset. Null with a kind that is no class.
struct EntityReference {
  EntityReference() = default;
  EntityReference(IdentifierKind kind, NamedElement* entity) : kind(kind), entity(entity) {}
  template <class T>
  requires(entityKindOf<T> != IdentifierKind{}) EntityReference(T* element)
      : kind(entityKindOf<T>), entity(element) {}

  IdentifierKind kind{};
  NamedElement* entity = nullptr;
};

/// An address is that of one element, so the kinds are not compared.
inline bool operator==(const EntityReference& a, const EntityReference& b) {
  return a.entity == b.entity;
}

}  // namespace orvalesca::databases_merger
