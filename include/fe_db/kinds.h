#pragma once

#include <cstdint>
#include <type_traits>

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

/// Stored in Include.Kind: a mask.
enum class IncludeKind : std::uint32_t {
  Quoted = 1,
  Angled = 2,
  ByMacro = 4,  ///< the name comes out of a macro; with Quoted or Angled
  Next = 8,     ///< #include_next; with Quoted or Angled
  Forced = 16,  ///< by the command line; the including file is the main file, the line 0
};

/// Stored in Reference.Roles: a mask of what one written place does with the entity.
enum class ReferenceRoles : std::uint32_t {
  None = 0,
  Read = 1u << 0,
  Write = 1u << 1,
  Call = 1u << 2,
  AddressTaken = 1u << 3,
  TypeUse = 1u << 4,
  BaseClass = 1u << 5,
  Overrides = 1u << 6,  ///< the entity is overridden; the place is the name of what overrides it
  LabelJump = 1u << 7,
  OffsetOf = 1u << 8,
  Conditional = 1u << 9,        ///< of a macro: #if, #ifdef, defined, #undef
  Implicit = 1u << 10,          ///< made by the compiler: destructors, conversions, range-for
  NotEvaluated = 1u << 11,      ///< in sizeof, decltype and the like
  ThroughMacroBody = 1u << 12,  ///< from a macro's body; the place is that of the macro's name
  Expansion = 1u << 13,         ///< of a macro, where it is expanded
  WithinItself = 1u << 14,      ///< the place lies in the entity's own definition
};

/// Stored in Property.Flags: a mask of 64 bits.
enum class PropertyFlags : std::uint64_t {
  None = 0,
  Parameter = 1u << 0,
  Local = 1u << 1,
  StaticMember = 1u << 2,
  PossiblyUnused = 1u << 3,   ///< marked as such
  NonTrivialClass = 1u << 4,  ///< its type has a non-trivial constructor or destructor
  Virtual = 1u << 5,
  Overrides = 1u << 6,
  IsOverridden = 1u << 7,
  IncludeGuard = 1u << 8,
  PackedOrAligned = 1u << 9,
  ImplicitOrDefaulted = 1u << 10,
  Deleted = 1u << 11,
  Inline = 1u << 12,
  TemplatePattern = 1u << 13,     ///< it is, or is a part of, a template
  CalledBySystem = 1u << 14,      ///< main, constructor attribute, interrupt
  ExportedOrRetained = 1u << 15,  ///< by an attribute
  WeakOrAlias = 1u << 16,
  ReturnsNothing = 1u << 17,
  DoesNotReturn = 1u << 18,
  PureOrConst = 1u << 19,  ///< by an attribute
  Deprecated = 1u << 20,
  BitField = 1u << 21,
  Anonymous = 1u << 22,
  CatchVariable = 1u << 23,
  StructuredBinding = 1u << 24,
  CleanupAttribute = 1u << 25,
  Specialisation = 1u << 26,  ///< explicit or partial
  LambdaMember = 1u << 27,    ///< member of a lambda's class
  PureVirtual = 1u << 28,
  Undefined = 1u << 29,            ///< a macro that an #undef ends
  DeclaredByMacro = 1u << 30,      ///< the whole declaration comes from a macro's body
  NamedInExcludedText = 1u << 31,  ///< in text that a conditional leaves out
};

/// Masks unite with `|`.
template <class E>
inline constexpr bool isMask =
    std::is_same_v<E, IdentifierKind> || std::is_same_v<E, IncludeKind> ||
    std::is_same_v<E, ReferenceRoles> || std::is_same_v<E, PropertyFlags>;

template <class E>
requires isMask<E>
constexpr E operator|(E a, E b) {
  using Number = std::underlying_type_t<E>;
  return static_cast<E>(static_cast<Number>(a) | static_cast<Number>(b));
}

/// True when `bits` has a bit that `known` lacks.
template <class E>
requires isMask<E>
constexpr bool addsBits(E bits, E known) { return (bits | known) != known; }

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

/// Where the macro expansions of a dataset are. Not stored.
enum class MacroExpansionState : std::uint32_t { Pending = 0, Loaded = 1, Saved = 2 };

}  // namespace orvalesca::databases_merger
