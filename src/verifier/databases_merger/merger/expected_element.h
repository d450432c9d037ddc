#pragma once

#include <cstddef>
#include <vector>

namespace orvalesca::databases_merger {

/// Guesses which element of the target the next element of a source will turn out to be.
///
/// Sources include the same headers, so what follows an element in one of them mostly follows it in
/// the target as well. A look at the expected element then stands in for a search: it lies behind
/// the last one in memory, where a hash look-up waits for main memory three times. Worth ... of a
/// fold. A guess is only tried, never trusted, so that the order of rows is nobody's promise.
template <class T>
class ExpectedElement {
 public:
  /// The elements of the target in their order of arrival.
  explicit ExpectedElement(const std::vector<T*>& order) : order(&order) {}

  /// The expected element if isSought(element) holds for it, or null.
  template <class Test>
  T* find(Test&& isSought) {
    if (missesInRow > kMostMisses) return nullptr;
    for (std::size_t* guess : {&next, &resume}) {
      if (*guess >= order->size() || !isSought(*(*order)[*guess])) continue;
      missesInRow = 0;
      next = *guess + 1;
      return (*order)[next - 1];
    }
    ++missesInRow;
    return nullptr;
  }

  /// A search has found the element instead. Its place is known if it is in its id; what was
  /// expected so far may still come: a name that was seen in an earlier header is a short detour.
  void foundElsewhere(const T& element) {
    const auto place = static_cast<std::size_t>(element.getId()) - 1;
    if (place >= order->size() || (*order)[place] != &element) return;
    resume = next;
    next = place + 1;
  }

 private:
  /// A source whose order has nothing to do with the target's is searched without guessing.
  static constexpr int kMostMisses = 100;

  const std::vector<T*>* order;
  std::size_t next = 0;
  std::size_t resume = 0;
  int missesInRow = 0;
};

}  // namespace orvalesca::databases_merger
