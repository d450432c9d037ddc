#pragma once

#include <set>
#include <sstream>
#include <string>

#include "sql_rows.h"
#include "tables.h"

namespace fe_db_tests {

inline std::string cell(const std::string& alias, const fe_db_tools::Column& column);

/// The key of the row of this id, its parts joined by ':'.
inline std::string keyOf(fe_db_tools::TableId id, const std::string& alias,
                         const std::string& reference) {
  const fe_db_tools::Table& table = fe_db_tools::tableOf(id);
  std::string key;
  for (const std::string_view part : table.key) {
    key += key.empty() ? "" : "||':'||";
    key += "ifnull(" + cell(alias, columnOf(table, part)) + ",'-')";
  }
  return "(SELECT " + key + " FROM " + std::string(table.name) + " " + alias + " WHERE " + alias +
         ".rowid=" + reference + ")";
}

inline std::string cell(const std::string& alias, const fe_db_tools::Column& column) {
  using fe_db_tools::ColumnKind;
  using fe_db_tools::TableId;
  const std::string value = alias + "." + std::string(column.name), inner = alias + "T";
  if (column.kind == ColumnKind::reference) return keyOf(column.refersTo, inner, value);
  if (column.kind != ColumnKind::entity) return value;
  return "CASE " + alias + ".Kind WHEN 0 THEN " + keyOf(TableId::variable, inner, value) +
         " WHEN 1 THEN " + keyOf(TableId::function, inner, value) + " ELSE " + value + " END";
}

/// What the fifteen tables of a compilation database hold, whatever the ids of their rows: each
/// reference replaced by the key of its row, rows sorted. The columns come from the list that the
/// programs have; what they are is no concern of the tests that compare contents.
inline std::string content(const std::string& path) {
  const RawConnection connection(path);
  std::string text;
  for (const fe_db_tools::Table& table : fe_db_tools::kTables) {
    if (table.isExtension) continue;  // see cross_reference.h
    const std::string name(table.name);
    std::string select = "SELECT '" + name + "'";
    for (const fe_db_tools::Column& column : table.columns) {
      select.append(",").append(cell("T", column));
    }
    std::istringstream lines(connection.rows(select + " FROM " + name + " T"));
    std::multiset<std::string> sorted;
    for (std::string line; std::getline(lines, line);) sorted.insert(line);
    for (const std::string& line : sorted) text += line + '\n';
  }
  return text;
}

}  // namespace fe_db_tests
