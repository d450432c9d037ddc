#include <cstdint>

#include "fe_database/compilation_data/elements_of.h"
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

/// Enum constants, fields and labels: each of a source counts for its name, known or not.
template <class T>
void foldNamed(LocIdentifierSet<T>& elements, const T& source, IdentifierKind kind,
               std::uint32_t refCount) {
  Identifier* identifier = translate(source.getIdentifier());
  const Localization at = translate(source.getLocalization());
  identifier->addSight(kind, /*seenCount=*/1);
  if (T* known = findElement(elements, LocIdentifierKey{at, identifier})) {
    known->merge(/*otherId=*/0, refCount);
  } else {
    addElement(elements, identifier, at, refCount);
  }
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
  eachElement(other.dataset->elementsOf<T>(), [this](const T& source) { fold(source); });
}

void mergerImpl::fold(const File& source) {
  File* known = findElement(dataset->files, source.getPath());
  remember(source, known != nullptr ? known : &addElement(dataset->files, source));
}

void mergerImpl::fold(const Identifier& source) {
  Identifier* known = findElement(dataset->identifiers, source.getName());
  if (known != nullptr) {
    known->setCount(known->getCount() + source.getCount());
    known->setKind(known->getKind() | source.getKind());
  } else {
    known =
        &addElement(dataset->identifiers, source.getName(), source.getKind(), source.getCount());
  }
  remember(source, known);
}

void mergerImpl::fold(const Function& source) {
  remember(source,
           dataset->emplaceFunction(
               translate(source.getIdentifier()), translate(source.getSourceName()),
               translate(source.getLocalization()), source.getIsDefined(), source.getIsSpecial(),
               source.getEffect(), source.getLinkage(), /*accumulate=*/true));
}

void mergerImpl::fold(const CallPoint& source) {
  dataset->emplaceCallPoint(translate(source.getCaller()), translate(source.getCallee()),
                            translate(source.getLocalization()), source.getIsValueUsed(),
                            /*accumulate=*/true);
}

void mergerImpl::fold(const EnumConstant& source) {
  foldNamed(dataset->enumConstants, source, IdentifierKind::EnumConstant, /*refCount=*/0);
}

void mergerImpl::fold(const Type& source) {
  remember(source,
           dataset->emplaceType(translate(source.getIdentifier()), source.getUnnamed(),
                                translate(source.getLocalization()), source.getKind(),
                                /*accumulate=*/true, source.getRefCount(), source.getRefTagCount(),
                                source.getLocal(), source.getIncomplete()));
}

void mergerImpl::fold(const Field& source) {
  foldNamed(dataset->fields, source, IdentifierKind::Field, source.getRefCount());
}

void mergerImpl::fold(const Label& source) {
  foldNamed(dataset->labels, source, IdentifierKind::Label, /*refCount=*/0);
}

void mergerImpl::fold(const Macro& source) {
  dataset->emplaceMacro(translate(source.getIdentifier()), translate(source.getLocalization()),
                        source.getValue(), source.getIsDefined(), /*accumulate=*/true,
                        source.getRefCount(), source.getText(), source.getIsObjectLike(),
                        source.getIsVariadic(), source.getIsCommandLineDefinition(),
                        source.getIsPredefined());
}

void mergerImpl::fold(const TypeReference& source) {
  dataset->emplaceTypeReference(translate(source.getDeclaredType()),
                                translate(source.getReferencedType()), /*accumulate=*/true);
}

void mergerImpl::fold(const Variable& source) {
  remember(source, dataset->emplaceVariable(
                       translate(source.getIdentifier()), translate(source.getLocalization()),
                       translate(source.getType()), source.getIsDefined(), source.getLinkage(),
                       /*accumulate=*/true, source.getRefCount()));
}

void mergerImpl::fold(const ExternalIdentifier& source) {
  dataset->emplaceExternalIdentifier(translate(source.getIdentifier()),
                                     translate(source.getDescription()), /*accumulate=*/true);
}

}  // namespace orvalesca::databases_merger
