#pragma once

#include <strings.h>

#include <map>
#include <type_traits>
#include <vector>

#include "fe_database/compilation_database/columns.h"
#include "model.h"

/// Elements of the library as facts of the model, and back.
namespace fe_db_tests::model {

using namespace orvalesca::databases_merger;
using Element = persistence::GenericElement;

/// Calls visit.operator()<T>() for the class of that number.
template <class Visitor>
void visitClass(int cls, Visitor visit) {
  int n = 0;
  Elements::each([&]<class T>() {
    if (n++ == cls) visit.template operator()<T>();
  });
}

template <class T>
int numberOf() {
  int n = 0, found = -1;
  Elements::each([&]<class U>() {
    if (std::is_same_v<T, U>) found = n;
    ++n;
  });
  return found;
}

/// Elements of the library, by their number in the model.
class Known {
 public:
  int count(int cls) const { return static_cast<int>(elements[cls].size()); }
  void expect(int cls) { elements[cls].push_back(nullptr); }
  void set(Ref ref, Element* element) {
    elements[ref.cls][ref.index] = element;
    refs[element] = ref;
  }
  Element* get(Ref ref) const { return ref ? elements[ref.cls][ref.index] : nullptr; }
  template <class T>
  T* get(Ref ref) const {
    return static_cast<T*>(get(ref));
  }
  Ref ref(const Element* element) const {
    const auto found = refs.find(element);
    return found == refs.end() ? Ref() : found->second;
  }

 private:
  std::array<std::vector<Element*>, kClasses> elements;
  std::map<const Element*, Ref> refs;
};

/// Values of one shape can be cast into each other.
enum class Shape { number, text, reference, optional };
template <class U>
constexpr Shape shapeOf() {
  if (std::is_same_v<U, std::string>) return Shape::text;
  if (std::is_same_v<U, Ref> || isReference<U>) return Shape::reference;
  return requires(const U& value) { value.has_value(); }
  ? Shape::optional : Shape::number;
}

/// Calls pass(member of the fact, column of the library) for each column of the class: the model's
/// list and the library's meet by their names. A wrong accessor in the library's list shows where
/// elements are emplaced, which passes each value by itself.
template <class T, class Pass>
void eachField(Fact& f, Pass&& pass) {
  eachColumn<T>([&](const auto& column) {
    using Value = typename std::decay_t<decltype(column)>::Value;
    for (const Column& mine : table(numberOf<T>()).columns) {
      if (strcasecmp(mine.name, column.name) != 0) continue;
      const auto passIfAlike = [&](auto member) {
        using Member = std::decay_t<decltype(f.*member)>;
        if constexpr (shapeOf<Value>() == shapeOf<Member>()) pass(f.*member, column);
      };
      std::visit(passIfAlike, mine.member);
    }
  });
}

inline Localization placeOf(const Known& known, const Fact& f) {
  return {known.get<File>(f.file), f.line, f.column, f.wildcard};
}

template <class T>
T make(const Known& known, Fact f) {
  T element;
  eachField<T>(f, [&](auto& member, const auto& column) {
    using Value = typename std::decay_t<decltype(column)>::Value;
    if constexpr (std::is_same_v<Value, EntityDescription>) {
      (element.*column.set)({EntityKind(f.kind), known.get<LinkedElement>(member)});
    } else if constexpr (isReference<Value>) {
      (element.*column.set)(known.get<std::remove_pointer_t<Value>>(member));
    } else {
      (element.*column.set)(static_cast<Value>(member));
    }
  });
  if constexpr (std::is_base_of_v<LocatedElement, T>) element.setLocalization(placeOf(known, f));
  if constexpr (std::is_same_v<T, Macro>) element.setIsDefined(f.defined);
  return element;
}

template <class T>
Fact factOf(const Known& known, const T& element) {
  Fact f;
  f.cls = numberOf<T>();
  f.id = element.getId();
  f.dirty = element.dirty;
  eachField<T>(f, [&](auto& member, const auto& column) {
    const auto& value = (element.*column.get)();
    using Value = std::decay_t<decltype(value)>;
    if constexpr (std::is_same_v<Value, EntityDescription>) {
      if (value.hasEntity()) member = known.ref(value.entity);
    } else if constexpr (isReference<Value>) {
      member = known.ref(value);
    } else {
      member = static_cast<std::decay_t<decltype(member)>>(value);
    }
  });
  if constexpr (std::is_base_of_v<LocatedElement, T>) {
    f.wildcard = element.getLocalization().wildcard;
  }
  if constexpr (std::is_same_v<T, Macro>) f.defined = element.getIsDefined();
  if constexpr (std::is_same_v<T, MacroInvocation>) f.ppFile = known.ref(element.getRange().file);
  return f;
}

}  // namespace fe_db_tests::model
