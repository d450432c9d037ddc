#include "index_changes.h"

#include "search_indexes.h"

namespace fe_db_tools {

using orvalesca::databases_merger::CompilationDatabase;

namespace {

void drop(CompilationDatabase& db, const SearchIndex& index) {
  db.execute("DROP INDEX IF EXISTS " + std::string(index.name));
}

}  // namespace

void dropSearchIndexes(CompilationDatabase& db) {
  eachSearchIndex([&](const SearchIndex& index) { drop(db, index); });
}

void makeSearchIndexes(CompilationDatabase& db, const std::set<std::string>& known) {
  eachSearchIndex([&](const SearchIndex& index) {
    if (known.count(index.sql) != 0) return;
    drop(db, index);  // another one may bear the name
    db.execute(index.sql);
  });
  db.execute(kLengthIndexHint);
}

}  // namespace fe_db_tools
