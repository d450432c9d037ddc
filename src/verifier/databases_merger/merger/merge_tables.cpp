#include <cstdint>
#include <utility>

#include "fe_database/compilation_data/elements_of.h"
#include "merger/expected_element.h"
#include "merger/merger_impl.h"
#include "persistence/sqlite_report.h"

/// Keys are made of pointers, which mean nothing in another dataset. So each element of a source is
/// first put in the target's terms: its file, name, type and so on are replaced by those elements
/// of the target that they became when their own tables were folded. Only then the target is asked
/// whether it knows the element.
namespace orvalesca::databases_merger {

namespace {

static_assert(sizeof(void*) <= sizeof(long long));

/// Which element of the target a source element became, kept where its row id was: that id has
/// served once the source is loaded. A translated reference so costs one read of memory, where
/// hashing the path and the name again for each would make a merge half as fast.
template <class T>
void remember(const T& source, T* inTarget) {
  mutableElement(source).setId(reinterpret_cast<std::intptr_t>(inTarget));
}

template <class T>
T* translate(const T* source) {
  return source == nullptr ? nullptr : reinterpret_cast<T*>(source->getId());
}

Localization translate(const Localization& at) {
  return {translate(at.file), at.line, at.column, /*wildcard=*/false};
}

EntityDescription translate(const EntityDescription& description) {
  EntityDescription inTarget{description.kind, nullptr};
  if (description.kind == EntityKind::Variable) {
    inTarget.entity = translate(static_cast<const Variable*>(description.entity));
  } else if (description.kind == EntityKind::Function) {
    inTarget.entity = translate(static_cast<const Function*>(description.entity));
  } else {
    inTarget.kind = EntityKind::None;
  }
  return inTarget;
}

void addUses(Identifier& identifier, IdentifierKind kind, std::uint32_t count) {
  identifier.setCount(identifier.getCount() + count);
  identifier.setKind(identifier.getKind() | kind);
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

}  // namespace

void mergerImpl::mergeCompilationTables(mergerImpl& other) {
  const char* path = other.database->getPath().c_str();
  if (&other == this) {
    persistence::reportMessage("%s: a merger cannot be merged into itself", path);
    return;
  }
  if (other.isSpent) {
    persistence::reportMessage("%s: it was merged before; load it anew", path);
    return;
  }
  if (other.database->hasFailed() || other.isHalfDone) {
    persistence::reportMessage("%s: not merged: it could not be read to its end", path);
    const persistence::Failure& failure = other.database->lastFailure();
    database->noteFailedRead(failure.table, std::string(path) + ": " + failure.reason);
    return;
  }
  other.isSpent = true;
  isHalfDone = true;
  MergedElements::each([&]<class T>() { foldTable<T>(other); });
  isHalfDone = false;
}

template <class T>
void mergerImpl::foldTable(mergerImpl& other) {
  ExpectedElement<T> expected(dataset->arrivals->of<T>());
  other.dataset->eachElement<T>([&](const T& source) { fold(source, expected); });
}

/// The element of the target with the key, or null.
template <class T, class Key>
T* mergerImpl::find(const Key& key, ExpectedElement<T>& expected) {
  const auto& elements = dataset->elementsOf<T>();
  T* known = expected.find([&](const T& element) { return hasKey(elements, element, key); });
  if (known == nullptr) {
    known = findElement(elements, key);
    if (known != nullptr) expected.foundElsewhere(*known);
  }
  return known;
}

/// The latest element of its class has its place for an id until it gets a row.
template <class T>
void mergerImpl::keepPlace(T& latest) {
  latest.setId(static_cast<long long>(dataset->arrivals->of<T>().size()));
}

template <class T, class... Arguments>
T& mergerImpl::add(Arguments&&... arguments) {
  T& element = dataset->addElement<T>(std::forward<Arguments>(arguments)...);
  keepPlace(element);
  return element;
}

void mergerImpl::fold(const File& source, ExpectedElement<File>& expected) {
  File* known = find(std::string_view(source.getPath()), expected);
  remember(source, known != nullptr ? known : &add<File>(source));
}

void mergerImpl::fold(const Identifier& source, ExpectedElement<Identifier>& expected) {
  Identifier* known = find(std::string_view(source.getName()), expected);
  if (known != nullptr) {
    addUses(*known, source.getKind(), source.getCount());
  } else {
    known = &add<Identifier>(source.getName(), source.getKind(), source.getCount());
  }
  remember(source, known);
}

void mergerImpl::fold(const Function& source, ExpectedElement<Function>& expected) {
  const Localization at = translate(source.getLocalization());
  Identifier* identifier = translate(source.getIdentifier());
  Function* known = find(LocIdentifierKey{at, identifier}, expected);
  if (known != nullptr) {
    known->merge(known->getId(), /*otherRefCount=*/0);
  } else {
    known = &add<Function>(identifier, translate(source.getSourceName()), at, source.getIsDefined(),
                           source.getIsSpecial(), source.getEffect(), source.getLinkage());
  }
  remember(source, known);
}

void mergerImpl::fold(const CallPoint& source, ExpectedElement<CallPoint>& expected) {
  const Localization at = translate(source.getLocalization());
  Function* caller = translate(source.getCaller());
  if (find(LocCallerKey{at, caller}, expected) == nullptr) {
    add<CallPoint>(caller, translate(source.getCallee()), at, source.getIsValueUsed());
  }
}

/// Enum constants, fields and labels: each of a source counts for its name, known or not.
template <class T>
void mergerImpl::foldNamed(const T& source, ExpectedElement<T>& expected, IdentifierKind kind,
                           std::uint32_t refCount) {
  const Localization at = translate(source.getLocalization());
  Identifier* identifier = translate(source.getIdentifier());
  addUses(*identifier, kind, /*count=*/1);
  if (T* known = find(LocIdentifierKey{at, identifier}, expected)) {
    known->merge(known->getId(), refCount);
  } else {
    add<T>(identifier, at, refCount);
  }
}

void mergerImpl::fold(const EnumConstant& source, ExpectedElement<EnumConstant>& expected) {
  foldNamed(source, expected, IdentifierKind::EnumConstant, /*refCount=*/0);
}

void mergerImpl::fold(const Type& source, ExpectedElement<Type>& expected) {
  const Localization at = translate(source.getLocalization());
  Identifier* identifier = translate(source.getIdentifier());
  Type* known = find(LocIdentifierKey{at, identifier}, expected);
  if (known != nullptr) {
    known->merge(known->getId(), source.getUnnamed(), source.getRefCount(), source.getRefTagCount(),
                 source.getLocal(), source.getIncomplete());
  } else {
    known = &add<Type>(identifier, source.getUnnamed(), at, source.getKind(), source.getRefCount(),
                       source.getRefTagCount(), source.getLocal(), source.getIncomplete());
  }
  remember(source, known);
}

void mergerImpl::fold(const Field& source, ExpectedElement<Field>& expected) {
  foldNamed(source, expected, IdentifierKind::Field, source.getRefCount());
}

void mergerImpl::fold(const Label& source, ExpectedElement<Label>& expected) {
  foldNamed(source, expected, IdentifierKind::Label, /*refCount=*/0);
}

void mergerImpl::fold(const Macro& source, ExpectedElement<Macro>& expected) {
  const Localization at = translate(source.getLocalization());
  Identifier* identifier = translate(source.getIdentifier());
  if (Macro* known = find(LocIdentifierKey{at, identifier}, expected)) {
    known->merge(known->getId(), source.getRefCount(), source.getValue(), source.getIsDefined());
    return;
  }
  Macro& added = dataset->emplaceMacro(
      identifier, at, source.getValue(), source.getIsDefined(), /*accumulate=*/true,
      source.getRefCount(), source.getText(), source.getIsObjectLike(), source.getIsVariadic(),
      source.getIsCommandLineDefinition(), source.getIsPredefined());
  keepPlace(added);
}

void mergerImpl::fold(const TypeReference& source, ExpectedElement<TypeReference>& expected) {
  Type* declared = translate(source.getDeclaredType());
  if (find<TypeReference>(declared, expected) == nullptr) {
    add<TypeReference>(declared, translate(source.getReferencedType()));
  }
}

void mergerImpl::fold(const Variable& source, ExpectedElement<Variable>& expected) {
  const Localization at = translate(source.getLocalization());
  Identifier* identifier = translate(source.getIdentifier());
  Variable* known = find(LocIdentifierKey{at, identifier}, expected);
  if (known != nullptr) {
    known->merge(known->getId(), source.getRefCount());
  } else {
    known = &add<Variable>(identifier, at, translate(source.getType()), source.getIsDefined(),
                           source.getLinkage(), source.getRefCount());
  }
  remember(source, known);
}

void mergerImpl::fold(const ExternalIdentifier& source,
                      ExpectedElement<ExternalIdentifier>& expected) {
  Identifier* identifier = translate(source.getIdentifier());
  const EntityDescription description = translate(source.getDescription());
  addUses(*identifier, IdentifierKind::External, /*count=*/0);
  if (find(entityKey(identifier, description), expected) == nullptr) {
    add<ExternalIdentifier>(identifier, description);
  }
}

}  // namespace orvalesca::databases_merger
