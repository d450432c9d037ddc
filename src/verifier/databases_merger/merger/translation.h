#pragma once

#include <tuple>
#include <vector>

#include "fe_database/compilation_data/insertion_order.h"
#include "fe_database/compilation_database/columns.h"

namespace orvalesca::databases_merger {

/// The classes that other elements refer to.
using ReferredElements =
    TypeList<File, Identifier, Function, EnumConstant, Type, Field, Label, Macro, Variable, Unit>;

/// Which element of the target each element of a source became, by its place in the source. A
/// translated reference so costs two reads of memory, where hashing the path and the name again
/// for each would make a merge half as fast.
class Translation {
 public:
  explicit Translation(InsertionOrder& source) {
    ReferredElements::each([&]<class T>() { of<T>().resize(source.of<T>().size()); });
  }

  template <class T>
  void remember(const T& source, T* inTarget) {
    if constexpr (ReferredElements::has<T>) of<T>()[source.getPlace()] = inTarget;
  }

  template <class T>
  T* operator()(const T* source) const {
    return source == nullptr ? nullptr : std::get<std::vector<T*>>(inTarget)[source->getPlace()];
  }

  Localization operator()(const Localization& at) const {
    return {(*this)(at.file), at.line, at.column, /*wildcard=*/false};
  }

  EntityReference operator()(const EntityReference& reference) const {
    EntityReference translated{reference.kind, nullptr};
    EntityElements::each([&]<class T>() {
      if (reference.kind != entityKindOf<T>) return;
      translated.entity = (*this)(static_cast<const T*>(reference.entity));
    });
    return translated;
  }

  /// Of a key.
  template <class... Fields>
  std::tuple<Fields...> operator()(const std::tuple<Fields...>& key) const {
    return std::apply(
        [this](const auto&... field) { return std::tuple<Fields...>((*this)(field)...); }, key);
  }
  std::uint32_t operator()(std::uint32_t number) const { return number; }
  std::string_view operator()(std::string_view text) const { return text; }

  /// A kind other than variable and function has no entity.
  EntityDescription operator()(const EntityDescription& description) const {
    if (description.kind == EntityKind::Variable) {
      return {description.kind, (*this)(static_cast<const Variable*>(description.entity))};
    }
    if (description.kind == EntityKind::Function) {
      return {description.kind, (*this)(static_cast<const Function*>(description.entity))};
    }
    return {};
  }

 private:
  template <class... T>
  using Orders = std::tuple<std::vector<T*>...>;

  template <class T>
  std::vector<T*>& of() {
    return std::get<std::vector<T*>>(inTarget);
  }

  ReferredElements::Apply<Orders> inTarget;
};

}  // namespace orvalesca::databases_merger
