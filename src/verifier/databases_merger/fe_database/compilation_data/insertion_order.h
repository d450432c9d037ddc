#pragma once

#include <cstddef>
#include <tuple>
#include <vector>

#include "fe_db/elements.h"

namespace orvalesca::databases_merger {

/// The classes whose elements are kept in order: all that a compilation database gets.
using OrderedElements = decltype(concatenate(
    concatenate(TypeList<File, Identifier, Macro>{}, CompilationOnlyElements{}),
    ExtensionElements{}));

/// The elements of a dataset in the order in which they came into it, class by class; the order in
/// which they are saved and merged. What came in together lies together, in memory as in the files,
/// so that a walk in this order finds its next element in the processor's cache, where one in the
/// order of a hash container waits for main memory. It also makes files of the same facts the same,
/// byte for byte.
class InsertionOrder {
 public:
  template <class T>
  std::vector<T*>& of() {
    return std::get<std::vector<T*>>(orders);
  }

  /// Before an element goes into its container: where there is no memory left for noting it, it
  /// shall not be there either, known and never saved.
  template <class T>
  void makeRoom() {
    std::vector<T*>& order = of<T>();
    if (order.size() == order.capacity()) order.reserve(2 * order.size() + 16);
  }

  template <class T>
  T& note(T& element) {
    std::vector<T*>& order = of<T>();
    element.setPlace(static_cast<unsigned>(order.size()));
    order.push_back(&element);
    return element;
  }

  void clear() {
    std::apply([](auto&... order) { (order.clear(), ...); }, orders);
  }

 private:
  template <class... T>
  using Orders = std::tuple<std::vector<T*>...>;

  OrderedElements::Apply<Orders> orders;
};

}  // namespace orvalesca::databases_merger
