#include "library_side.h"

namespace fe_db_tests::model {

Element* LibrarySide::emplace(const Fact& f, bool accumulate) {
  const Localization at = place(f);
  switch (f.cls) {
    case kFile:
      return &data->emplaceFile(f.text, FileKind{f.kind}, results_api::LanguageKind{f.language});
    case kIdentifier:
      return data->emplaceIdentifier(f.text, IdentifierKind{f.kind}, accumulate, f.count);
    case kMacro:
      return &data->emplaceMacro(name(f), at, make<Macro>(known, f).getValue(), f.defined,
                                 accumulate, f.count, f.text, f.objectLike, f.variadic,
                                 f.commandLine, f.predefined);
    case kMacroInvocation:
      return data->emplaceMacroInvocation(
          known.get<Macro>(f.subject), at,
          {known.get<File>(f.ppFile), f.ppLine, f.ppColumn, f.ppEnd});
    case kCodeOrigin:
      return data->emplaceMacroInvocationCodeOrigin(at, known.get<MacroInvocation>(f.subject),
                                                    f.offset, f.endOffset, f.parameter, f.text);
    case kExpansion:
      return data->emplaceMacroExpansion(at, f.text, f.call, f.ppLine, f.ppColumn);
    case kType:
      return data->emplaceType(name(f), f.unnamed, at, TypeKind{f.kind}, accumulate, f.count,
                               f.tagCount, f.local, f.incomplete);
    case kTypeReference:
      return data->emplaceTypeReference(known.get<Type>(f.subject), known.get<Type>(f.object),
                                        accumulate);
    case kVariable:
      return data->emplaceVariable(name(f), at, known.get<Type>(f.subject), f.defined,
                                   LinkageKind{f.linkage}, accumulate, f.count);
    case kFunction:
      return data->emplaceFunction(name(f), known.get<Identifier>(f.subject), at, f.defined,
                                   f.special, EffectKind{f.effect}, LinkageKind{f.linkage},
                                   accumulate);
    case kExternalIdentifier:
      return data->emplaceExternalIdentifier(name(f), description(f), accumulate);
    default:
      return data->emplaceCallPoint(known.get<Function>(f.subject), known.get<Function>(f.object),
                                    at, f.used, accumulate);
  }
}

Element* LibrarySide::emplaceByName(const Fact& f, const std::string& name,
                                    const std::string& sourceName, bool accumulate) {
  const Localization at = place(f);
  switch (f.cls) {
    case kMacro:
      return &data->emplaceMacro(name, at, accumulate, f.count);
    case kType:
      return data->emplaceType(name, f.unnamed, at, TypeKind{f.kind}, accumulate, f.count,
                               f.tagCount);
    case kVariable:
      return data->emplaceVariable(name, at, known.get<Type>(f.subject), f.defined,
                                   LinkageKind{f.linkage}, accumulate);
    case kFunction:
      return data->emplaceFunction(name, sourceName, at, f.defined, f.special, EffectKind{f.effect},
                                   LinkageKind{f.linkage}, accumulate);
    case kExternalIdentifier:
      return data->emplaceExternalIdentifier(name, description(f), accumulate);
    case kField:
      return &data->emplaceField(name, at, accumulate, f.count);
    case kEnumConstant:
      return data->emplaceEnumConstant(name, at, accumulate);
    default:
      return data->emplaceLabel(name, at, accumulate);
  }
}

Element* LibrarySide::emplaceFromDb(const Fact& f, bool accumulate) {
  Element* element = nullptr;
  visitClass(f.cls, [&]<class T>() {
    T row = make<T>(known, f);
    row.setId(99);  // means something in the file only
    element = data->emplaceFromDB(row, accumulate);
  });
  return element;
}

std::vector<Macro*> LibrarySide::group(const Identifier* name) const {
  std::vector<Macro*> macros;
  data->eachMacro([&](const Macro& macro) {
    if (macro.getIdentifier() == name) macros.push_back(const_cast<Macro*>(&macro));
  });
  return macros;
}

Element* LibrarySide::locate(const Fact& f) {
  const Localization at = place(f);
  if (f.cls == kMacro) {  // getMacro may find a wildcard in its place
    for (Macro* const macro : group(name(f))) {
      if (samePosition(macro->getLocalization(), at)) return macro;
    }
  }
  if (f.cls == kMacroInvocation) {
    for (auto [it, end] = data->getMacroInvocationForLine(f.ppLine); it != end; ++it) {
      auto* const invocation = const_cast<MacroInvocation*>(&*it);
      if (!known.ref(invocation) && it->getId() == f.id) return invocation;
    }
  }
  if (f.cls == kExternalIdentifier) {  // has no look-up; a repeat that adds nothing changes nothing
    return data->emplaceExternalIdentifier(name(f), description(f), /*accumulate=*/false);
  }
  if (f.cls == kFile) return data->getFile(f.text);
  if (f.cls == kIdentifier) return data->getIdentifier(f.text);
  if (f.cls == kType) return data->getType(at, name(f));
  if (f.cls == kTypeReference) return data->getTypeReference(known.get<Type>(f.subject));
  if (f.cls == kVariable) return data->getVariable(at, name(f));
  if (f.cls == kFunction) return data->getFunction(name(f)->getName(), at);
  if (f.cls == kField) return data->getField(at, name(f));
  if (f.cls == kEnumConstant) return data->getEnumConstant(at, name(f));
  if (f.cls == kLabel) return data->getLabel(at, name(f));
  if (f.cls == kCallPoint) return data->getCallPoint(at, known.get<Function>(f.subject));
  return nullptr;
}

}  // namespace fe_db_tests::model
