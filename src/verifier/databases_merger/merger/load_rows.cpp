#include "fe_database/compilation_data/element_store.h"
#include "fe_database/compilation_database/row_validity.h"
#include "merger/merger_impl.h"

namespace orvalesca::databases_merger {

/// The element that a row becomes, as it is: nothing counts it as an occurrence. Copying the row
/// into the container costs one hash, where looking for it first and then emplacing costs two.
template <class T>
T* mergerImpl::insertRow(T& row) {
  if constexpr (std::is_same_v<T, EnumConstant> || std::is_same_v<T, Label>) {
    if (row.getIdentifier()->getName().empty()) return nullptr;
  } else if constexpr (std::is_same_v<T, Function>) {
    row.setRefCount(0);
  } else if constexpr (std::is_same_v<T, ExternalIdentifier>) {
    Identifier* identifier = row.getIdentifier();
    identifier->setKind(identifier->getKind() | IdentifierKind::External);
  } else if constexpr (std::is_same_v<T, Unit>) {
    row.setIsFolded(true);
  }
  if constexpr (std::is_same_v<T, Macro>) {
    return dataset->emplaceFromDB(row, /*accumulate=*/false);
  } else if constexpr (requires { row.getEntity(); }) {
    // Two rows of one key may have become the one entity of two rows here.
    T& element = dataset->insertElement(row);
    element.update(row);
    return &element;
  } else {
    return &dataset->insertElement(row);
  }
}

/// Nothing accumulates: rows of one key become one element, which keeps the values of the first and
/// takes the id of the last; every one of their ids references it.
template <class T>
void mergerImpl::loadTable() {
  if (!database->has<T>()) return;
  T row;
  bool first = true;
  RowTally leftOut, withoutReference, nameless;
  const std::size_t rows = database->guessRowCount<T>();
  dataset->reserveElements<T>(rows);
  database->reserveIdCache<T>(rows);
  for (;;) {
    const unsigned long lostBefore = database->getLeftOutReferences();
    const long long id = database->listALL(first, row);
    if (id == 0) break;
    if (!canBeMerged(row)) {
      leftOut.note(id);
      database->noteLeftOutRow(TableColumns<T>::kName);
      database->enterInIdCache<T>(id, nullptr);
      continue;
    }
    T* element = insertRow(row);
    if (element == nullptr) {
      nameless.note(id);
      continue;
    }
    if (database->getLeftOutReferences() != lostBefore) {
      withoutReference.note(id);
      database->noteLostReference(TableColumns<T>::kName);
    }
    element->setId(id);
    database->enterInIdCache(id, element);
  }
  leftOut.report<T>(*database, "skipped: a required reference or name is missing");
  withoutReference.report<T>(*database, "kept, with a dangling reference set to NULL");
  nameless.report<T>(*database, "skipped: their name is empty");
}

void mergerImpl::loadDataFromDB() {
  isIncomplete = true;
  MergedElements::each([this]<class T>() { loadTable<T>(); });
  isIncomplete = false;
}

}  // namespace orvalesca::databases_merger
