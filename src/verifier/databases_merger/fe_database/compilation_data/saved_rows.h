#pragma once

#include <boost/unordered_set.hpp>
#include <tuple>
#include <utility>
#include <vector>

#include "fe_db/elements.h"

namespace orvalesca::databases_merger {

/// Which rows of the compilation database the elements of a dataset were after its last save. A
/// later save of the same dataset needs it to tell a row whose counts are in memory already from
/// one that somebody else has written.
class SavedRows {
 public:
  template <class T>
  void remember(T& element) {
    if (element.getId() != 0) of<T>().rows.emplace_back(&element, element.getId());
  }

  /// Gives elements that have lost their id (a further sight, resetIds) the row back that they are.
  template <class T>
  void giveIdsBack() {
    for (auto& [element, id] : of<T>().rows) {
      of<T>().known.insert(id);
      if (element->getId() != 0) continue;
      element->setId(id);
      of<T>().returned.push_back(element);
    }
  }

  /// After giveIdsBack.
  template <class T>
  bool isKnown(long long id) const {
    return std::get<Rows<T>>(all).known.count(id) != 0;
  }
  template <class T>
  const std::vector<T*>& returned() const {
    return std::get<Rows<T>>(all).returned;
  }

 private:
  template <class T>
  struct Rows {
    std::vector<std::pair<T*, long long>> rows;
    boost::unordered_set<long long> known;
    std::vector<T*> returned;
  };
  template <class... T>
  using RowsTuple = std::tuple<Rows<T>...>;

  template <class T>
  Rows<T>& of() {
    return std::get<Rows<T>>(all);
  }

  Elements::Apply<RowsTuple> all;
};

}  // namespace orvalesca::databases_merger
