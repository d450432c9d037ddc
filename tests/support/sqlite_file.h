#pragma once

#include <string>

#include "compilation_schema.h"
#include "sql_rows.h"
#include "tables.h"

/// Small database files with just the rows that a test is about.
namespace fe_db_tests {

/// A column that a table has got since the tests wrote down its columns is 0 or empty in their
/// rows, so that no row is damaged for lack of it.
inline void completeRows(const RawConnection& connection) {
  for (const auto& [name, written] : kWrittenColumns) {
    for (const fe_db_tools::Table& table : fe_db_tools::kTables) {
      for (const fe_db_tools::Column& column : table.columns) {
        const std::string text(column.name), list = std::string(", ") + written + ",";
        if (table.name != name || list.find(", " + text + ",") != list.npos) continue;
        const bool isText = column.kind == fe_db_tools::ColumnKind::text;
        connection.rows("CREATE TEMP TRIGGER " + (name + text) + " AFTER INSERT ON " + name +
                        " BEGIN UPDATE " + name + " SET " + text + (isText ? "=''" : "=0") +
                        " WHERE rowid=NEW.rowid AND " + text + " IS NULL; END");
      }
    }
  }
}

inline std::string compilationFile(const std::string& path, const std::string& sql) {
  fe_db_tools::createCompilationDatabase(path, fe_db_tools::KeyIndexes::no);
  const RawConnection connection(path);
  completeRows(connection);
  EXPECT_EQ(connection.rows(withColumns(sql)), "");
  return path;
}

inline std::string preprocessingFile(const std::string& path, const std::string& sql) {
  fe_db_tools::createPreprocessingDatabase(path);
  execute(path, sql);
  return path;
}

}  // namespace fe_db_tests
