#pragma once

#include <algorithm>
#include <boost/unordered_map.hpp>
#include <cstddef>
#include <optional>
#include <vector>

namespace orvalesca::databases_merger {

/// Row id to element. Ids of a table are nearly consecutive, so they index an array (a tenth off a
/// load, against a hash map); an id far beyond the others, or a negative one, goes to a map.
template <class T>
class IdCache {
 public:
  /// Nothing: the id was never entered. A null element: the row cannot become one.
  std::optional<T*> find(long long id) const {
    if (id >= 0 && static_cast<std::size_t>(id) < dense.size()) {
      const Slot& slot = dense[static_cast<std::size_t>(id)];
      return slot.entered ? std::optional<T*>(slot.element) : std::nullopt;
    }
    const auto found = sparse.find(id);
    return found == sparse.end() ? std::nullopt : std::optional<T*>(found->second);
  }

  void enter(long long id, T* element) {
    const auto index = static_cast<std::size_t>(id);
    if (id < 0 || index > 2 * dense.size() + kSlack) {
      sparse[id] = element;
      return;
    }
    if (index >= dense.size()) grow(std::max(index + 1, 2 * dense.size()));
    dense[index] = {element, true};
  }

  void clear() {
    dense.clear();
    sparse.clear();
  }

 private:
  struct Slot {
    T* element = nullptr;
    bool entered = false;
  };
  static constexpr std::size_t kSlack = 1024;

  /// Ids that went to the map before come into the array's reach now.
  void grow(std::size_t size) {
    const std::size_t before = dense.size();
    dense.resize(size);
    if (sparse.empty()) return;
    for (auto it = sparse.begin(); it != sparse.end();) {
      const bool inReach =
          it->first >= static_cast<long long>(before) && it->first < static_cast<long long>(size);
      if (!inReach) {
        ++it;
        continue;
      }
      dense[static_cast<std::size_t>(it->first)] = {it->second, true};
      it = sparse.erase(it);
    }
  }

  std::vector<Slot> dense;
  boost::unordered_map<long long, T*> sparse;
};

}  // namespace orvalesca::databases_merger
