#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>
#include <string_view>

/// What a database file holds, read and written past the library.
namespace fe_db_tests {

/// A plain connection; closes itself.
class RawConnection {
 public:
  explicit RawConnection(const std::string& path) {
    if (sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) != SQLITE_OK) {
      ADD_FAILURE() << path << ": " << sqlite3_errmsg(handle);
    }
    sqlite3_busy_timeout(handle, 60'000);
    sqlite3_trace_v2(handle, 0, nullptr, nullptr);
  }
  ~RawConnection() { sqlite3_close(handle); }
  RawConnection(const RawConnection&) = delete;
  RawConnection& operator=(const RawConnection&) = delete;

  /// The rows of a query, or of several: columns separated by '|', a newline after each row,
  /// NULL as "NULL".
  std::string rows(const std::string& sql) const {
    std::string text;
    char* error = nullptr;
    if (sqlite3_exec(handle, sql.c_str(), appendRow, &text, &error) != SQLITE_OK) {
      ADD_FAILURE() << sql << ": " << error;
    }
    sqlite3_free(error);
    return text;
  }

  sqlite3* get() const { return handle; }

 private:
  static int appendRow(void* text, int columns, char** values, char**) {
    for (int i = 0; i < columns; ++i) {
      if (i > 0) *static_cast<std::string*>(text) += '|';
      *static_cast<std::string*>(text) += values[i] != nullptr ? values[i] : "NULL";
    }
    *static_cast<std::string*>(text) += '\n';
    return 0;
  }

  sqlite3* handle = nullptr;
};

inline std::string rows(const std::string& path, const std::string& sql) {
  return RawConnection(path).rows(sql);
}

/// The columns of a row that is written without their names. Fixed here, so that a table can get
/// another column, which is NULL in these rows, without a change to any of them.
inline constexpr const char* kWrittenColumns[][2] = {
    {"File", "FileId, Path, Kind, Lang, Huge"},
    {"Identifier", "IdentifierId, Name, Count, Kind"},
    {"Macro",
     "MacroId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount, Value, ValueIsSigned, "
     "IsObjectLike, IsVariadic, IsCommandLineDefinition, IsPredefined, Text"},
    {"MacroInvocation",
     "MacroInvocationId, MacroId, FileId, LineNum, ColNum, ppFileId, ppLineNum, ppStartColNum, "
     "ppEndColNum"},
    {"MacroInvocationCodeOrigin",
     "FileId, LineNum, ColNum, MacroInvocationId, OffsetColumnInInvocation, "
     "EndOffsetColumnInInvocation, IsParameter, TokenString"},
    {"MacroExpansion", "MacroCall, ExpandedCode, FileId, LineNum, ColNum, PpLineNum, PpColNum"},
    {"Type",
     "TypeId, IdentifierId, Unnamed, Local, Incomplete, DeclFileId, DeclLineNum, DeclColNum, Kind, "
     "RefCount, RefTagCount"},
    {"TypeReference", "DeclaredType, ReferencedType"},
    {"Variable",
     "VariableId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum, TypeId, isDefined, Linkage, "
     "RefCount"},
    {"Function",
     "FunctionId, IdentifierId, SourceNameId, DeclFileId, DeclLineNum, DeclColNum, isDefined, "
     "isSpecial, Effect, Linkage, RefCount"},
    {"ExternalIdentifier", "ExternalIdentifierId, IdentifierId, Kind, EntityId"},
    {"Field", "FieldId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount"},
    {"EnumConstant", "EnumConstantId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum"},
    {"Label", "LabelId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum"},
    {"CallPoint", "CallPointId, FileId, LineNum, ColNum, IsValueUsed, CallerId, CalleeId"},
};

/// Names the columns in each `INSERT INTO Table VALUES` and `INSERT INTO Table SELECT` that does
/// not; `SELECT *` copies whole rows and stays.
inline std::string withColumns(std::string sql) {
  for (const auto& [table, columns] : kWrittenColumns) {
    const std::string insert = std::string("INSERT INTO ") + table + " ";
    for (std::size_t at = 0; (at = sql.find(insert, at)) != std::string::npos;) {
      at += insert.size();
      const std::string_view rest = std::string_view(sql).substr(at);
      if (rest.starts_with("VALUES") ||
          (rest.starts_with("SELECT") && !rest.starts_with("SELECT *"))) {
        sql.insert(at, "(" + std::string(columns) + ") ");
      }
    }
  }
  return sql;
}

/// The rows of a table, with the columns above.
inline std::string writtenRows(const std::string& path, std::string_view of) {
  std::string text;
  for (const auto& [table, columns] : kWrittenColumns) {
    if (table == of) text = rows(path, std::string("SELECT ") + columns + " FROM " + table);
  }
  return text;
}

/// Runs statements that answer nothing; rows may be written `withColumns`. A failure in a fixture's
/// constructor ends the test.
inline void execute(const std::string& path, const std::string& sql) {
  ASSERT_EQ(rows(path, withColumns(sql)), "");
}

/// Schema and rows of every table, ids included.
inline std::string dump(const std::string& path) {
  const RawConnection connection(path);
  std::string text = connection.rows("SELECT sql FROM sqlite_schema ORDER BY name");
  const std::string selects = connection.rows(
      "SELECT 'SELECT ''' || name || ''', rowid, * FROM ' || name || ';' FROM sqlite_schema "
      "WHERE type = 'table' ORDER BY name");
  return text + connection.rows(selects);
}

inline std::string integrity(const std::string& path) {
  return rows(path, "PRAGMA integrity_check");
}

}  // namespace fe_db_tests
