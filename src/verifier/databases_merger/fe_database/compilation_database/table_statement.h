#pragma once

#include "fe_database/compilation_database/table_description.h"
#include "persistence/statement.h"

namespace orvalesca::databases_merger {

/// What a statement of a table does; the values index a table's statements. 2, 3, 8 and 11 are
/// reserved: statements of these kinds exist and have no SQL.
enum class StatementKind : std::uint32_t {
  add = 0,
  update = 1,
  get_id = 4,
  get_from_id = 5,
  list_id = 6,
  list_all = 7,
  max_id = 9,
  delete_all = 10,
};
inline constexpr std::uint32_t kStatementKinds = 12;

/// One prepared statement of one table. Its SQL text is generated from the table's columns on
/// first use, and kept for the statement's life.
///
/// Use:      bind(), then exec(); or step() and column() for each row; then reset().
/// Lifetime: the table outlives the statement; the element stays unchanged until exec() or reset().
/// Errors:   none of its own; prepare() and the descriptors report, and bind() carries on.
/// Cursors:  one at a time; a second walk before the end of the first continues the first.
template <class T>
class TableStatement : public persistence::DatabaseStatement {
 public:
  TableStatement(TableDescription<T>& table, StatementKind kind)
      : DatabaseStatement(false), table(&table), kind(kind) {}

  void prepare(sqlite3* connection) override;
  void build();
  void bind(FrontendDatabase& db, sqlite3* connection, T& element);
  void column(FrontendDatabase& db, sqlite3* connection, T& element);

  /// False after a failed compilation, which has been reported: there is nothing to step.
  bool isUsable() const { return handle != nullptr; }

 private:
  void bindPrimaryKey(FrontendDatabase& db, T& element, int index);

  TableDescription<T>* table;
  StatementKind kind;
  bool built = false;
  std::vector<GenericDataField<T>*> selected;  ///< owned by the table; what column() fills in
};

}  // namespace orvalesca::databases_merger
