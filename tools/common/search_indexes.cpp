#include "search_indexes.h"

#include <string_view>
#include <utility>

#include "fe_database/compilation_database/named_queries.h"
#include "tables.h"

namespace fe_db_tools {
namespace {

namespace library = orvalesca::databases_merger;

SearchIndex makeIndex(std::string_view table, std::string_view what, const std::string& columns,
                      const std::string& condition = "") {
  const std::string on(table), name = on + '_' + std::string(what) + "_Index";
  return {name, on, "CREATE INDEX " + name + " ON " + on + " (" + columns + ")" + condition};
}

SearchIndex keyIndexOf(const Table& table) {
  std::string columns;
  for (const std::string_view column : table.indexed) {
    columns.append(columns.empty() ? "" : ", ").append(column);
  }
  return makeIndex(table.name, "Key", columns,
                   " WHERE " + std::string(table.indexed.front()) + " IS NOT NULL");
}

/// Named like its column, an id like what it is the id of.
SearchIndex queryIndexOn(std::string_view table, std::string_view column) {
  if (column == library::kNameLength) {
    return makeIndex(tableOf(TableId::identifier).name, "Length", std::string(column));
  }
  const std::string_view what =
      column.ends_with("Id") ? column.substr(0, column.size() - 2) : column;
  return makeIndex(table, what, std::string(column));
}

}  // namespace

const std::vector<SearchIndex>& keyIndexes() {
  static const std::vector<SearchIndex> indexes = [] {
    std::vector<SearchIndex> all;
    for (const Table& table : kTables) {
      if (!table.indexed.empty()) all.push_back(keyIndexOf(table));
    }
    return all;
  }();
  return indexes;
}

const std::vector<SearchIndex>& queryIndexes() {
  static const std::vector<SearchIndex> indexes = [] {
    std::vector<SearchIndex> all;
    const auto add = [&all](SearchIndex index) {
      const auto isSame = [&](const SearchIndex& other) { return other.name == index.name; };
      if (std::ranges::none_of(all, isSame)) all.push_back(std::move(index));
    };
    for (const library::NamedQuery& query : library::kNamedQueries) {
      if (query.index != nullptr) add(queryIndexOn(query.table, query.index));
    }
    // fe_db find, which asks for the names in the source, has a query of its own.
    add(queryIndexOn(tableOf(TableId::function).name, "SourceNameId"));
    // Who uses an entity, who includes or reads a file, what a type has.
    add(queryIndexOn(tableOf(TableId::reference).name, "EntityId"));
    add(queryIndexOn(tableOf(TableId::include).name, "IncludedFileId"));
    add(queryIndexOn(tableOf(TableId::unitFile).name, "FileId"));
    add(queryIndexOn(tableOf(TableId::property).name, "OwnerId"));
    return all;
  }();
  return indexes;
}

}  // namespace fe_db_tools
