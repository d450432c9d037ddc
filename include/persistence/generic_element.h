#pragma once

#include "persistence/export.h"

namespace persistence {

/// Base of every stored element: its row id, its place in a merge, and whether it differs from its
/// row.
/// Copyable; a copy takes every field. Nothing here is virtual: elements are plain values.
class SHARED_PERSISTENCE_EXPORT GenericElement {
 public:
  explicit GenericElement(long long id = 0, unsigned place = 0) : id(id), place(place) {}

  /// Row ids count from 1; 0 means that no row is known for the element. An id belongs to one
  /// database at a time.
  long long getId() const { return id; }
  void setId(long long newId) { id = newId; }

  /// Its number in the insertion order of its class, from 0; a merge finds elements by it. resetIds
  /// clears it.
  unsigned getPlace() const { return place; }
  void setPlace(unsigned newPlace) { place = newPlace; }

  /// Back to an element without a row, in whichever database.
  void forgetRow() {
    id = 0;
    place = 0;
  }

  /// Process-wide. True: an element without an id is inserted at once, without looking for its
  /// row first. Set it before the first dataset is made, whose databases read it when constructed.
  static bool getOptimisticInsert() { return optimisticInsert; }
  static void setOptimisticInsert(bool on) { optimisticInsert = on; }

 protected:
  static bool optimisticInsert;

 private:
  long long id;
  unsigned place;

 public:
  /// The element differs from its row. Set by merging occurrences; no save clears it.
  bool dirty = false;
};

}  // namespace persistence
