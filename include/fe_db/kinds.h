#pragma once

#include <cstdint>

/// Numbers that are stored in the databases, and two that are not. DO NOT CHANGE a stored value:
/// older files hold it.

namespace results_api {

/// Stored in File.Lang. The front end gives the values their meaning; nothing here reads them.
enum class LanguageKind : std::uint32_t {};

}  // namespace results_api

namespace orvalesca::databases_merger {

/// Stored in File.Kind. The front end gives the values their meaning; nothing here reads them.
enum class FileKind : std::uint32_t {};

/// Stored in Identifier.Kind: a mask with one bit per use of a name.
enum class IdentifierKind : std::uint32_t {
  Type = 1,
  Function = 2,
  Variable = 4,
  Macro = 8,
  External = 16,
  EnumConstant = 32,
  Field = 64,
  Label = 128,
};

constexpr IdentifierKind operator|(IdentifierKind a, IdentifierKind b) {
  return static_cast<IdentifierKind>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}

/// True when `bits` has a bit that `known` lacks.
constexpr bool addsBits(IdentifierKind bits, IdentifierKind known) {
  return (static_cast<std::uint32_t>(bits) & ~static_cast<std::uint32_t>(known)) != 0;
}

/// Stored in Type.Kind: a mask. The front end gives the bits their language meaning; queries only
/// distinguish tagged from named kinds and leave out None.
enum class TypeKind : std::uint32_t {
  None = 0,
  Tagged4 = 4,
  Tagged64 = 64,
  Tagged128 = 128,
  Tagged256 = 256,
  Named512 = 512,
  NamedMask = 964,
};

/// Stored in the Linkage column of Variable and Function. Other values pass through unchanged.
enum class LinkageKind : std::uint32_t { None = 0, External = 1 };

/// Stored in Function.Effect. Other values pass through unchanged.
enum class EffectKind : std::uint32_t { NoEffect = 0, Unknown = 2 };

/// Stored in ExternalIdentifier.Kind: the table that EntityId references.
enum class EntityKind : std::int32_t { None = -1, Variable = 0, Function = 1 };

/// Which tables a database has, and what is prepared on it. Not stored.
enum class DatabaseKind : std::uint32_t { Preprocessing = 1, Compilation = 2, Merge = 3 };

/// Where the macro expansions of a dataset stand. Not stored.
enum class MacroExpansionState : std::uint32_t { Pending = 0, Loaded = 1, Saved = 2 };

}  // namespace orvalesca::databases_merger
