#include "fe_db/macro.h"

#include "fe_database/elements/macro_groups.h"

namespace orvalesca::databases_merger {

Macro::Macro(Identifier* identifier, const Localization& localization, unsigned refCount)
    : NamedElement(identifier, localization, refCount) {}

Macro::Macro(std::int64_t id) { setId(id); }

Macro::Macro(const Macro& other) = default;
Macro& Macro::operator=(const Macro& other) = default;
Macro::~Macro() = default;

/// Only macros are ever indexed. Here and not in Macro, because a position can be set through a
/// base class as well.
void LocatedElement::forgetIndexedPositions() {
  static_cast<Macro*>(this)->group.value->forgetPositions();
}

Macro::MacroKind Macro::getKind() const {
  if (localization.file != nullptr) return MacroKind::InFile;
  if (localization.column == 0) return MacroKind::Unplaced;
  return static_cast<MacroKind>(localization.column);
}

std::optional<std::int64_t> Macro::getIntegralValueForDB() const {
  if (const auto* number = std::get_if<std::int64_t>(&value)) return *number;
  if (const auto* number = std::get_if<std::uint64_t>(&value)) {
    return static_cast<std::int64_t>(*number);
  }
  return std::nullopt;
}

void Macro::setIntegralValueFromDB(std::optional<std::int64_t> stored) {
  if (stored.has_value()) {
    value = *stored;
  } else {
    value = std::monostate{};
  }
}

void Macro::setSignednessFromDB(bool isSigned) {
  if (const auto* number = std::get_if<std::int64_t>(&value); number != nullptr && !isSigned) {
    value = static_cast<std::uint64_t>(*number);
  } else if (const auto* bits = std::get_if<std::uint64_t>(&value); bits != nullptr && isSigned) {
    value = static_cast<std::int64_t>(*bits);
  }
}

bool Macro::update(const Macro& other) {
  return merge(other.getId(), other.refCount, other.value, other.isDefined);
}

bool Macro::merge(long long otherId, unsigned otherRefCount, const Value& otherValue,
                  bool otherIsDefined) {
  bool changed = NamedElement::merge(otherId, otherRefCount);
  if (!hasValue() && !std::holds_alternative<std::monostate>(otherValue)) {
    value = otherValue;
    changed = true;
  }
  if (isDefined && !otherIsDefined) {
    isDefined = false;
    changed = true;
  }
  dirty = dirty || changed;
  return changed;
}

}  // namespace orvalesca::databases_merger
