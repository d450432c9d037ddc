#include "tables.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>

#include "fe_database/compilation_database/columns.h"
#include "fe_db/elements.h"

namespace fe_db_tools {
namespace {

namespace library = orvalesca::databases_merger;
using library::TableColumns;

template <class E>
constexpr bool isOnlyInCompilation = !library::PreprocessingElements::has<E>;

template <class... E>
struct PositionIn {
  template <class Wanted>
  static constexpr std::size_t of() {
    constexpr std::array isIt{std::is_same_v<Wanted, E>...};
    return static_cast<std::size_t>(std::find(isIt.begin(), isIt.end(), true) - isIt.begin());
  }
};

template <class E>
constexpr TableId idOf() {
  return static_cast<TableId>(library::AllElements::Apply<PositionIn>::of<E>() + 1);
}

template <class Value>
constexpr std::string_view declaredTypeOf() {
  if constexpr (std::is_same_v<Value, bool>) return "BOOL";
  if constexpr (std::is_same_v<Value, std::string>) return "TEXT";
  return "INTEGER";
}

constexpr EntityTable kVariableOrFunction[] = {
    {static_cast<long long>(library::EntityKind::Variable), idOf<library::Variable>()},
    {static_cast<long long>(library::EntityKind::Function), idOf<library::Function>()}};

template <class... E>
struct NamedTables {
  static constexpr EntityTable kAll[] = {
      {static_cast<long long>(library::entityKindOf<E>), idOf<E>()}...};
};

template <class Described>
constexpr Column asColumn(const Described& column) {
  using Value = typename Described::Value;
  Column result{.name = column.name, .declaredType = declaredTypeOf<Value>()};
  if constexpr (std::is_same_v<Value, std::string>) {
    result.kind = ColumnKind::text;
  } else if constexpr (std::is_pointer_v<Value>) {
    result.kind = ColumnKind::reference;
    result.refersTo = idOf<std::remove_cv_t<std::remove_pointer_t<Value>>>();
  } else if constexpr (library::isReference<Value>) {
    result.kind = ColumnKind::entity;
    const bool isDescription = std::is_same_v<Value, library::EntityDescription>;
    result.kindColumn = isDescription ? "Kind" : "EntityKind";
    result.entities = isDescription ? std::span<const EntityTable>(kVariableOrFunction)
                                    : library::EntityElements::Apply<NamedTables>::kAll;
  } else if constexpr (std::is_same_v<Value, std::optional<std::int64_t>>) {
    result.presence = Presence::optional;
  }
  if (column.has(library::kRequired)) result.presence = Presence::required;
  return result;
}

constexpr char inLowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

constexpr bool isSameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return inLowerCase(x) == inLowerCase(y); });
}

/// All columns but that of the row ids, in the order and with the names of the table's declaration.
template <class E>
constexpr auto columnsOf() {
  constexpr std::size_t kCount = std::tuple_size_v<decltype(TableColumns<E>::kColumns)> - 1;
  const auto columns = std::apply(
      [](const auto&, const auto&... others) {
        return std::array<Column, kCount>{asColumn(others)...};
      },
      TableColumns<E>::kColumns);
  if constexpr (requires { TableColumns<E>::kDeclared; }) {
    static_assert(TableColumns<E>::kDeclared.size() == kCount);
    std::array<Column, kCount> declared;
    for (std::size_t i = 0; i < kCount; ++i) {
      const std::string_view name = TableColumns<E>::kDeclared[i];
      const auto found = std::find_if(columns.begin(), columns.end(), [name](const Column& column) {
        return isSameName(column.name, name);
      });
      if (found == columns.end()) throw "a column is declared that the table lacks";
      declared[i] = *found;
      declared[i].name = name;
    }
    return declared;
  } else {
    return columns;
  }
}

template <class Described>
constexpr bool isInKey(const Described& column) {
  return column.has(library::kKey) || column.has(library::kKeyIfLastEmpty);
}

/// Calls visit(name) for each column of the key: those of the position, then the others.
template <class E, class Visit>
constexpr void eachKeyColumn(Visit&& visit) {
  for (const bool isPlace : {true, false}) {
    library::eachColumn<E>([&](const auto& column) {
      if (isInKey(column) && column.has(library::kPlace) == isPlace) visit(column.name);
    });
  }
}

template <class E>
constexpr bool hasConditionalKey() {
  bool has = false;
  library::eachColumn<E>([&](const auto& column) { has |= column.has(library::kKeyIfLastEmpty); });
  return has;
}

template <class E>
constexpr auto keyOf() {
  constexpr std::size_t kCount = [] {
    std::size_t count = 0;
    eachKeyColumn<E>([&](const char*) { ++count; });
    return count;
  }();
  std::array<std::string_view, kCount> key;
  std::size_t i = 0;
  eachKeyColumn<E>([&](const char* name) { key[i++] = name; });
  return key;
}

/// Names of files and identifiers are UNIQUE already. Macro invocations are saved into
/// preprocessing databases only, which one process writes.
template <class E>
constexpr auto indexedOf() {
  if constexpr (requires { TableColumns<E>::kIndexed; }) {
    return std::apply(
        [](const auto&... names) {
          return std::array<std::string_view, sizeof...(names)>{names...};
        },
        TableColumns<E>::kIndexed);
  } else if constexpr (isOnlyInCompilation<E> || std::is_same_v<E, library::Macro>) {
    return keyOf<E>();
  } else {
    return std::array<std::string_view, 0>{};
  }
}

template <class E>
constexpr auto kColumnsOf = columnsOf<E>();
template <class E>
constexpr auto kKeyOf = keyOf<E>();
template <class E>
constexpr auto kIndexedOf = indexedOf<E>();

template <class E>
constexpr Table describe() {
  return {.id = idOf<E>(),
          .name = TableColumns<E>::kName,
          .rowId = library::idColumnOf<E>(),
          .columns = kColumnsOf<E>,
          .key = kKeyOf<E>,
          .isLastForEmptyOnly = hasConditionalKey<E>(),
          .indexed = kIndexedOf<E>,
          .onlyInCompilation = isOnlyInCompilation<E>,
          .isExtension = library::ExtensionElements::has<E>};
}

template <class... E>
struct Descriptions {
  static constexpr std::array<Table, sizeof...(E)> kAll = {describe<E>()...};
};

constexpr auto& kAll = library::AllElements::Apply<Descriptions>::kAll;

static_assert([] {
  for (const Table& table : kAll) {
    for (const std::string_view name : table.key) columnOf(table, name);
    for (const std::string_view name : table.indexed) columnOf(table, name);
  }
  return true;
}());

// clang-format off
static_assert(
    idOf<library::File>() == TableId::file &&
    idOf<library::Identifier>() == TableId::identifier &&
    idOf<library::Macro>() == TableId::macro &&
    idOf<library::MacroInvocation>() == TableId::macroInvocation &&
    idOf<library::MacroInvocationCodeOrigin>() == TableId::macroInvocationCodeOrigin &&
    idOf<library::MacroExpansion>() == TableId::macroExpansion &&
    idOf<library::Type>() == TableId::type &&
    idOf<library::TypeReference>() == TableId::typeReference &&
    idOf<library::Variable>() == TableId::variable &&
    idOf<library::Function>() == TableId::function &&
    idOf<library::ExternalIdentifier>() == TableId::externalIdentifier &&
    idOf<library::Field>() == TableId::field &&
    idOf<library::EnumConstant>() == TableId::enumConstant &&
    idOf<library::Label>() == TableId::label &&
    idOf<library::CallPoint>() == TableId::callPoint &&
    idOf<library::Unit>() == TableId::unit &&
    idOf<library::UnitFile>() == TableId::unitFile &&
    idOf<library::Include>() == TableId::include &&
    idOf<library::Reference>() == TableId::reference &&
    idOf<library::Property>() == TableId::property &&
    kAll.size() == static_cast<std::size_t>(TableId::property));
// clang-format on

}  // namespace

constinit const std::span<const Table> kTables = kAll;

std::string keyExpression(const Table& table, std::size_t part, const std::string& prefix) {
  const std::string column = prefix + std::string(table.key[part]);
  if (!table.isLastForEmptyOnly || part + 1 != table.key.size()) return column;
  return "CASE " + prefix + std::string(table.key[part - 1]) + " WHEN '' THEN " + column +
         " ELSE '' END";
}

}  // namespace fe_db_tools
