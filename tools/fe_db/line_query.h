#pragma once

#include <sqlite3.h>

#include <string>
#include <vector>

#include "canonical_text.h"
#include "tables.h"

namespace fe_db_tools {

/// The query that reads one table for printing, and how a row of it becomes a line:
///
///     Function<TAB>IdentifierId=main<TAB>...<TAB>DeclFileId=src/a.c<TAB>DeclLineNum=3<TAB>...
///
/// Row ids are not in it. A reference prints the key of the referenced row, the parts joined
/// by ':' (path:line:column:name; a type has its kind after it, an invocation its macro's parts,
/// line and column in the preprocessed text). Different rows print different lines: whatever could
/// be taken for something else is escaped or marked.
///
///     NULL, 0, !77    a reference that is NULL, 0, dangling; `!null` is a key that is NULL
///     !integer 5      a value of another type than its column has (integer, real, text, blob)
///     \x4eULL         the text "NULL"; also "0" in a reference, and any text that begins with '!'
class LineQuery {
 public:
  explicit LineQuery(const Table& table);

  /// The columns of the query, separated by commas, are what appendLine() reads; the tables, with
  /// joins, are where they come from.
  const std::string& getColumns() const { return columns; }
  const std::string& getTables() const { return tables; }

  void appendLine(std::string& line, sqlite3_value** cells) const;

 private:
  struct Item;

  /// A row that may be referenced.
  struct Target {
    int foundCell;  ///< its row id, NULL if there is no such row
    std::vector<Item> key;
  };
  struct Item {
    ColumnKind kind;
    int cell;
    std::vector<Target> targets;
  };
  enum class Place { column, key };

  Item addItem(const std::string& alias, const Column& column, const std::string& expression);
  Target addTarget(TableId id, const std::string& reference, const std::string& condition);
  int addCell(const std::string& expression);

  static void appendItem(std::string& line, const Item& item, sqlite3_value** cells, Place place,
                         Colons colons);
  static void appendReference(std::string& line, const Item& item, sqlite3_value** cells,
                              Colons colons);
  static void appendKey(std::string& line, const Target& target, sqlite3_value** cells,
                        Colons colons);

  const Table& table;
  std::vector<Item> items;
  std::string columns;
  std::string tables;
  int cellCount = 0;
  int joinCount = 0;
};

}  // namespace fe_db_tools
