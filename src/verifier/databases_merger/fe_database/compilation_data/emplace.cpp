#include "fe_database/compilation_data/elements_of.h"
#include "fe_database/elements/macro_groups.h"
#include "fe_db/compilation_data.h"

/// The emplace operations: is this a first sight or a second one, and what does a second one do?
namespace orvalesca::databases_merger {

namespace {

void markExternal(Identifier& identifier) {
  identifier.setKind(identifier.getKind() | IdentifierKind::External);
}

}  // namespace

/// Field, EnumConstant and Label: a name at a position, and a count.
template <class T>
T& CompilationData::emplaceNamed(Identifier* identifier, const Localization& localization,
                                 bool accumulate, unsigned refCount) {
  if (T* known = findElement(elementsOf<T>(), LocIdentifierKey{localization, identifier})) {
    if (accumulate) known->merge(/*otherId=*/0, refCount);
    return *known;
  }
  return addElement<T>(identifier, localization, refCount);
}

// --- By a known name.

Type* CompilationData::emplaceType(Identifier* identifier, bool unnamed,
                                   const Localization& localization, TypeKind kind, bool accumulate,
                                   unsigned refCount, unsigned refTagCount, bool local,
                                   bool incomplete) {
  if (Type* known = findElement(types, LocIdentifierKey{localization, identifier})) {
    if (accumulate) {
      known->merge(/*otherId=*/0, unnamed, refCount, refTagCount, local, incomplete);
    }
    return known;
  }
  return &addElement<Type>(identifier, unnamed, localization, kind, refCount, refTagCount, local,
                           incomplete);
}

Variable* CompilationData::emplaceVariable(Identifier* identifier, const Localization& localization,
                                           Type* type, bool isDefined, LinkageKind linkage,
                                           bool accumulate, unsigned refCount) {
  if (Variable* known = findElement(variables, LocIdentifierKey{localization, identifier})) {
    if (accumulate) known->merge(/*otherId=*/0, refCount);
    return known;
  }
  return &addElement<Variable>(identifier, localization, type, isDefined, linkage, refCount);
}

Function* CompilationData::emplaceFunction(Identifier* identifier, Identifier* sourceName,
                                           const Localization& localization, bool isDefined,
                                           bool isSpecial, EffectKind effect, LinkageKind linkage,
                                           bool accumulate) {
  if (Function* known = findElement(functions, LocIdentifierKey{localization, identifier})) {
    if (accumulate) known->merge(/*otherId=*/0, /*otherRefCount=*/0);
    return known;
  }
  return &addElement<Function>(identifier, sourceName, localization, isDefined, isSpecial, effect,
                               linkage);
}

Macro& CompilationData::emplaceMacro(Identifier* identifier, const Localization& localization,
                                     Macro::Value value, bool isDefined, bool accumulate,
                                     unsigned refCount, const std::string& text, bool isObjectLike,
                                     bool isVariadic, bool isCommandLineDefinition,
                                     bool isPredefined) {
  Macro* ofName = findElement(macros, identifier);
  if (ofName != nullptr) {
    if (Macro* known = MacroGroups::find(*ofName, localization)) {
      if (accumulate) known->merge(/*otherId=*/0, refCount, value, isDefined);
      return *known;
    }
  }
  arrivals->makeRoom<Macro>();
  Macro& macro =
      arrivals->note(mutableElement(*macros.emplace(identifier, localization, refCount)));
  if (ofName != nullptr) macroGroups->join(*ofName, macro);
  macro.setValue(value);
  macro.setIsDefined(isDefined);
  macro.setText(text);
  macro.setIsObjectLike(isObjectLike);
  macro.setIsVariadic(isVariadic);
  macro.setIsCommandLineDefinition(isCommandLineDefinition);
  macro.setIsPredefined(isPredefined);
  return macro;
}

ExternalIdentifier* CompilationData::emplaceExternalIdentifier(Identifier* identifier,
                                                               const EntityDescription& description,
                                                               bool accumulate) {
  markExternal(*identifier);
  if (ExternalIdentifier* known =
          findElement(externalIdentifiers, entityKey(identifier, description))) {
    if (accumulate) known->setId(0);
    return known;
  }
  return &addElement<ExternalIdentifier>(identifier, description);
}

// --- By name.

Type* CompilationData::emplaceType(std::string_view name, bool unnamed,
                                   const Localization& localization, TypeKind kind, bool accumulate,
                                   unsigned refCount, unsigned refTagCount) {
  if (name.empty()) return nullptr;
  Identifier* identifier = emplaceIdentifier(name, IdentifierKind::Type, accumulate, /*count=*/1);
  return emplaceType(identifier, unnamed, localization, kind, accumulate, refCount, refTagCount,
                     /*local=*/false, /*incomplete=*/false);
}

Variable* CompilationData::emplaceVariable(std::string_view name, const Localization& localization,
                                           Type* type, bool isDefined, LinkageKind linkage,
                                           bool accumulate) {
  Identifier* identifier =
      emplaceIdentifier(name, IdentifierKind::Variable, accumulate, /*count=*/1);
  return emplaceVariable(identifier, localization, type, isDefined, linkage, accumulate,
                         /*refCount=*/0);
}

Function* CompilationData::emplaceFunction(std::string_view name, std::string_view sourceName,
                                           const Localization& localization, bool isDefined,
                                           bool isSpecial, EffectKind effect, LinkageKind linkage,
                                           bool accumulate) {
  if (name.empty() || sourceName.empty()) return nullptr;
  Identifier* identifier =
      emplaceIdentifier(name, IdentifierKind::Function, accumulate, /*count=*/1);
  Identifier* written =
      emplaceIdentifier(sourceName, IdentifierKind::Function, accumulate, /*count=*/1);
  return emplaceFunction(identifier, written, localization, isDefined, isSpecial, effect, linkage,
                         accumulate);
}

Macro& CompilationData::emplaceMacro(std::string_view name, const Localization& localization,
                                     bool accumulate, unsigned refCount) {
  Identifier* identifier = emplaceIdentifier(name, IdentifierKind::Macro, accumulate, /*count=*/1);
  return emplaceMacro(identifier, localization, Macro::Value(), /*isDefined=*/true, accumulate,
                      refCount, /*text=*/std::string(), /*isObjectLike=*/true,
                      /*isVariadic=*/false, /*isCommandLineDefinition=*/false,
                      /*isPredefined=*/false);
}

ExternalIdentifier* CompilationData::emplaceExternalIdentifier(std::string_view name,
                                                               const EntityDescription& description,
                                                               bool accumulate) {
  Identifier* identifier =
      emplaceIdentifier(name, IdentifierKind::External, accumulate, /*count=*/1);
  return emplaceExternalIdentifier(identifier, description, accumulate);
}

Field& CompilationData::emplaceField(std::string_view name, const Localization& localization,
                                     bool accumulate, unsigned refCount) {
  Identifier* identifier = emplaceIdentifier(name, IdentifierKind::Field, accumulate, /*count=*/1);
  return emplaceNamed<Field>(identifier, localization, accumulate, refCount);
}

EnumConstant* CompilationData::emplaceEnumConstant(std::string_view name,
                                                   const Localization& localization,
                                                   bool accumulate) {
  if (name.empty()) return nullptr;
  Identifier* identifier =
      emplaceIdentifier(name, IdentifierKind::EnumConstant, accumulate, /*count=*/1);
  return &emplaceNamed<EnumConstant>(identifier, localization, accumulate, /*refCount=*/0);
}

Label* CompilationData::emplaceLabel(std::string_view name, const Localization& localization,
                                     bool accumulate) {
  if (name.empty()) return nullptr;
  Identifier* identifier = emplaceIdentifier(name, IdentifierKind::Label, accumulate, /*count=*/1);
  return &emplaceNamed<Label>(identifier, localization, accumulate, /*refCount=*/0);
}

// --- Without a name.

TypeReference* CompilationData::emplaceTypeReference(Type* declared, Type* referenced,
                                                     bool accumulate) {
  if (TypeReference* known = findElement(typeReferences, declared)) {
    if (accumulate) known->setId(0);
    return known;
  }
  return &addElement<TypeReference>(declared, referenced);
}

CallPoint* CompilationData::emplaceCallPoint(Function* caller, Function* callee,
                                             const Localization& localization, bool isValueUsed,
                                             bool accumulate) {
  if (CallPoint* known = findElement(callPoints, LocCallerKey{localization, caller})) {
    if (accumulate) known->setId(0);
    return known;
  }
  return &addElement<CallPoint>(caller, callee, localization, isValueUsed);
}

MacroInvocation* CompilationData::emplaceMacroInvocation(Macro* macro,
                                                         const Localization& localization,
                                                         const OneLineRange& range) {
  return &mutableElement(*macroInvocations.emplace(macro, localization, range));
}

MacroInvocationCodeOrigin* CompilationData::emplaceMacroInvocationCodeOrigin(
    const Localization& localization, MacroInvocation* invocation, unsigned offset,
    unsigned endOffset, bool isParameter, std::string_view tokenString) {
  return &macroInvocationCodeOrigins.emplace_back(localization, invocation, offset, endOffset,
                                                  isParameter, tokenString);
}

MacroExpansion* CompilationData::emplaceMacroExpansion(const Localization& localization,
                                                       std::string_view expandedCode,
                                                       std::string_view macroCall, unsigned ppLine,
                                                       unsigned ppColumn) {
  return &macroExpansions.emplace_back(localization, expandedCode, macroCall, ppLine, ppColumn);
}

// --- From stored rows: as a sighting of what the row says.

File* CompilationData::emplaceFromDB(const File& row, bool) {
  if (File* known = getFile(row.getPath())) return known;
  File& file = addElement<File>(row);
  file.forgetRow();
  return &file;
}

Identifier* CompilationData::emplaceFromDB(const Identifier& row, bool accumulate) {
  return emplaceIdentifier(row.getName(), row.getKind(), accumulate, row.getCount());
}

Macro* CompilationData::emplaceFromDB(const Macro& row, bool accumulate) {
  return &emplaceMacro(row.getIdentifier(), row.getLocalization(), row.getValue(),
                       row.getIsDefined(), accumulate, row.getRefCount(), row.getText(),
                       row.getIsObjectLike(), row.getIsVariadic(), row.getIsCommandLineDefinition(),
                       row.getIsPredefined());
}

MacroInvocation* CompilationData::emplaceFromDB(const MacroInvocation& row, bool) {
  OneLineRange range = row.getRange();
  range.file = row.getFile();
  return emplaceMacroInvocation(row.getMacro(), row.getLocalization(), range);
}

MacroInvocationCodeOrigin* CompilationData::emplaceFromDB(const MacroInvocationCodeOrigin& row,
                                                          bool) {
  return emplaceMacroInvocationCodeOrigin(row.getLocalization(), row.getInvocation(),
                                          row.getOffset(), row.getEndOffset(), row.getIsParameter(),
                                          row.getTokenString());
}

MacroExpansion* CompilationData::emplaceFromDB(const MacroExpansion& row, bool) {
  return emplaceMacroExpansion(row.getLocalization(), row.getExpandedCode(), row.getMacroCall(),
                               row.getPpLine(), row.getPpColumn());
}

Type* CompilationData::emplaceFromDB(const Type& row, bool accumulate) {
  return emplaceType(row.getIdentifier(), row.getUnnamed(), row.getLocalization(), row.getKind(),
                     accumulate, row.getRefCount(), row.getRefTagCount(), row.getLocal(),
                     row.getIncomplete());
}

TypeReference* CompilationData::emplaceFromDB(const TypeReference& row, bool accumulate) {
  return emplaceTypeReference(row.getDeclaredType(), row.getReferencedType(), accumulate);
}

Variable* CompilationData::emplaceFromDB(const Variable& row, bool accumulate) {
  if (row.getFile() == nullptr) return nullptr;
  return emplaceVariable(row.getIdentifier(), row.getLocalization(), row.getType(),
                         row.getIsDefined(), row.getLinkage(), accumulate, row.getRefCount());
}

/// The stored count is not taken over: function counts come from the front end alone.
Function* CompilationData::emplaceFromDB(const Function& row, bool accumulate) {
  return emplaceFunction(row.getIdentifier(), row.getSourceName(), row.getLocalization(),
                         row.getIsDefined(), row.getIsSpecial(), row.getEffect(), row.getLinkage(),
                         accumulate);
}

ExternalIdentifier* CompilationData::emplaceFromDB(const ExternalIdentifier& row, bool accumulate) {
  if (row.getIdentifier() != nullptr) {
    return emplaceExternalIdentifier(row.getIdentifier(), row.getDescription(), accumulate);
  }
  if (ExternalIdentifier* known = findElement(externalIdentifiers, entityKey(row))) return known;
  return &addElement<ExternalIdentifier>(nullptr, row.getDescription());
}

// These three go by the name of their identifier and count it. Without an identifier they stand
// for an id that has no row, and have nothing to count.

Field* CompilationData::emplaceFromDB(const Field& row, bool accumulate) {
  const Identifier* identifier = row.getIdentifier();
  if (identifier == nullptr) {
    return &emplaceNamed<Field>(nullptr, row.getLocalization(), accumulate, row.getRefCount());
  }
  return &emplaceField(identifier->getName(), row.getLocalization(), accumulate, row.getRefCount());
}

EnumConstant* CompilationData::emplaceFromDB(const EnumConstant& row, bool accumulate) {
  const Identifier* identifier = row.getIdentifier();
  if (identifier == nullptr) {
    return &emplaceNamed<EnumConstant>(nullptr, row.getLocalization(), accumulate, 0);
  }
  return emplaceEnumConstant(identifier->getName(), row.getLocalization(), accumulate);
}

Label* CompilationData::emplaceFromDB(const Label& row, bool accumulate) {
  const Identifier* identifier = row.getIdentifier();
  if (identifier == nullptr) {
    return &emplaceNamed<Label>(nullptr, row.getLocalization(), accumulate, 0);
  }
  return emplaceLabel(identifier->getName(), row.getLocalization(), accumulate);
}

CallPoint* CompilationData::emplaceFromDB(const CallPoint& row, bool accumulate) {
  return emplaceCallPoint(row.getCaller(), row.getCallee(), row.getLocalization(),
                          row.getIsValueUsed(), accumulate);
}

}  // namespace orvalesca::databases_merger
