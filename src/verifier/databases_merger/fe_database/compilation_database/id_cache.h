#pragma once

#include <algorithm>
#include <boost/unordered_map.hpp>
#include <cstddef>
#include <cstdint>
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
      return entered(dense[static_cast<std::size_t>(id)]);
    }
    const auto found = sparse.find(id);
    return found == sparse.end() ? std::nullopt : entered(found->second);
  }

  void enter(long long id, T* element) {
    const auto index = static_cast<std::size_t>(id);
    T* slot = element != nullptr ? element : noElement();
    if (id < 0 || index > 2 * dense.size() + kSlack) {
      sparse[id] = slot;
      return;
    }
    if (index >= dense.size()) grow(std::max(index + 1, 2 * dense.size()));
    dense[index] = slot;
  }

  /// Calls visit(id, element) for each id; of a row that cannot become an element, with null.
  template <class Visit>
  void each(Visit&& visit) const {
    for (std::size_t id = 0; id < dense.size(); ++id) {
      if (const auto element = entered(dense[id])) visit(static_cast<long long>(id), *element);
    }
    for (const auto& [id, slot] : sparse) visit(id, *entered(slot));
  }

  /// Room for ids up to that of the last row.
  void reserve(std::size_t rows) {
    if (rows >= dense.size()) grow(rows + 1);
  }

  void clear() {
    dense.clear();
    sparse.clear();
  }

 private:
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
      dense[static_cast<std::size_t>(it->first)] = it->second;
      it = sparse.erase(it);
    }
  }

  /// In a slot null means an id that was never entered, and this for one without an element:
  /// a slot of two words would halve what the processor's cache holds.
  static T* noElement() { return reinterpret_cast<T*>(std::uintptr_t{1}); }
  static std::optional<T*> entered(T* slot) {
    if (slot == nullptr) return std::nullopt;
    return slot == noElement() ? nullptr : slot;
  }

  std::vector<T*> dense;
  boost::unordered_map<long long, T*> sparse;
};

}  // namespace orvalesca::databases_merger
