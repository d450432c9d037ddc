#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>

#include "fe_db/elements.h"
#include "persistence/column.h"

/// Which member goes to which column: the one description of all tables. What can follow from it
/// does: the statements and the values that they bind and read, the texts that create the nine
/// tables of compilation databases, the indexes of key look-ups, what a merge translates, and what
/// the programs know of a file.
///
/// Order is meaning: it is the order of the columns in every statement, of the parameters, and of
/// reading a row. Columns are addressed by name, so the order in which a table declares them is
/// free.
///
/// For this library and its programs only; not installed, and without symbols.
namespace orvalesca::databases_merger {

enum ColumnFlags : std::uint32_t {
  kNoFlags = 0,
  kId = persistence::kPrimaryKey,  ///< the row id ("rowid" where the table declares none)
  kKey = persistence::kUnique,     ///< belongs to the key that a row is found by; never rewritten
  kPlace = kKey | 1u << 16,        ///< the same, and to the source position
  kRequired = 1u << 17,            ///< a reference that always has a row
  kFirstStays = 1u << 18,          ///< no key, and never rewritten all the same
  kKeyIfLastEmpty = 1u << 19,      ///< belongs to the key where the text before it in it is empty
};

constexpr ColumnFlags operator|(ColumnFlags a, ColumnFlags b) {
  return static_cast<ColumnFlags>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}

/// A column and the accessors of its member, which pass values of type U as they are declared.
template <class U, class Getter, class Setter>
struct MappedColumn {
  using Value = U;

  constexpr bool has(ColumnFlags wanted) const { return (flags & wanted) == wanted; }

  const char* name;
  ColumnFlags flags;
  Getter get;
  Setter set;
};

/// A column that the table declares and nothing of an element goes to.
template <class U>
struct UnmappedColumn {
  using Value = U;

  constexpr bool has(ColumnFlags) const { return false; }

  const char* name;
};

template <class U, class Owner>
constexpr auto column(const char* name, ColumnFlags flags, U (Owner::*get)() const,
                      void (Owner::*set)(U)) {
  return MappedColumn<U, decltype(get), decltype(set)>{name, flags, get, set};
}
template <class U, class Owner>
constexpr auto column(const char* name, ColumnFlags flags, const U& (Owner::*get)() const,
                      void (Owner::*set)(const U&)) {
  return MappedColumn<U, decltype(get), decltype(set)>{name, flags, get, set};
}
template <class U>
constexpr auto unmapped(const char* name) {
  return UnmappedColumn<U>{name};
}

/// kName, kColumns; and where the rule does not fit:
///   kDeclared  the columns but the id as the table declares them, if not in the order of kColumns
///   kIndexed   the columns of the index for key look-ups, if not the key, position first: an index
///              that holds all columns of its table would be read in its place, in another order
///   kOrderBy   what the list of row ids is ordered by
template <class T>
struct TableColumns;

// clang-format off

template <>
struct TableColumns<File> {
  using E = File;
  static constexpr const char* kName = "File";
  static constexpr auto kColumns = std::tuple(
      column("FileId", kId,      &E::getId,        &E::setId),
      column("Path",   kKey,     &E::getPath,      &E::setPath),
      column("Kind",   kNoFlags, &E::getKind,      &E::setKind),
      column("Lang",   kNoFlags, &E::getLanguage,  &E::setLanguage),
      // a number: any but 0 reads as true
      column("Huge",   kNoFlags, &E::getHugeForDB, &E::setHugeFromDB));
};

template <>
struct TableColumns<Identifier> {
  using E = Identifier;
  static constexpr const char* kName = "Identifier";
  static constexpr auto kColumns = std::tuple(
      column("IdentifierId", kId,      &E::getId,    &E::setId),
      column("Name",         kKey,     &E::getName,  &E::setName),
      column("Kind",         kNoFlags, &E::getKind,  &E::setKind),
      column("Count",        kNoFlags, &E::getCount, &E::setCount));
  static constexpr std::array kDeclared{"Name", "Count", "Kind"};
};

template <>
struct TableColumns<Macro> {
  using E = Macro;
  static constexpr const char* kName = "Macro";
  static constexpr auto kColumns = std::tuple(
      column("MacroId",                 kId,              &E::getId,                      &E::setId),
      column("IdentifierId",            kKey | kRequired, &E::getIdentifier,              &E::setIdentifier),
      column("DeclFileId",              kPlace,           &E::getFile,                    &E::setFile),
      column("DeclLineNum",             kPlace,           &E::getLine,                    &E::setLine),
      column("DeclColNum",              kPlace,           &E::getColumn,                  &E::setColumn),
      column("RefCount",                kNoFlags,         &E::getRefCount,                &E::setRefCount),
      // before ValueIsSigned, which re-labels it
      column("Value",                   kNoFlags,         &E::getIntegralValueForDB,      &E::setIntegralValueFromDB),
      column("ValueIsSigned",           kNoFlags,         &E::getSignednessForDB,         &E::setSignednessFromDB),
      column("IsObjectLike",            kNoFlags,         &E::getIsObjectLike,            &E::setIsObjectLike),
      column("IsVariadic",              kNoFlags,         &E::getIsVariadic,              &E::setIsVariadic),
      column("IsCommandLineDefinition", kNoFlags,         &E::getIsCommandLineDefinition, &E::setIsCommandLineDefinition),
      column("IsPredefined",            kNoFlags,         &E::getIsPredefined,            &E::setIsPredefined),
      column("Text",                    kNoFlags,         &E::getText,                    &E::setText));
};

template <>
struct TableColumns<MacroInvocation> {
  using E = MacroInvocation;
  static constexpr const char* kName = "MacroInvocation";
  static constexpr auto kColumns = std::tuple(
      column("MacroInvocationId", kId,              &E::getId,            &E::setId),
      column("MacroId",           kKey | kRequired, &E::getMacro,         &E::setMacro),
      column("FileId",            kNoFlags,         &E::getFile,          &E::setFile),
      column("LineNum",           kNoFlags,         &E::getLine,          &E::setLine),
      column("ColNum",            kNoFlags,         &E::getColumn,        &E::setColumn),
      unmapped<File*>("ppFileId"),
      column("ppLineNum",         kKey,             &E::getPpLine,        &E::setPpLine),
      column("ppStartColNum",     kKey,             &E::getPpStartColumn, &E::setPpStartColumn),
      column("ppEndColNum",       kNoFlags,         &E::getPpEndColumn,   &E::setPpEndColumn));
};

template <>
struct TableColumns<MacroInvocationCodeOrigin> {
  using E = MacroInvocationCodeOrigin;
  static constexpr const char* kName = "MacroInvocationCodeOrigin";
  static constexpr auto kColumns = std::tuple(
      column("rowid",                       kId,      &E::getId,          &E::setId),
      column("FileId",                      kNoFlags, &E::getFile,        &E::setFile),
      column("LineNum",                     kNoFlags, &E::getLine,        &E::setLine),
      column("ColNum",                      kNoFlags, &E::getColumn,      &E::setColumn),
      column("MacroInvocationId",           kNoFlags, &E::getInvocation,  &E::setInvocation),
      column("OffsetColumnInInvocation",    kNoFlags, &E::getOffset,      &E::setOffset),
      column("EndOffsetColumnInInvocation", kNoFlags, &E::getEndOffset,   &E::setEndOffset),
      column("IsParameter",                 kNoFlags, &E::getIsParameter, &E::setIsParameter),
      column("TokenString",                 kNoFlags, &E::getTokenString, &E::setTokenString));
};

template <>
struct TableColumns<MacroExpansion> {
  using E = MacroExpansion;
  static constexpr const char* kName = "MacroExpansion";
  static constexpr auto kColumns = std::tuple(
      column("rowid",        kId,      &E::getId,           &E::setId),
      column("FileId",       kNoFlags, &E::getFile,         &E::setFile),
      column("LineNum",      kNoFlags, &E::getLine,         &E::setLine),
      column("ColNum",       kNoFlags, &E::getColumn,       &E::setColumn),
      column("ppLineNum",    kNoFlags, &E::getPpLine,       &E::setPpLine),
      column("ppColNum",     kNoFlags, &E::getPpColumn,     &E::setPpColumn),
      column("ExpandedCode", kNoFlags, &E::getExpandedCode, &E::setExpandedCode),
      column("MacroCall",    kNoFlags, &E::getMacroCall,    &E::setMacroCall));
  static constexpr std::array kDeclared{"MacroCall", "ExpandedCode", "FileId",  "LineNum",
                                        "ColNum",    "PpLineNum",    "PpColNum"};
};

template <>
struct TableColumns<Type> {
  using E = Type;
  static constexpr const char* kName = "Type";
  static constexpr auto kColumns = std::tuple(
      column("TypeId",       kId,              &E::getId,          &E::setId),
      column("IdentifierId", kKey | kRequired, &E::getIdentifier,  &E::setIdentifier),
      column("Unnamed",      kNoFlags,         &E::getUnnamed,     &E::setUnnamed),
      column("Local",        kNoFlags,         &E::getLocal,       &E::setLocal),
      column("Incomplete",   kNoFlags,         &E::getIncomplete,  &E::setIncomplete),
      column("DeclFileId",   kPlace,           &E::getFile,        &E::setFile),
      column("DeclLineNum",  kPlace,           &E::getLine,        &E::setLine),
      column("DeclColNum",   kPlace,           &E::getColumn,      &E::setColumn),
      column("Kind",         kKey,             &E::getKind,        &E::setKind),
      column("RefCount",     kNoFlags,         &E::getRefCount,    &E::setRefCount),
      column("RefTagCount",  kNoFlags,         &E::getRefTagCount, &E::setRefTagCount));
  static constexpr std::array kIndexed{"DeclFileId", "DeclLineNum", "DeclColNum", "IdentifierId"};
};

template <>
struct TableColumns<TypeReference> {
  using E = TypeReference;
  static constexpr const char* kName = "TypeReference";
  static constexpr auto kColumns = std::tuple(
      column("rowid",          kId,      &E::getId,             &E::setId),
      column("DeclaredType",   kKey,     &E::getDeclaredType,   &E::setDeclaredType),
      column("ReferencedType", kNoFlags, &E::getReferencedType, &E::setReferencedType));
};

template <>
struct TableColumns<Variable> {
  using E = Variable;
  static constexpr const char* kName = "Variable";
  static constexpr auto kColumns = std::tuple(
      column("VariableId",   kId,                &E::getId,         &E::setId),
      column("IdentifierId", kKey | kRequired,   &E::getIdentifier, &E::setIdentifier),
      column("DeclFileId",   kPlace | kRequired, &E::getFile,       &E::setFile),
      column("DeclLineNum",  kPlace,             &E::getLine,       &E::setLine),
      column("DeclColNum",   kPlace,             &E::getColumn,     &E::setColumn),
      column("TypeId",       kNoFlags,           &E::getType,       &E::setType),
      column("isDefined",    kNoFlags,           &E::getIsDefined,  &E::setIsDefined),
      column("Linkage",      kNoFlags,           &E::getLinkage,    &E::setLinkage),
      column("RefCount",     kNoFlags,           &E::getRefCount,   &E::setRefCount));
};

template <>
struct TableColumns<Function> {
  using E = Function;
  static constexpr const char* kName = "Function";
  static constexpr auto kColumns = std::tuple(
      column("FunctionId",   kId,              &E::getId,         &E::setId),
      column("IdentifierId", kKey | kRequired, &E::getIdentifier, &E::setIdentifier),
      column("SourceNameId", kRequired,        &E::getSourceName, &E::setSourceName),
      column("DeclFileId",   kPlace,           &E::getFile,       &E::setFile),
      column("DeclLineNum",  kPlace,           &E::getLine,       &E::setLine),
      column("DeclColNum",   kPlace,           &E::getColumn,     &E::setColumn),
      column("isDefined",    kNoFlags,         &E::getIsDefined,  &E::setIsDefined),
      column("isSpecial",    kNoFlags,         &E::getIsSpecial,  &E::setIsSpecial),
      column("Effect",       kNoFlags,         &E::getEffect,     &E::setEffect),
      column("Linkage",      kNoFlags,         &E::getLinkage,    &E::setLinkage),
      column("RefCount",     kNoFlags,         &E::getRefCount,   &E::setRefCount));
};

template <>
struct TableColumns<ExternalIdentifier> {
  using E = ExternalIdentifier;
  static constexpr const char* kName = "ExternalIdentifier";
  static constexpr auto kColumns = std::tuple(
      column("ExternalIdentifierId", kId,              &E::getId,          &E::setId),
      column("IdentifierId",         kKey | kRequired, &E::getIdentifier,  &E::setIdentifier),
      // before EntityId, which needs it
      column("Kind",                 kKey,             &E::getEntityKind,  &E::setEntityKind),
      column("EntityId",             kKey,             &E::getDescription, &E::setDescription));
  static constexpr std::array kIndexed{"EntityId", "IdentifierId"};
};

template <>
struct TableColumns<Field> {
  using E = Field;
  static constexpr const char* kName = "Field";
  static constexpr auto kColumns = std::tuple(
      column("FieldId",      kId,              &E::getId,         &E::setId),
      column("IdentifierId", kKey | kRequired, &E::getIdentifier, &E::setIdentifier),
      column("DeclFileId",   kPlace,           &E::getFile,       &E::setFile),
      column("DeclLineNum",  kPlace,           &E::getLine,       &E::setLine),
      column("DeclColNum",   kPlace,           &E::getColumn,     &E::setColumn),
      column("RefCount",     kNoFlags,         &E::getRefCount,   &E::setRefCount));
};

template <>
struct TableColumns<EnumConstant> {
  using E = EnumConstant;
  static constexpr const char* kName = "EnumConstant";
  static constexpr auto kColumns = std::tuple(
      column("EnumConstantId", kId,              &E::getId,         &E::setId),
      column("IdentifierId",   kKey | kRequired, &E::getIdentifier, &E::setIdentifier),
      column("DeclFileId",     kPlace,           &E::getFile,       &E::setFile),
      column("DeclLineNum",    kPlace,           &E::getLine,       &E::setLine),
      column("DeclColNum",     kPlace,           &E::getColumn,     &E::setColumn));
  static constexpr std::array kIndexed{"DeclFileId", "DeclLineNum", "DeclColNum"};
};

template <>
struct TableColumns<Label> {
  using E = Label;
  static constexpr const char* kName = "Label";
  static constexpr auto kColumns = std::tuple(
      column("LabelId",      kId,              &E::getId,         &E::setId),
      column("IdentifierId", kKey | kRequired, &E::getIdentifier, &E::setIdentifier),
      column("DeclFileId",   kPlace,           &E::getFile,       &E::setFile),
      column("DeclLineNum",  kPlace,           &E::getLine,       &E::setLine),
      column("DeclColNum",   kPlace,           &E::getColumn,     &E::setColumn));
  static constexpr std::array kIndexed{"DeclFileId", "DeclLineNum", "DeclColNum"};
};

template <>
struct TableColumns<CallPoint> {
  using E = CallPoint;
  static constexpr const char* kName = "CallPoint";
  static constexpr auto kColumns = std::tuple(
      column("CallPointId", kId,              &E::getId,          &E::setId),
      column("FileId",      kPlace,           &E::getFile,        &E::setFile),
      column("LineNum",     kPlace,           &E::getLine,        &E::setLine),
      column("ColNum",      kPlace,           &E::getColumn,      &E::setColumn),
      column("IsValueUsed", kNoFlags,         &E::getIsValueUsed, &E::setIsValueUsed),
      column("CallerId",    kKey | kRequired, &E::getCaller,      &E::setCaller),
      column("CalleeId",    kRequired,        &E::getCallee,      &E::setCallee));
  static constexpr const char* kOrderBy = "LineNum";
};

template <>
struct TableColumns<Unit> {
  using E = Unit;
  static constexpr const char* kName = "Unit";
  static constexpr auto kColumns = std::tuple(
      column("UnitId",     kId,              &E::getId,        &E::setId),
      column("MainFileId", kKey | kRequired, &E::getMainFile,  &E::setMainFile),
      column("Directory",  kKey,             &E::getDirectory, &E::setDirectory),
      column("Output",     kKey,             &E::getOutput,    &E::setOutput),
      column("Command",    kKeyIfLastEmpty,  &E::getCommand,   &E::setCommand),
      column("Name",       kNoFlags,         &E::getName,      &E::setName),
      column("Recorder",   kNoFlags,         &E::getRecorder,  &E::setRecorder),
      column("Options",    kNoFlags,         &E::getOptions,   &E::setOptions),
      column("Digest",     kNoFlags,         &E::getDigest,    &E::setDigest),
      column("IsFolded",   kNoFlags,         &E::getIsFolded,  &E::setIsFolded));
  static constexpr std::array kDeclared{"Name",   "MainFileId", "Directory", "Command", "Output",
                                        "Recorder", "Options",  "Digest",    "IsFolded"};
  static constexpr std::array<const char*, 0> kIndexed{};  // a save reads the whole table first
};

template <>
struct TableColumns<UnitFile> {
  using E = UnitFile;
  static constexpr const char* kName = "UnitFile";
  static constexpr auto kColumns = std::tuple(
      column("rowid",  kId,              &E::getId,   &E::setId),
      column("UnitId", kKey | kRequired, &E::getUnit, &E::setUnit),
      column("FileId", kKey | kRequired, &E::getFile, &E::setFile));
  static constexpr std::array kIndexed{"UnitId"};
};

template <>
struct TableColumns<Include> {
  using E = Include;
  static constexpr const char* kName = "Include";
  static constexpr auto kColumns = std::tuple(
      column("rowid",           kId,                &E::getId,       &E::setId),
      column("IncludingFileId", kPlace | kRequired, &E::getFile,     &E::setFile),
      column("LineNum",         kPlace,             &E::getLine,     &E::setLine),
      column("IncludedFileId",  kKey | kRequired,   &E::getIncluded, &E::setIncluded),
      column("Kind",            kNoFlags,           &E::getKind,     &E::setKind));
  static constexpr std::array kIndexed{"IncludingFileId", "LineNum"};
};

template <>
struct TableColumns<Reference> {
  using E = Reference;
  static constexpr const char* kName = "Reference";
  static constexpr auto kColumns = std::tuple(
      column("rowid",      kId,                &E::getId,         &E::setId),
      // before EntityId, which needs it
      column("EntityKind", kKey,               &E::getEntityKind, &E::setEntityKind),
      column("EntityId",   kKey | kRequired,   &E::getEntity,     &E::setEntity),
      column("FileId",     kPlace | kRequired, &E::getFile,       &E::setFile),
      column("LineNum",    kPlace,             &E::getLine,       &E::setLine),
      column("ColNum",     kPlace,             &E::getColumn,     &E::setColumn),
      column("Roles",      kNoFlags,           &E::getRoles,      &E::setRoles));
  static constexpr std::array kIndexed{"FileId", "LineNum", "ColNum"};
};

template <>
struct TableColumns<Property> {
  using E = Property;
  static constexpr const char* kName = "Property";
  static constexpr auto kColumns = std::tuple(
      column("rowid",      kId,              &E::getId,         &E::setId),
      column("EntityKind", kKey,             &E::getEntityKind, &E::setEntityKind),
      column("EntityId",   kKey | kRequired, &E::getEntity,     &E::setEntity),
      column("Flags",      kNoFlags,         &E::getFlags,      &E::setFlags),
      column("OwnerId",    kFirstStays,      &E::getOwner,      &E::setOwner),
      column("Scope",      kFirstStays,      &E::getScope,      &E::setScope));
  static constexpr std::array kIndexed{"EntityId"};
};

// clang-format on

template <class Column>
inline constexpr bool isMapped = requires(const Column& column) {
  column.get;
};

/// A reference to a row of a table that another column of the row names.
template <class U>
inline constexpr bool isEntity =
    std::is_same_v<U, EntityDescription> || std::is_same_v<U, EntityReference>;

template <class U>
inline constexpr bool isReference = std::is_pointer_v<U> || isEntity<U>;

/// The classes that an EntityReference may denote.
using EntityElements = TypeList<Type, Function, Variable, Macro, EnumConstant, Field, Label>;

/// Calls visit(column) for each column that a member goes to.
template <class T, class Visit>
constexpr void eachColumn(Visit&& visit) {
  const auto visitMapped = [&visit](const auto& column) {
    if constexpr (isMapped<std::decay_t<decltype(column)>>) visit(column);
  };
  std::apply([&](const auto&... columns) { (visitMapped(columns), ...); },
             TableColumns<T>::kColumns);
}

/// The column of the row ids.
template <class T>
constexpr const char* idColumnOf() {
  return std::get<0>(TableColumns<T>::kColumns).name;
}

/// Replaces each reference of the element by replacement(reference).
template <class T, class Replacement>
void replaceReferences(T& element, Replacement&& replacement) {
  eachColumn<T>([&](const auto& column) {
    using Value = typename std::decay_t<decltype(column)>::Value;
    if constexpr (isReference<Value>) {
      (element.*column.set)(replacement((element.*column.get)()));
    }
  });
}

/// The element that a reference denotes, or null.
template <class T>
const T* denoted(const T* element) {
  return element;
}
inline const NamedElement* denoted(const EntityReference& reference) { return reference.entity; }

/// Whether test(element) holds for what each required reference denotes.
template <class T, class Test>
bool everyRequired(const T& element, Test&& test) {
  bool holds = true;
  eachColumn<T>([&](const auto& column) {
    using Value = typename std::decay_t<decltype(column)>::Value;
    if constexpr (isReference<Value>) {
      if (column.has(kRequired)) holds = holds && test(denoted((element.*column.get)()));
    }
  });
  return holds;
}

}  // namespace orvalesca::databases_merger
