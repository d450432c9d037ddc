#pragma once

#include <algorithm>
#include <string>
#include <vector>

/// The indexes that a compilation database may have, for searching only: a file without them gives
/// the same answers. A merge drops them by their names and makes them again.
namespace fe_db_tools {

struct SearchIndex {
  std::string name;
  std::string table;
  std::string sql;
};

/// The indexes that look up a row by its key, as a save into a file with rows in it does.
///
/// No index may change what a query without ORDER BY answers first: several searches take the
/// first row. Each of these is therefore partial. `X IS NOT NULL` follows from `X=?`, so that a key
/// look-up uses the index, and from nothing that the whole-table reads and the searches by name,
/// count or callee ask, so that SQLite never walks the index there in place of the table. Equality
/// on all of its columns gives rows in row order. Rows without a file are not in it, and no key
/// look-up finds them.
///
/// None holds all columns of its table: enum constants and labels go without the identifier,
/// external identifiers without the kind.
const std::vector<SearchIndex>& keyIndexes();

/// The indexes that the named searches of the library filter on: by name, by the length of names,
/// by count, by caller and callee; and by the name in the source, which fe_db find asks for; and
/// those of the cross-reference. One column each, compared by equality (the length: from a least
/// one on), so that the rows of one value come in row order, as they do without the index.
const std::vector<SearchIndex>& queryIndexes();

/// Tells SQLite's planner of a small table of names. Knowing nothing, it takes the conditions on
/// types for more selective than a least length, and walks all types to find the long names among
/// them. Gone with the index.
inline constexpr char kLengthIndexHint[] =
    "ANALYZE Identifier_Length_Index;"
    "DELETE FROM sqlite_stat1 WHERE idx = 'Identifier_Length_Index';"
    "INSERT INTO sqlite_stat1 VALUES ('Identifier', 'Identifier_Length_Index', '1000 10')";

/// Calls visit(index) for each index of either list until one answers false; true when none does.
template <class Visit>
bool everySearchIndex(Visit&& visit) {
  return std::ranges::all_of(keyIndexes(), visit) && std::ranges::all_of(queryIndexes(), visit);
}

/// Calls visit(index) for each index of either list.
template <class Visit>
void eachSearchIndex(Visit&& visit) {
  everySearchIndex([&](const SearchIndex& index) { return visit(index), true; });
}

}  // namespace fe_db_tools
