#pragma once

#include <boost/unordered_map.hpp>
#include <cstdint>
#include <tuple>
#include <utility>
#include <vector>

#include "fe_db/compilation_database.h"

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

  /// Tells the database which element each of these rows is, so that none of them is read again,
  /// and gives elements that have lost their id (a further sight, resetIds) the row back.
  template <class T>
  void giveBack(FrontendDatabase& db) {
    for (auto& [element, id] : of<T>().rows) {
      db.enterInIdCache(id, element);
      if (element->getId() != 0) continue;
      element->setId(id);
      of<T>().returned.push_back(element);
    }
  }

  /// The element has found its row and left it as it is: it had nothing to add. It may be dirty all
  /// the same, and stays so; a further save must not write then what this one did not.
  template <class T>
  void leaveRowAlone(const T& element) {
    if constexpr (std::is_base_of_v<NamedElement, T>) {
      of<T>().leftAlone[&element] = element.getRefCount();
    }
  }

  /// As long as the element has counted nothing since.
  template <class T>
  bool leavesRowAlone(const T& element) const {
    if constexpr (std::is_base_of_v<NamedElement, T>) {
      const auto& leftAlone = std::get<Rows<T>>(all).leftAlone;
      const auto found = leftAlone.find(&element);
      return found != leftAlone.end() && found->second == element.getRefCount();
    } else {
      return false;
    }
  }

  /// The elements that giveBack has given an id.
  template <class T>
  const std::vector<T*>& returned() const {
    return std::get<Rows<T>>(all).returned;
  }

 private:
  template <class T>
  struct Rows {
    std::vector<std::pair<T*, long long>> rows;
    std::vector<T*> returned;
    boost::unordered_map<const T*, std::uint32_t> leftAlone;  ///< and the count that it had
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
