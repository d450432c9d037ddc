#include "fe_database/compilation_database/stored_rows.h"
#include "merger/merger_impl.h"

namespace orvalesca::databases_merger {

/// Nothing accumulates: rows of one key become one element, which keeps the values of the first and
/// takes the id of the last; every one of their ids leads to it.
template <class T>
void mergerImpl::loadTable() {
  T row;
  bool first = true;
  RowTally leftOut, withoutReference, nameless;
  for (;;) {
    const unsigned long lostBefore = database->getLeftOutReferences();
    const long long id = database->listALL(first, row);
    if (id == 0) break;
    if (!canBeMerged(row)) {
      leftOut.note(id);
      database->noteLeftOutRow<T>();
      database->enterInIdCache<T>(id, nullptr);
      continue;
    }
    T* element = dataset->emplaceFromDB(row, /*accumulate=*/false);
    if (element == nullptr) {
      nameless.note(id);
      continue;
    }
    if (database->getLeftOutReferences() != lostBefore) {
      withoutReference.note(id);
      database->noteLostReference<T>();
    }
    element->setId(id);
    database->enterInIdCache(id, element);
  }
  leftOut.report<T>(*database, "left out, as what they cannot do without is missing");
  withoutReference.report<T>(*database, "taken without a reference that leads nowhere");
  nameless.report<T>(*database, "left out, as their name is empty");
}

void mergerImpl::loadDataFromDB() {
  isHalfDone = true;
  MergedElements::each([this]<class T>() { loadTable<T>(); });
  isHalfDone = false;
}

}  // namespace orvalesca::databases_merger
