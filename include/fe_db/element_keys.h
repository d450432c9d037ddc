#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <tuple>

#include "fe_db/elements.h"

/// The key rules: when two occurrences are the same element. Each rule is one projection of an
/// element to its key fields; hash and equality both work on the projection, so that they cannot
/// disagree, and both take a bare key as well, so that a search builds no element.
///
/// Keys compare pointers, so a key means nothing in another dataset.
namespace orvalesca::databases_merger {

/// Hashes of addresses and small numbers. The containers spread what they get over their buckets
/// themselves, so that one multiplication a field is enough; boost::hash_combine spreads each
/// field by itself.
inline std::uint64_t hashAddress(const void* address) {
  return reinterpret_cast<std::uintptr_t>(address);
}
constexpr std::uint64_t combineHash(std::uint64_t seed, std::uint64_t next) {
  return (seed ^ (seed >> 29)) * 0x9e3779b97f4a7c15u + next;
}

// --- File and Identifier: the bytes of the path or the name.

inline std::string_view nameKey(const File& e) { return e.getPath(); }
inline std::string_view nameKey(const Identifier& e) { return e.getName(); }
inline std::string_view nameKey(std::string_view name) { return name; }

template <class T>
struct hashName {
  template <class K>
  std::size_t operator()(const K& e) const {
    // libstdc++'s, which takes eight bytes at a time; Boost's takes them one by one.
    return std::hash<std::string_view>()(nameKey(e));
  }
};

template <class T>
struct equalName {
  template <class A, class B>
  bool operator()(const A& a, const B& b) const {
    return nameKey(a) == nameKey(b);
  }
};

// --- Type, Variable, Function, Field, EnumConstant, Label: the same name at the same position.
// Not in the key: kind, isDefined, linkage, effect, counts, wildcard.

struct LocIdentifierKey {
  const Localization& at;
  const Identifier* identifier;
};

inline LocIdentifierKey locIdentifierKey(const NamedElement& e) {
  return {e.getLocalization(), e.getIdentifier()};
}
inline const LocIdentifierKey& locIdentifierKey(const LocIdentifierKey& key) { return key; }

inline std::size_t hashPosition(const Localization& at) {
  return combineHash(hashAddress(at.file), (std::uint64_t{at.line} << 32) | at.column);
}

template <class T>
struct hashLocIdentifier {
  template <class K>
  std::size_t operator()(const K& e) const {
    const LocIdentifierKey& key = locIdentifierKey(e);
    return combineHash(hashPosition(key.at), hashAddress(key.identifier));
  }
};

template <class T>
struct equalLocIdentifier {
  template <class A, class B>
  bool operator()(const A& a, const B& b) const {
    const LocIdentifierKey& left = locIdentifierKey(a);
    const LocIdentifierKey& right = locIdentifierKey(b);
    return samePosition(left.at, right.at) && left.identifier == right.identifier;
  }
};

/// Order of variables: path, line, column, then the name's address. Both files have to be set.
/// The same File needs no look at its path: paths are unique in a dataset.
template <class T>
struct lessLocIdentifier {
  using is_transparent = void;

  template <class A, class B>
  bool operator()(const A& a, const B& b) const {
    const LocIdentifierKey& left = locIdentifierKey(a);
    const LocIdentifierKey& right = locIdentifierKey(b);
    if (left.at.file != right.at.file) {
      const int order = left.at.file->getPath().compare(right.at.file->getPath());
      if (order != 0) return order < 0;
    }
    if (left.at.line != right.at.line) return left.at.line < right.at.line;
    if (left.at.column != right.at.column) return left.at.column < right.at.column;
    return std::less<const Identifier*>()(left.identifier, right.identifier);
  }
};

// --- Macro: the name; all macros of one name are one group of a multiset.

inline const Identifier* macroIdentifier(const Macro& e) { return e.getIdentifier(); }
inline const Identifier* macroIdentifier(const Identifier* identifier) { return identifier; }

struct hashMacroIdentifier {
  template <class K>
  std::size_t operator()(const K& e) const {
    return hashAddress(macroIdentifier(e));
  }
};

struct equalMacroIdentifier {
  template <class A, class B>
  bool operator()(const A& a, const B& b) const {
    return macroIdentifier(a) == macroIdentifier(b);
  }
};

// --- MacroInvocation and loaded MacroExpansion: the line of the preprocessed text.

inline std::uint32_t preprocessedLine(const MacroInvocation& e) { return e.getPpLine(); }
inline std::uint32_t preprocessedLine(const MacroExpansion& e) { return e.getPpLine(); }
inline std::uint32_t preprocessedLine(std::uint32_t line) { return line; }

template <class T>
struct hashPreprocessedLine {
  template <class K>
  std::size_t operator()(const K& e) const {
    return preprocessedLine(e);
  }
};

template <class T>
struct equalPreprocessedLine {
  template <class A, class B>
  bool operator()(const A& a, const B& b) const {
    return preprocessedLine(a) == preprocessedLine(b);
  }
};

// --- TypeReference: the declared type. The referenced type takes no part.

inline const Type* declaredType(const TypeReference& e) { return e.getDeclaredType(); }
inline const Type* declaredType(const Type* type) { return type; }

struct hashDeclaredType {
  template <class K>
  std::size_t operator()(const K& e) const {
    return hashAddress(declaredType(e));
  }
};

struct equalDeclaredType {
  template <class A, class B>
  bool operator()(const A& a, const B& b) const {
    return declaredType(a) == declaredType(b);
  }
};

// --- ExternalIdentifier: the name and the entity; a kind other than variable and function counts
// as no entity. The kinds are not compared.

struct EntityKey {
  const Identifier* identifier;
  const LinkedElement* entity;
};

inline EntityKey entityKey(const Identifier* identifier, const EntityDescription& description) {
  return {identifier, description.hasEntity() ? description.entity : nullptr};
}
inline EntityKey entityKey(const ExternalIdentifier& e) {
  return entityKey(e.getIdentifier(), e.getDescription());
}
inline const EntityKey& entityKey(const EntityKey& key) { return key; }

struct hashEntity {
  template <class K>
  std::size_t operator()(const K& e) const {
    const EntityKey& key = entityKey(e);
    return combineHash(hashAddress(key.identifier), hashAddress(key.entity));
  }
};

struct equalEntity {
  template <class A, class B>
  bool operator()(const A& a, const B& b) const {
    const EntityKey& left = entityKey(a);
    const EntityKey& right = entityKey(b);
    return left.identifier == right.identifier && left.entity == right.entity;
  }
};

// --- CallPoint: the caller and the position. The callee takes no part.

struct LocCallerKey {
  const Localization& at;
  const Function* caller;
};

inline LocCallerKey locCallerKey(const CallPoint& e) {
  return {e.getLocalization(), e.getCaller()};
}
inline const LocCallerKey& locCallerKey(const LocCallerKey& key) { return key; }

struct hashLocCaller {
  template <class K>
  std::size_t operator()(const K& e) const {
    const LocCallerKey& key = locCallerKey(e);
    return combineHash(hashPosition(key.at), hashAddress(key.caller));
  }
};

struct equalLocCaller {
  template <class A, class B>
  bool operator()(const A& a, const B& b) const {
    const LocCallerKey& left = locCallerKey(a);
    const LocCallerKey& right = locCallerKey(b);
    return left.caller == right.caller && samePosition(left.at, right.at);
  }
};

// --- Unit, UnitFile, Include, Reference, Property: these fields, and all of them.

inline auto keyFields(const File* mainFile, std::string_view directory, std::string_view output,
                      std::string_view command) {
  return std::tuple(mainFile, directory, output, output.empty() ? command : std::string_view());
}
inline auto keyFields(const Unit& e) {
  return keyFields(e.getMainFile(), e.getDirectory(), e.getOutput(), e.getCommand());
}
inline auto keyFields(const Unit* unit, const File* file) { return std::tuple(unit, file); }
inline auto keyFields(const UnitFile& e) { return keyFields(e.getUnit(), e.getFile()); }
inline auto keyFields(const Localization& at, const File* included) {
  return std::tuple(static_cast<const File*>(at.file), at.line, included);
}
inline auto keyFields(const Include& e) { return keyFields(e.getLocalization(), e.getIncluded()); }
inline auto keyFields(const EntityReference& entity, const Localization& at) {
  return std::tuple(entity, static_cast<const File*>(at.file), at.line, at.column);
}
inline auto keyFields(const Reference& e) { return keyFields(e.getEntity(), e.getLocalization()); }
inline auto keyFields(const EntityReference& entity) { return std::tuple(entity); }
inline auto keyFields(const Property& e) { return keyFields(e.getEntity()); }
template <class... Fields>
const std::tuple<Fields...>& keyFields(const std::tuple<Fields...>& key) {
  return key;
}

inline std::uint64_t hashField(const void* address) { return hashAddress(address); }
inline std::uint64_t hashField(const EntityReference& e) { return hashAddress(e.entity); }
inline std::uint64_t hashField(std::uint32_t number) { return number; }
inline std::uint64_t hashField(std::string_view text) {
  return std::hash<std::string_view>()(text);
}

struct hashFields {
  template <class K>
  std::size_t operator()(const K& e) const {
    std::uint64_t hash = 0;
    std::apply(
        [&hash](const auto&... field) { ((hash = combineHash(hash, hashField(field))), ...); },
        keyFields(e));
    return hash;
  }
};

struct equalFields {
  template <class A, class B>
  bool operator()(const A& a, const B& b) const {
    return keyFields(a) == keyFields(b);
  }
};

}  // namespace orvalesca::databases_merger
