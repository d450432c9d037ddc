#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

/// What the tables of a database file hold, column by column, and which tables their references are
/// to. It follows from the library's list of columns (`tables.cpp`); SQL texts are made of it.
namespace fe_db_tools {

/// In table order.
enum class TableId {
  none,
  file,
  identifier,
  macro,
  macroInvocation,
  macroInvocationCodeOrigin,
  macroExpansion,
  type,
  typeReference,
  variable,
  function,
  externalIdentifier,
  field,
  enumConstant,
  label,
  callPoint,
  unit,
  unitFile,
  include,
  reference,
  property,
};

enum class ColumnKind {
  number,
  text,
  reference,  ///< the id of a row of the table `refersTo`
  entity,     ///< the id of a row of one of the tables `entities`, as the column `kind` says
};

/// What a row may hold in place of a value.
enum class Presence {
  usual,     ///< a reference may be NULL or 0, anything else is there
  required,  ///< a reference that must be to a row that exists
  optional,  ///< NULL is a value
};

/// A value of the column that gives the kind of an entity, and its table.
struct EntityTable {
  long long kind;
  TableId table;
};

struct Column {
  std::string_view name;
  ColumnKind kind = ColumnKind::number;
  TableId refersTo = TableId::none;
  Presence presence = Presence::usual;
  std::string_view declaredType = {};  ///< in the tables that only a compilation database has
  std::string_view kindColumn = {};    ///< of an entity
  std::span<const EntityTable> entities = {};
};

struct Table {
  TableId id;
  std::string_view name;
  std::string_view rowId;           ///< the column that references to this table hold
  std::span<const Column> columns;  ///< all others, as the file declares them
  /// By what the library finds a row again, and what a reference to this table prints.
  std::span<const std::string_view> key;
  bool isLastForEmptyOnly;  ///< the last part of the key counts where the one before is empty
  std::span<const std::string_view> indexed;  ///< the columns of the index for it, if it has one
  bool onlyInCompilation;
  bool isExtension;  ///< a compilation database may lack it
};

extern const std::span<const Table> kTables;

inline const Table& tableOf(TableId id) { return kTables[static_cast<std::size_t>(id) - 1]; }

/// What a row has of the part of its key, as SQL; `prefix` comes before the names of columns.
std::string keyExpression(const Table& table, std::size_t part, const std::string& prefix = "");

constexpr const Column& columnOf(const Table& table, std::string_view name) {
  for (const Column& column : table.columns) {
    if (column.name == name) return column;
  }
  throw "a key names a column that the table lacks";
}

}  // namespace fe_db_tools
