#pragma once

#include "fe_database/compilation_database/table_description.h"
#include "persistence/statement.h"

namespace orvalesca::databases_merger {

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
