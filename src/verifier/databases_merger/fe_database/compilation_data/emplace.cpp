#include "fe_database/compilation_data/element_store.h"
#include "fe_database/elements/macro_groups.h"
#include "fe_db/compilation_data.h"

/// The emplace operations: is this occurrence the first or a repeat, and what does a repeat do?
namespace orvalesca::databases_merger {

namespace {

void markExternal(Identifier& identifier) {
  identifier.setKind(identifier.getKind() | IdentifierKind::External);
}

bool hasEmptyName(const NamedElement& row) {
  return row.getIdentifier() != nullptr && row.getIdentifier()->getName().empty();
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

/// `ofName` is any macro of the name that is there already, or null.
Macro& CompilationData::insertMacro(const Macro& macro, Macro* ofName) {
  insertionOrder->makeRoom<Macro>();
  Macro& inserted = insertionOrder->note(mutableElement(*macros.insert(macro)));
  if (ofName != nullptr) macroGroups->join(*ofName, inserted);
  return inserted;
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
  Macro& macro = insertMacro(Macro(identifier, localization, refCount), ofName);
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

// --- The cross-reference.

template <class T, class Key, class... Values>
T& CompilationData::emplaceUnlessKnown(const Key& key, Values&&... values) {
  T* known = findElement(elementsOf<T>(), key);
  return known != nullptr ? *known : addElement<T>(std::forward<Values>(values)...);
}

Unit& CompilationData::emplaceUnit(File* mainFile, std::string_view directory,
                                   std::string_view output, std::string_view command) {
  return emplaceUnlessKnown<Unit>(keyFields(mainFile, directory, output, command), mainFile,
                                  directory, output, command);
}

UnitFile& CompilationData::emplaceUnitFile(Unit* unit, File* file) {
  return emplaceUnlessKnown<UnitFile>(keyFields(unit, file), unit, file);
}

Include& CompilationData::emplaceInclude(File* including, std::uint32_t line, File* included,
                                         IncludeKind kind) {
  const Localization at{including, line};
  return emplaceUnlessKnown<Include>(keyFields(at, included), at, included, kind);
}

Reference& CompilationData::emplaceReference(const EntityReference& entity,
                                             const Localization& localization,
                                             ReferenceRoles roles) {
  Reference& reference =
      emplaceUnlessKnown<Reference>(keyFields(entity, localization), entity, localization, roles);
  if (!addsBits(roles, reference.getRoles())) return reference;
  reference.setRoles(reference.getRoles() | roles);
  reference.setId(0);
  return reference;
}

Property& CompilationData::emplaceProperty(const EntityReference& entity, PropertyFlags flags,
                                           Type* owner, std::string_view scope) {
  Property& property = emplaceUnlessKnown<Property>(keyFields(entity), entity, flags, owner, scope);
  if (!addsBits(flags, property.getFlags())) return property;
  property.setFlags(property.getFlags() | flags);
  property.setId(0);
  return property;
}

// --- From stored rows: as an occurrence of what the row says. A row is copied as a whole, so that
// no value that has a column can be forgotten here.

namespace {

/// A copy of a row becomes an element of the dataset like any other.
template <class T>
T& asNew(T& element) {
  element.setId(0);
  element.dirty = false;
  return element;
}

/// What a repeated occurrence does to an element that is known.
template <class T>
void addOccurrence(T& known, const T& row) {
  if constexpr (requires { known.update(row); }) known.update(row);
  known.setId(0);
}
/// The stored count is not taken over: counts of functions come from the front end alone.
void addOccurrence(Function& known, const Function&) { known.merge(0, /*otherRefCount=*/0); }

}  // namespace

template <class T, class Key>
T* CompilationData::emplaceRow(const T& row, const Key& key, bool accumulate) {
  if (T* known = findElement(elementsOf<T>(), key)) {
    if (accumulate) addOccurrence(*known, row);
    return known;
  }
  return &asNew(addElement<T>(row));
}

/// These three go by the name of their identifier and count it. Without an identifier they stand
/// for an id that has no row, and have nothing to count.
template <class T>
T* CompilationData::emplaceNamedRow(T row, IdentifierKind kind, bool accumulate) {
  if (const Identifier* name = row.getIdentifier()) {
    row.setIdentifier(emplaceIdentifier(name->getName(), kind, accumulate, /*count=*/1));
  }
  return emplaceRow(row, locIdentifierKey(row), accumulate);
}

File* CompilationData::emplaceFromDB(const File& row, bool) {
  return emplaceRow(row, std::string_view(row.getPath()), /*accumulate=*/false);
}

Identifier* CompilationData::emplaceFromDB(const Identifier& row, bool accumulate) {
  Identifier* known = findElement(identifiers, std::string_view(row.getName()));
  if (known == nullptr) return &asNew(addElement<Identifier>(row));
  if (accumulate) known->addOccurrence(row.getKind(), row.getCount());
  return known;
}

Macro* CompilationData::emplaceFromDB(const Macro& row, bool accumulate) {
  Macro* ofName = findElement(macros, row.getIdentifier());
  Macro* known = ofName != nullptr ? MacroGroups::find(*ofName, row.getLocalization()) : nullptr;
  if (known == nullptr) return &asNew(insertMacro(row, ofName));
  if (accumulate) addOccurrence(*known, row);
  return known;
}

MacroInvocation* CompilationData::emplaceFromDB(const MacroInvocation& row, bool) {
  MacroInvocation& element = asNew(mutableElement(*macroInvocations.insert(row)));
  OneLineRange range = row.getRange();
  range.file = row.getFile();
  element.setRange(range);
  return &element;
}

MacroInvocationCodeOrigin* CompilationData::emplaceFromDB(const MacroInvocationCodeOrigin& row,
                                                          bool) {
  return &asNew(macroInvocationCodeOrigins.emplace_back(row));
}

MacroExpansion* CompilationData::emplaceFromDB(const MacroExpansion& row, bool) {
  return &asNew(macroExpansions.emplace_back(row));
}

Type* CompilationData::emplaceFromDB(const Type& row, bool accumulate) {
  return emplaceRow(row, locIdentifierKey(row), accumulate);
}

TypeReference* CompilationData::emplaceFromDB(const TypeReference& row, bool accumulate) {
  return emplaceRow(row, row.getDeclaredType(), accumulate);
}

Variable* CompilationData::emplaceFromDB(const Variable& row, bool accumulate) {
  if (row.getFile() == nullptr) return nullptr;
  return emplaceRow(row, locIdentifierKey(row), accumulate);
}

Function* CompilationData::emplaceFromDB(const Function& row, bool accumulate) {
  Function uncounted = row;
  uncounted.setRefCount(0);
  return emplaceRow(uncounted, locIdentifierKey(row), accumulate);
}

ExternalIdentifier* CompilationData::emplaceFromDB(const ExternalIdentifier& row, bool accumulate) {
  const bool hasName = row.getIdentifier() != nullptr;
  if (hasName) markExternal(*row.getIdentifier());
  return emplaceRow(row, entityKey(row), accumulate && hasName);
}

Field* CompilationData::emplaceFromDB(const Field& row, bool accumulate) {
  return emplaceNamedRow(row, IdentifierKind::Field, accumulate);
}

EnumConstant* CompilationData::emplaceFromDB(const EnumConstant& row, bool accumulate) {
  if (hasEmptyName(row)) return nullptr;
  return emplaceNamedRow(row, IdentifierKind::EnumConstant, accumulate);
}

Label* CompilationData::emplaceFromDB(const Label& row, bool accumulate) {
  if (hasEmptyName(row)) return nullptr;
  return emplaceNamedRow(row, IdentifierKind::Label, accumulate);
}

CallPoint* CompilationData::emplaceFromDB(const CallPoint& row, bool accumulate) {
  return emplaceRow(row, locCallerKey(row), accumulate);
}

Unit* CompilationData::emplaceFromDB(const Unit& row, bool accumulate) {
  return emplaceRow(row, keyFields(row), accumulate);
}

UnitFile* CompilationData::emplaceFromDB(const UnitFile& row, bool accumulate) {
  return emplaceRow(row, keyFields(row), accumulate);
}

Include* CompilationData::emplaceFromDB(const Include& row, bool accumulate) {
  return emplaceRow(row, keyFields(row), accumulate);
}

Reference* CompilationData::emplaceFromDB(const Reference& row, bool accumulate) {
  return emplaceRow(row, keyFields(row), accumulate);
}

Property* CompilationData::emplaceFromDB(const Property& row, bool accumulate) {
  return emplaceRow(row, keyFields(row), accumulate);
}

}  // namespace orvalesca::databases_merger
