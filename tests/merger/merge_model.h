#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// What a merge means, in the plainest containers and without a line of the library.
namespace fe_db_tests::merge_model {

struct Column {
  /// `*` belongs to the key, `+` adds up, `|` unites bits, `?` holds 0 or 1, `'` is text; a row
  /// without its `!` reference is left out, any other reference that leads nowhere is NULL.
  std::string marks, name;
  std::string referred;  ///< a table; of an entity, "Entity"
  bool has(char mark) const { return marks.find(mark) != std::string::npos; }
};
struct Table {
  std::string name;
  std::vector<Column> columns;
};

/// The merged tables, each behind those that it refers to.
const std::vector<Table>& tables();
/// The table that this column refers to in a row of this kind, or nothing.
std::string referredTable(const Column& column, std::uint32_t kind);

/// Numbers in decimal, references as keys.
using Row = std::map<std::string, std::optional<std::string>>;

struct Content {
  std::map<std::string, std::map<std::string, Row>> rows;  ///< by table and key
  std::map<std::string, std::size_t> leftOut;              ///< rows, by table
  std::set<std::string> reports;                           ///< one a table and fate
  bool hasDuplicates = false;
};

/// What a file holds; of rows with one key the first.
Content read(const std::string& path);
/// The same as a merge takes it in.
Content load(const std::string& path);
/// Adds one source.
void fold(Content& target, const Content& source);

}  // namespace fe_db_tests::merge_model
