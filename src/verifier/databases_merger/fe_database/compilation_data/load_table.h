#pragma once

#include <functional>

#include "fe_database/compilation_database/row_validity.h"
#include "fe_db/compilation_data.h"
#include "fe_db/compilation_database.h"

namespace orvalesca::databases_merger {

/// Reads a whole table, once per process: each row is an occurrence, and leaves its id on its
/// element. An empty filter takes every row.
template <class T>
void CompilationData::loadTable(FrontendDatabase& db, const std::function<bool(T&)>& filter) {
  if (T::isLoaded) return;
  if (!db.has<T>()) {
    T::isLoaded = true;
    return;
  }
  T row;
  bool first = true;
  RowTally leftOut;
  for (;;) {
    const unsigned long leftOutReferences = db.getLeftOutReferences();
    const long long id = db.listALL(first, row);
    if (id == 0) break;
    if (filter && !filter(row)) continue;
    if (!canBecomeElement(row, db.getLeftOutReferences() != leftOutReferences)) {
      leftOut.note(id);
      db.noteLeftOutRow(TableColumns<T>::kName);
      db.enterInIdCache<T>(id, nullptr);
      continue;
    }
    if (T* element = emplaceFromDB(row, /*accumulate=*/true)) {
      element->setId(id);
      db.enterInIdCache(id, element);
    }
  }
  leftOut.report<T>(db, "skipped: what they refer to is missing");
  T::isLoaded = true;
}

}  // namespace orvalesca::databases_merger
