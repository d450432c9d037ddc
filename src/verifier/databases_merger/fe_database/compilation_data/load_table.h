#pragma once

#include <functional>

#include "fe_database/compilation_database/stored_rows.h"
#include "fe_db/compilation_data.h"
#include "fe_db/compilation_database.h"
#include "persistence/sqlite_report.h"

namespace orvalesca::databases_merger {

/// Reads a whole table, once per process: each row is a sighting, and leaves its id on its element.
/// An empty filter takes every row.
template <class T>
void CompilationData::loadTable(FrontendDatabase& db, const std::function<bool(T&)>& filter) {
  if (T::isLoaded) return;
  T row;
  bool first = true;
  std::size_t leftOut = 0;
  long long firstLeftOut = 0;
  for (;;) {
    const unsigned long leftOutReferences = db.getLeftOutReferences();
    const long long id = db.listALL(first, row);
    if (id == 0) break;
    if (filter && !filter(row)) continue;
    if (!canBecomeElement(row, db.getLeftOutReferences() != leftOutReferences)) {
      if (leftOut++ == 0) firstLeftOut = id;
      db.noteLeftOutRow<T>();
      db.enterInIdCache<T>(id, nullptr);
      continue;
    }
    if (T* element = emplaceFromDB(row, /*accumulate=*/true)) {
      element->setId(id);
      db.enterInIdCache(id, element);
    }
  }
  if (leftOut != 0) {
    persistence::reportMessage(
        "%s: table %s: %zu rows left out, the first with id %lld: what they refer to is missing",
        db.getPath().c_str(), db.tableName<T>(), leftOut, firstLeftOut);
  }
  T::isLoaded = true;
}

}  // namespace orvalesca::databases_merger
