#pragma once

#include <functional>
#include <map>
#include <type_traits>
#include <vector>

#include "fe_db/elements.h"
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

// --- Which field of the model is which of an element; `io` passes values one way or the other.
// Positions are passed for all alike.

// clang-format off
template <class IO> void fields(File& e, Fact& f, const IO& io) {
  io(f.text,     e, &File::getPath,     &File::setPath);
  io(f.kind,     e, &File::getKind,     &File::setKind);
  io(f.language, e, &File::getLanguage, &File::setLanguage);
  io(f.huge,     e, &File::getHuge,     &File::setHuge);
}
template <class IO> void fields(Identifier& e, Fact& f, const IO& io) {
  io(f.text,  e, &Identifier::getName,  &Identifier::setName);
  io(f.kind,  e, &Identifier::getKind,  &Identifier::setKind);
  io(f.count, e, &Identifier::getCount, &Identifier::setCount);
}
template <class IO> void fields(MacroInvocation& e, Fact& f, const IO& io) {
  io(f.subject,  e, &MacroInvocation::getMacro,         &MacroInvocation::setMacro);
  io(f.ppLine,   e, &MacroInvocation::getPpLine,        &MacroInvocation::setPpLine);
  io(f.ppColumn, e, &MacroInvocation::getPpStartColumn, &MacroInvocation::setPpStartColumn);
  io(f.ppEnd,    e, &MacroInvocation::getPpEndColumn,   &MacroInvocation::setPpEndColumn);
}
template <class IO> void fields(MacroInvocationCodeOrigin& e, Fact& f, const IO& io) {
  using E = MacroInvocationCodeOrigin;
  io(f.subject,   e, &E::getInvocation,  &E::setInvocation);
  io(f.offset,    e, &E::getOffset,      &E::setOffset);
  io(f.endOffset, e, &E::getEndOffset,   &E::setEndOffset);
  io(f.parameter, e, &E::getIsParameter, &E::setIsParameter);
  io(f.text,      e, &E::getTokenString, &E::setTokenString);
}
template <class IO> void fields(MacroExpansion& e, Fact& f, const IO& io) {
  io(f.text,     e, &MacroExpansion::getExpandedCode, &MacroExpansion::setExpandedCode);
  io(f.call,     e, &MacroExpansion::getMacroCall,    &MacroExpansion::setMacroCall);
  io(f.ppLine,   e, &MacroExpansion::getPpLine,       &MacroExpansion::setPpLine);
  io(f.ppColumn, e, &MacroExpansion::getPpColumn,     &MacroExpansion::setPpColumn);
}
template <class IO> void fields(TypeReference& e, Fact& f, const IO& io) {
  io(f.subject, e, &TypeReference::getDeclaredType,   &TypeReference::setDeclaredType);
  io(f.object,  e, &TypeReference::getReferencedType, &TypeReference::setReferencedType);
}
template <class IO> void fields(CallPoint& e, Fact& f, const IO& io) {
  io(f.subject, e, &CallPoint::getCaller,      &CallPoint::setCaller);
  io(f.object,  e, &CallPoint::getCallee,      &CallPoint::setCallee);
  io(f.used,    e, &CallPoint::getIsValueUsed, &CallPoint::setIsValueUsed);
}
template <class IO> void fields(ExternalIdentifier& e, Fact& f, const IO& io) {
  io(f.name, e, &ExternalIdentifier::getIdentifier, &ExternalIdentifier::setIdentifier);
  io(f.kind, e, &ExternalIdentifier::getEntityKind, &ExternalIdentifier::setEntityKind);
  io.entity(f, e);
}
template <class IO> void fields(NamedElement& e, Fact& f, const IO& io) {
  io(f.name,  e, &NamedElement::getIdentifier, &NamedElement::setIdentifier);
  io(f.count, e, &NamedElement::getRefCount,   &NamedElement::setRefCount);
}
template <class IO> void fields(Macro& e, Fact& f, const IO& io) {
  fields(static_cast<NamedElement&>(e), f, io);
  io(f.value,       e, &Macro::getIntegralValueForDB,      &Macro::setIntegralValueFromDB);
  io(f.isSigned,    e, &Macro::getSignednessForDB,         &Macro::setSignednessFromDB);
  io(f.text,        e, &Macro::getText,                    &Macro::setText);
  io(f.defined,     e, &Macro::getIsDefined,               &Macro::setIsDefined);
  io(f.objectLike,  e, &Macro::getIsObjectLike,            &Macro::setIsObjectLike);
  io(f.variadic,    e, &Macro::getIsVariadic,              &Macro::setIsVariadic);
  io(f.commandLine, e, &Macro::getIsCommandLineDefinition, &Macro::setIsCommandLineDefinition);
  io(f.predefined,  e, &Macro::getIsPredefined,            &Macro::setIsPredefined);
}
template <class IO> void fields(Type& e, Fact& f, const IO& io) {
  fields(static_cast<NamedElement&>(e), f, io);
  io(f.kind,       e, &Type::getKind,        &Type::setKind);
  io(f.unnamed,    e, &Type::getUnnamed,     &Type::setUnnamed);
  io(f.local,      e, &Type::getLocal,       &Type::setLocal);
  io(f.incomplete, e, &Type::getIncomplete,  &Type::setIncomplete);
  io(f.tagCount,   e, &Type::getRefTagCount, &Type::setRefTagCount);
}
template <class IO> void fields(LinkedElement& e, Fact& f, const IO& io) {
  fields(static_cast<NamedElement&>(e), f, io);
  io(f.defined, e, &LinkedElement::getIsDefined, &LinkedElement::setIsDefined);
  io(f.linkage, e, &LinkedElement::getLinkage,   &LinkedElement::setLinkage);
}
template <class IO> void fields(Variable& e, Fact& f, const IO& io) {
  fields(static_cast<LinkedElement&>(e), f, io);
  io(f.subject, e, &Variable::getType, &Variable::setType);
}
template <class IO> void fields(Function& e, Fact& f, const IO& io) {
  fields(static_cast<LinkedElement&>(e), f, io);
  io(f.subject, e, &Function::getSourceName, &Function::setSourceName);
  io(f.special, e, &Function::getIsSpecial,  &Function::setIsSpecial);
  io(f.effect,  e, &Function::getEffect,     &Function::setEffect);
}
// clang-format on

struct ToFact {
  const Known& known;

  template <class M, class E, class G, class S>
  void operator()(M& member, E& e, G getter, S) const {
    if constexpr (std::is_same_v<M, Ref>) {
      member = known.ref(std::invoke(getter, e));
    } else {
      member = static_cast<M>(std::invoke(getter, e));
    }
  }
  void entity(Fact& f, ExternalIdentifier& e) const {
    if (e.getDescription().hasEntity()) f.subject = known.ref(e.getDescription().entity);
  }
};

struct ToElement {
  const Known& known;

  template <class M, class E, class G, class B, class V>
  void operator()(M& member, E& e, G, void (B::*setter)(V)) const {
    if constexpr (std::is_same_v<M, Ref>) {
      (e.*setter)(known.get<std::remove_pointer_t<V>>(member));
    } else {
      (e.*setter)(static_cast<V>(member));
    }
  }
  void entity(Fact& f, ExternalIdentifier& e) const {
    e.setDescription({EntityKind(f.kind), known.get<LinkedElement>(f.subject)});
  }
};

inline Localization placeOf(const Known& known, const Fact& f) {
  return {known.get<File>(f.file), f.line, f.column, f.wildcard};
}

template <class T>
T make(const Known& known, Fact f) {
  T element;
  fields(element, f, ToElement{known});
  if constexpr (std::is_base_of_v<LocatedElement, T>) element.setLocalization(placeOf(known, f));
  return element;
}

template <class T>
Fact factOf(const Known& known, T element) {
  Fact f;
  f.cls = numberOf<T>();
  f.id = element.getId();
  f.dirty = element.dirty;
  fields(element, f, ToFact{known});
  if constexpr (std::is_base_of_v<LocatedElement, T>) {
    const Localization& at = element.getLocalization();
    f.file = known.ref(at.file);
    f.line = at.line;
    f.column = at.column;
    f.wildcard = at.wildcard;
  }
  if constexpr (std::is_same_v<T, MacroInvocation>) f.ppFile = known.ref(element.getRange().file);
  return f;
}

}  // namespace fe_db_tests::model
