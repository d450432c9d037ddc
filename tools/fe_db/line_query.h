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
/// Row ids are not in it. A reference prints the key of the row that it leads to, the parts joined
/// by ':' (path:line:column:name; a type has its kind behind, an invocation its macro's parts, line
/// and column in the preprocessed text). Different rows print different lines: whatever could be
/// taken for something else is escaped or marked.
///
///     NULL, 0, !77    a reference that is NULL, is 0, leads nowhere; `!null` is a key that is NULL
///     !integer 5      a value of another type than its column has (integer, real, text, blob)
///     \x4eULL         the text "NULL"; also "0" in a reference, and any text that begins with '!'
class LineQuery {
 public:
  explicit LineQuery(const Table& table);

  /// The columns of the query, separated by commas, are what appendLine() reads; the tables, with
  /// joins, are where they come from.
  const std::string& columns() const { return columns_; }
  const std::string& tables() const { return tables_; }

  void appendLine(std::string& line, sqlite3_value** cells) const;

 private:
  struct Item;

  /// A row that a reference may lead to.
  struct Target {
    int foundCell;  ///< its row id, NULL when there is no such row
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

  const Table& table_;
  std::vector<Item> items_;
  std::string columns_;
  std::string tables_;
  int cellCount_ = 0;
  int joinCount_ = 0;
};

}  // namespace fe_db_tools
