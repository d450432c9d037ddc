#pragma once

#include <boost/unordered_map.hpp>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "fe_database/compilation_database/id_cache.h"
#include "fe_db/compilation_database.h"

namespace orvalesca::databases_merger {

/// The tables whose stored rows a save folds into the dataset before it writes.
using FoldedElements = TypeList<File, Identifier, Type, Unit>;

/// The columns that a further occurrence of an element changes; the others are written once.
inline auto countedColumns(const Identifier& e) { return std::tuple(e.getCount(), e.getKind()); }
inline auto countedColumns(const Macro& e) { return std::tuple(e.getRefCount(), e.getValue()); }
inline auto countedColumns(const Type& e) {
  return std::tuple(e.getRefCount(), e.getRefTagCount(), e.getUnnamed(), e.getLocal(),
                    e.getIncomplete());
}
inline auto countedColumns(const Variable& e) { return std::tuple(e.getRefCount()); }
inline auto countedColumns(const Function& e) { return std::tuple(e.getRefCount()); }
inline auto countedColumns(const Field& e) { return std::tuple(e.getRefCount()); }
inline auto countedColumns(const Reference& e) { return std::tuple(e.getRoles()); }
inline auto countedColumns(const Property& e) { return std::tuple(e.getFlags()); }
template <class T>
std::tuple<> countedColumns(const T&) {
  return {};
}

/// What is known of an element's row before a further save.
enum class RowState {
  unknown,   ///< whether it has one
  current,   ///< it holds what the element has counted
  outdated,  ///< the element has counted something since
};

/// What the last save of a dataset has left in the compilation database. A later save of the same
/// dataset needs it to know a row whose counts are in memory already from one that somebody else
/// has written, and an element that has counted something since from one that has not.
class LastSave {
 public:
  /// `isWhole`: the row holds all that the element has counted. Otherwise its table was folded and
  /// not saved.
  template <class T>
  void remember(T& element, bool isWhole) {
    if (element.getId() == 0) return;
    of<T>().rows.push_back({&element, element.getId(), isWhole, countedColumns(element)});
  }

  /// These rows have been folded into the dataset, whichever elements they became.
  template <class T>
  void rememberFolded(const FrontendDatabase& db) {
    of<T>().folded = db.idCacheOf<T>();
  }

  /// Tells the database which element each of these rows is, so that none of them is folded again,
  /// and restores the id of elements that have lost it (a further occurrence, resetIds).
  template <class T>
  void restore(FrontendDatabase& db) {
    Table<T>& table = of<T>();
    table.folded.each([&db](long long id, T* element) {
      if (!db.isInIdCache<T>(id)) db.enterInIdCache(id, element);
    });
    for (const Row<T>& row : table.rows) {
      db.enterInIdCache(row.id, row.element);
      if (row.element->getId() == 0) row.element->setId(row.id);
      table.byElement.emplace(row.element, &row);
    }
  }

  /// REQUIRES: restore() ran.
  template <class T>
  RowState stateOf(const T& element) {
    const auto found = of<T>().byElement.find(&element);
    if (found == of<T>().byElement.end() || !found->second->isWhole) return RowState::unknown;
    return found->second->counted == countedColumns(element) ? RowState::current
                                                             : RowState::outdated;
  }

 private:
  template <class T>
  struct Row {
    T* element;
    long long id;
    bool isWhole;
    decltype(countedColumns(std::declval<const T&>())) counted;
  };
  template <class T>
  struct Table {
    std::vector<Row<T>> rows;
    IdCache<T> folded;
    boost::unordered_map<const T*, const Row<T>*> byElement;
  };
  template <class... T>
  using TableTuple = std::tuple<Table<T>...>;

  template <class T>
  Table<T>& of() {
    return std::get<Table<T>>(tables);
  }

  AllElements::Apply<TableTuple> tables;
};

}  // namespace orvalesca::databases_merger
