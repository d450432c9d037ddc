#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>

#include "fe_database/compilation_database/data_field.h"

/// The seven kinds of value and how each passes to and from SQLite.
namespace orvalesca::databases_merger {

template <>
struct ColumnValue<long long> {
  static int bind(sqlite3_stmt* statement, int index, long long value) {
    return sqlite3_bind_int64(statement, index, value);
  }
  static long long column(FrontendDatabase&, sqlite3_stmt* statement, int index) {
    return sqlite3_column_int64(statement, index);
  }
};

/// The 32 bits as they are: 2^31 and more are stored as negative numbers and come back unchanged.
template <>
struct ColumnValue<std::uint32_t> {
  static int bind(sqlite3_stmt* statement, int index, std::uint32_t value) {
    return sqlite3_bind_int(statement, index, static_cast<int>(value));
  }
  static std::uint32_t column(FrontendDatabase&, sqlite3_stmt* statement, int index) {
    return static_cast<std::uint32_t>(sqlite3_column_int64(statement, index));
  }
};

/// Enumerations pass as unsigned 32-bit numbers, those of 64 bits as they are.
template <class E>
requires std::is_enum_v<E>
struct ColumnValue<E> {
  using U = std::conditional_t<sizeof(E) == sizeof(long long), long long, std::uint32_t>;
  using Number = ColumnValue<U>;
  static int bind(sqlite3_stmt* statement, int index, E value) {
    return Number::bind(statement, index, static_cast<U>(value));
  }
  static E column(FrontendDatabase& db, sqlite3_stmt* statement, int index) {
    return static_cast<E>(Number::column(db, statement, index));
  }
};

template <>
struct ColumnValue<bool> {
  static int bind(sqlite3_stmt* statement, int index, bool value) {
    return sqlite3_bind_int(statement, index, value ? 1 : 0);
  }
  static bool column(FrontendDatabase&, sqlite3_stmt* statement, int index) {
    return sqlite3_column_int64(statement, index) != 0;
  }
};

/// Bound without a copy, up to the first NUL. NULL reads as the empty string.
template <>
struct ColumnValue<std::string> {
  static int bind(sqlite3_stmt* statement, int index, const std::string& value) {
    return sqlite3_bind_text(statement, index, value.c_str(), -1, SQLITE_STATIC);
  }
  static void column(FrontendDatabase&, sqlite3_stmt* statement, int index, std::string& value) {
    const unsigned char* text = sqlite3_column_text(statement, index);
    value = text != nullptr ? reinterpret_cast<const char*>(text) : "";
  }
};

template <>
struct ColumnValue<std::optional<std::int64_t>> {
  static int bind(sqlite3_stmt* statement, int index, std::optional<std::int64_t> value) {
    return value.has_value() ? sqlite3_bind_int64(statement, index, *value)
                             : sqlite3_bind_null(statement, index);
  }
  static std::optional<std::int64_t> column(FrontendDatabase&, sqlite3_stmt* statement, int index) {
    if (sqlite3_column_type(statement, index) == SQLITE_NULL) return std::nullopt;
    return sqlite3_column_int64(statement, index);
  }
};

/// A reference is the row id of the element: NULL for none, 0 for one that has no row yet. Reading
/// it puts the referred element into the dataset: the one call from rows back up to the dataset.
template <class E>
struct ColumnValue<E*> {
  static int bind(sqlite3_stmt* statement, int index, const E* value) {
    return value == nullptr ? sqlite3_bind_null(statement, index)
                            : sqlite3_bind_int64(statement, index, value->getId());
  }
  static E* column(FrontendDatabase& db, sqlite3_stmt* statement, int index) {
    return db.get<E>(sqlite3_column_int64(statement, index));
  }
  /// The same, of an element that is there: a row of the cross-reference brings in no other.
  static E* known(FrontendDatabase& db, sqlite3_stmt* statement, int index) {
    return db.getKnown<E>(sqlite3_column_int64(statement, index));
  }
};

/// The id of the entity; its kind has a column of its own, which is read before.
template <>
struct ColumnValue<EntityDescription> {
  static int bind(sqlite3_stmt* statement, int index, const EntityDescription& value) {
    const bool hasRow = value.hasEntity() && value.entity != nullptr;
    return sqlite3_bind_int64(statement, index, hasRow ? value.entity->getId() : 0);
  }
  static EntityDescription column(FrontendDatabase& db, sqlite3_stmt* statement, int index,
                                  EntityDescription value) {
    const long long id = sqlite3_column_int64(statement, index);
    if (value.kind == EntityKind::Variable) value.entity = db.get<Variable>(id);
    if (value.kind == EntityKind::Function) value.entity = db.get<Function>(id);
    return value;
  }
};

/// The same, of an element that is there.
template <>
struct ColumnValue<EntityReference> {
  static int bind(sqlite3_stmt* statement, int index, const EntityReference& value) {
    return sqlite3_bind_int64(statement, index,
                              value.entity != nullptr ? value.entity->getId() : 0);
  }
  static EntityReference column(FrontendDatabase& db, sqlite3_stmt* statement, int index,
                                EntityReference value) {
    value.entity = nullptr;
    EntityElements::each([&]<class T>() {
      if (value.kind != entityKindOf<T>) return;
      value.entity = db.getKnown<T>(sqlite3_column_int64(statement, index));
    });
    return value;
  }
};

}  // namespace orvalesca::databases_merger
