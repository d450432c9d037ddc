#include "fe_database/compilation_database/table_statement.h"

#include <sqlite3.h>

#include "fe_database/compilation_database/columns.h"
#include "fe_database/compilation_database/trace_level.h"
#include "persistence/debug.h"
#include "persistence/sqlite_report.h"

namespace orvalesca::databases_merger {

using persistence::DatabaseColumn;
using persistence::Debug;

namespace {

/// A fixed column identifies the row and is never rewritten.
bool isFixed(const DatabaseColumn& column) { return column.isUnique() && !column.isOption(); }

/// Collects parts with a separator between them.
class Joined {
 public:
  explicit Joined(const char* separator) : separator(separator) {}
  void add(const std::string& part) {
    if (!text.empty()) text += separator;
    text += part;
  }
  const std::string& str() const { return text; }

 private:
  const char* separator;
  std::string text;
};

/// Names of the columns that the test holds for.
template <class T, class Test>
std::string namesOf(const TableDescription<T>& table, Test&& test) {
  Joined names(", ");
  for (const auto& [column, field] : table.columns) {
    if (test(column)) names.add(column.getName());
  }
  return names.str();
}

bool isPrimary(const DatabaseColumn& column) { return column.isPrimaryKey(); }
bool isNotPrimary(const DatabaseColumn& column) { return !column.isPrimaryKey(); }
bool isNotFixed(const DatabaseColumn& column) { return !isFixed(column); }
bool isAny(const DatabaseColumn&) { return true; }
bool isRewritten(const DatabaseColumn& column) {
  return !column.isPrimaryKey() && !isFixed(column) && (column.flags & kFirstStays) == 0;
}

template <class T>
std::string whereIdText(const TableDescription<T>& table) {
  return " WHERE " + namesOf(table, isPrimary) + "=?";
}

template <class T>
std::string addText(const TableDescription<T>& table) {
  Joined marks(", ");
  for (const auto& [column, field] : table.columns) {
    if (isNotPrimary(column)) marks.add("?");
  }
  return "INSERT INTO " + table.name + " (" + namesOf(table, isNotPrimary) + ") VALUES (" +
         marks.str() + ")";
}

template <class T>
std::string updateText(const TableDescription<T>& table) {
  Joined assignments(", ");
  for (const auto& [column, field] : table.columns) {
    if (isRewritten(column)) assignments.add(column.getName() + "=?");
  }
  return "UPDATE " + table.name + " SET " + assignments.str() + whereIdText(table);
}

/// A plain condition with NULL matches no row, and that is wanted: an element without a file is
/// never found again.
template <class T>
std::string getIdText(const TableDescription<T>& table) {
  Joined conditions(" AND ");
  for (const auto& [column, field] : table.columns) {
    const std::string& name = column.getName();
    if (!column.isUnique()) continue;
    conditions.add(column.isOption() ? "(" + name + " ISNULL OR ? ISNULL OR " + name + "=?)"
                                     : name + "=?");
  }
  return "SELECT " + namesOf(table, isNotFixed) + " FROM " + table.name + " WHERE " +
         conditions.str();
}

template <class T>
std::string listIdText(const TableDescription<T>& table) {
  std::string text = "SELECT " + namesOf(table, isPrimary) + " FROM " + table.name;
  if (table.hasOrderBy) text += " ORDER BY " + table.orderBy;
  return text;
}

/// What a kind's statement selects, and so what column() reads, in column order.
bool isSelected(StatementKind kind, const DatabaseColumn& column) {
  switch (kind) {
    case StatementKind::get_id:
      return isNotFixed(column);
    case StatementKind::get_from_id:
      return isNotPrimary(column);
    case StatementKind::list_id:
    case StatementKind::max_id:
      return isPrimary(column);
    case StatementKind::list_all:
      return true;
    default:
      return false;
  }
}

}  // namespace

void checkBind(int rc, sqlite3_stmt* statement) {
  persistence::reportSqlite(rc, SQLITE_OK, sqlite3_db_handle(statement), statement);
}

template <class T>
void TableStatement<T>::prepare(sqlite3* connection) {
  if (!built) build();
  DatabaseStatement::prepare(connection);
}

template <class T>
void TableStatement<T>::build() {
  if (built) return;
  Debug debug(kTraceLevel<T>, "TableStatement::build()", "building kind=%d ...",
              static_cast<int>(kind));
  const auto is = [this, &debug](const char* trace, std::string sql) {
    text = std::move(sql);
    if (trace != nullptr) debug.print(trace, text.c_str());
  };
  switch (kind) {
    case StatementKind::add:
      is("TableStatement::build: add stmt=%s\n", addText(*table));
      break;
    case StatementKind::update:
      is("TableStatement::build: update stmt=%s\n", updateText(*table));
      break;
    case StatementKind::get_id:
      is("TableStatement::build: get_id stmt=%s\n", getIdText(*table));
      break;
    case StatementKind::get_from_id:
      is("TableStatement::build: get_from_id stmt=%s\n",
         "SELECT " + namesOf(*table, isNotPrimary) + " FROM " + table->name + whereIdText(*table));
      break;
    case StatementKind::list_id:
      is("TableStatement::build: list_id stmt=%s\n", listIdText(*table));
      break;
    case StatementKind::list_all:
      is("list_all stmt=%s\n", "SELECT " + namesOf(*table, isAny) + " FROM " + table->name);
      break;
    case StatementKind::max_id:
      is("max_id stmt=%s\n", "SELECT MAX(" + namesOf(*table, isPrimary) + ") FROM " + table->name);
      break;
    case StatementKind::delete_all:
      is(nullptr, "DELETE FROM " + table->name);
      break;
    default:
      break;  // reserved kinds have no SQL
  }
  for (auto& [column, field] : table->columns) {
    if (isSelected(kind, column)) selected.push_back(field.get());
  }
  built = true;
}

template <class T>
void TableStatement<T>::bind(FrontendDatabase& db, sqlite3* connection, T& element) {
  if (!prepared) prepare(connection);
  Debug debug(kTraceLevel<T>, "TableStatement::bind()", "binding kind=%d ...",
              static_cast<int>(kind));
  if (!isUsable()) return;
  int index = 0;
  switch (kind) {
    case StatementKind::add:
      for (auto& [column, field] : table->columns) {
        if (column.isPrimaryKey()) continue;
        field->bind(element, db, handle, ++index);
        debug.print("binding %s at %d in %s\n", column.getName().c_str(), index, text.c_str());
      }
      debug.print("TableStatement::binding for add done\n");
      break;
    case StatementKind::update:
      for (auto& [column, field] : table->columns) {
        if (!isRewritten(column)) continue;
        field->bind(element, db, handle, ++index);
        debug.print("binding %s at %d in %s\n", column.getName().c_str(), index, text.c_str());
      }
      bindPrimaryKey(db, element, ++index);
      debug.print("binding where at %d in %s\n", index, text.c_str());
      debug.print("TableStatement::binding for update done\n");
      break;
    case StatementKind::get_id:
      for (auto& [column, field] : table->columns) {
        if (!column.isUnique()) continue;
        field->bind(element, db, handle, ++index);
        if (column.isOption()) field->bind(element, db, handle, ++index);
      }
      debug.print("TableStatement::binding for get_id done\n");
      break;
    case StatementKind::get_from_id:
      bindPrimaryKey(db, element, 1);
      debug.print("TableStatement::binding for get_from_id done\n");
      break;
    default:
      break;  // no parameters: binding serves to compile the statement
  }
}

template <class T>
void TableStatement<T>::bindPrimaryKey(FrontendDatabase& db, T& element, int index) {
  for (auto& [column, field] : table->columns) {
    if (column.isPrimaryKey()) field->bind(element, db, handle, index);
  }
}

template <class T>
void TableStatement<T>::column(FrontendDatabase& db, sqlite3*, T& element) {
  Debug debug(kTraceLevel<T>, "TableStatement::column()", "fetching column for kind=%d ...",
              static_cast<int>(kind));
  int index = 0;
  for (GenericDataField<T>* field : selected) field->column(element, db, handle, index++);
  switch (kind) {
    case StatementKind::get_id:
      debug.print("TableStatement::column for get_id done\n");
      break;
    case StatementKind::get_from_id:
      debug.print("TableStatement::column for get_from_id done\n");
      break;
    case StatementKind::list_id:
      debug.print("TableStatement::column for list_id done\n");
      break;
    case StatementKind::list_all:
      debug.print("column for list_all done\n");
      break;
    case StatementKind::max_id:
      debug.print("TableStatement::column for max_id done\n");
      break;
    default:
      break;
  }
}

template class TableStatement<File>;
template class TableStatement<Identifier>;
template class TableStatement<Macro>;
template class TableStatement<MacroInvocation>;
template class TableStatement<MacroInvocationCodeOrigin>;
template class TableStatement<MacroExpansion>;
template class TableStatement<Type>;
template class TableStatement<TypeReference>;
template class TableStatement<Variable>;
template class TableStatement<Function>;
template class TableStatement<ExternalIdentifier>;
template class TableStatement<Field>;
template class TableStatement<EnumConstant>;
template class TableStatement<Label>;
template class TableStatement<CallPoint>;
template class TableStatement<Unit>;
template class TableStatement<UnitFile>;
template class TableStatement<Include>;
template class TableStatement<Reference>;
template class TableStatement<Property>;

}  // namespace orvalesca::databases_merger
