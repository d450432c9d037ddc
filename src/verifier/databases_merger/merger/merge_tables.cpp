#include "fe_database/compilation_data/element_store.h"
#include "fe_database/compilation_database/columns.h"
#include "merger/lookup_predictor.h"
#include "merger/merger_impl.h"
#include "merger/translation.h"
#include "persistence/sqlite_report.h"

/// Keys are made of pointers, which mean nothing in another dataset. So each element of a source is
/// first put in the target's terms: its file, name, type and so on are replaced by those elements
/// of the target that they became when their own tables were folded. Only then the target is asked
/// whether it knows the element.
namespace orvalesca::databases_merger {

namespace {

/// Calls find(key) with the key that the element has in the target.
template <class T, class Find>
auto withKeyInTarget(const T& source, const Translation& inTarget, Find&& find) {
  if constexpr (std::is_same_v<T, File>) {
    return find(std::string_view(source.getPath()));
  } else if constexpr (std::is_same_v<T, Identifier>) {
    return find(std::string_view(source.getName()));
  } else if constexpr (std::is_same_v<T, TypeReference>) {
    return find(inTarget(source.getDeclaredType()));
  } else if constexpr (ExtensionElements::has<T>) {
    return find(inTarget(keyFields(source)));
  } else if constexpr (std::is_same_v<T, ExternalIdentifier>) {
    return find(entityKey(inTarget(source.getIdentifier()), inTarget(source.getDescription())));
  } else {
    const Localization at = inTarget(source.getLocalization());
    if constexpr (std::is_same_v<T, CallPoint>) {
      return find(LocCallerKey{at, inTarget(source.getCaller())});
    } else {
      return find(LocIdentifierKey{at, inTarget(source.getIdentifier())});
    }
  }
}

/// By the rule of the class's container.
template <class Set, class Key>
bool hasKey(const Set& elements, const typename Set::value_type& element, const Key& key) {
  return elements.key_eq()(element, key);
}
bool hasKey(const VariableSet&, const Variable& element, const LocIdentifierKey& key) {
  return equalLocIdentifier<Variable>()(element, key);
}
/// The positions in a merger's dataset are plain ones: no wildcard matches any other.
bool hasKey(const MacroSet&, const Macro& element, const LocIdentifierKey& key) {
  return equalLocIdentifier<Macro>()(element, key);
}

Macro* findElement(const MacroSet& macros, const LocIdentifierKey& key) {
  Macro* ofName = findElement(macros, key.identifier);
  return ofName != nullptr ? MacroGroups::find(*ofName, key.at) : nullptr;
}

void addUses(Identifier& name, IdentifierKind kind, std::uint32_t count) {
  name.setCount(name.getCount() + count);
  name.setKind(name.getKind() | kind);
}

/// What an element of a source does to its name in the target, known or not.
template <class T>
void countForName(Identifier* name) {
  if constexpr (std::is_same_v<T, EnumConstant>) addUses(*name, IdentifierKind::EnumConstant, 1);
  if constexpr (std::is_same_v<T, Field>) addUses(*name, IdentifierKind::Field, 1);
  if constexpr (std::is_same_v<T, Label>) addUses(*name, IdentifierKind::Label, 1);
  if constexpr (std::is_same_v<T, ExternalIdentifier>) addUses(*name, IdentifierKind::External, 0);
}

/// What a known element takes from one of a source: the rule of its class for a further copy of it.
/// Classes without counts take nothing; the target's values stay.
template <class T>
void addCopy(T& known, const T& source) {
  if constexpr (std::is_same_v<T, Identifier>) {
    addUses(known, source.getKind(), source.getCount());
  } else if constexpr (requires { known.update(source); }) {
    const long long id = known.getId();
    known.update(source);
    known.setId(id);
  }
}

}  // namespace

void mergerImpl::mergeCompilationTables(mergerImpl& other) {
  const char* path = other.database->getPath().c_str();
  if (&other == this) {
    persistence::reportMessage("%s: a merger cannot be merged into itself", path);
    return;
  }
  if (other.isConsumed) {
    persistence::reportMessage("%s: already merged into a target; reload it first", path);
    return;
  }
  if (other.database->hasFailed() || other.isIncomplete) {
    persistence::reportMessage("%s: not merged: it could not be read to its end", path);
    const persistence::Failure& failure = other.database->lastFailure();
    database->noteFailedRead(failure.table, std::string(path) + ": " + failure.reason);
    return;
  }
  other.isConsumed = true;
  isIncomplete = true;
  Translation inTarget(*other.dataset->insertionOrder);
  MergedElements::each([&]<class T>() { foldTable<T>(other, inTarget); });
  isIncomplete = false;
}

template <class T>
void mergerImpl::foldTable(mergerImpl& other, Translation& inTarget) {
  LookupPredictor<T> predictor(dataset->insertionOrder->of<T>());
  other.dataset->eachElement<T>([&](const T& source) {
    if constexpr (requires { source.getIdentifier(); }) {
      countForName<T>(inTarget(source.getIdentifier()));
    }
    T* known =
        withKeyInTarget(source, inTarget, [&](const auto& key) { return find<T>(key, predictor); });
    if (known != nullptr) {
      addCopy(*known, source);
    } else {
      known = &addFrom(source, inTarget);
    }
    inTarget.remember(source, known);
  });
}

/// The element of the target with the key, or null.
template <class T, class Key>
T* mergerImpl::find(const Key& key, LookupPredictor<T>& predictor) {
  const auto& elements = dataset->elementsOf<T>();
  T* known = predictor.find([&](const T& element) { return hasKey(elements, element, key); });
  if (known == nullptr) {
    known = findElement(elements, key);
    if (known != nullptr) predictor.foundElsewhere(*known);
  }
  return known;
}

/// The whole element with its references in the target's terms.
template <class T>
T& mergerImpl::addFrom(const T& source, const Translation& inTarget) {
  T copy = source;
  copy.forgetRow();
  copy.dirty = false;
  replaceReferences(copy, inTarget);
  if constexpr (std::is_same_v<T, Macro>) {
    return dataset->insertMacro(copy, findElement(dataset->macros, copy.getIdentifier()));
  } else {
    return dataset->insertElement(copy);
  }
}

}  // namespace orvalesca::databases_merger
