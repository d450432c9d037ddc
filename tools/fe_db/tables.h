#pragma once

#include <array>
#include <span>
#include <string_view>

/// What the tables of a database file hold, column by column, and what their references lead to:
/// the only such list of this program. SQL texts are made of it.
namespace fe_db_tools {

enum class TableId {
  none,
  file,
  identifier,
  macro,
  macroInvocation,
  macroInvocationCodeOrigin,
  macroExpansion,
  type,
  typeReference,
  variable,
  function,
  externalIdentifier,
  field,
  enumConstant,
  label,
  callPoint,
};

enum class ColumnKind {
  number,
  text,
  reference,  ///< the id of a row of the table `refersTo`
  entity,     ///< the id of a variable or of a function, as the column Kind of the row says
};

/// What a row may hold in place of a value.
enum class Presence {
  usual,     ///< a reference may be NULL or 0, anything else is there
  required,  ///< a reference that always leads to a row
  optional,  ///< NULL is a value
};

struct Column {
  std::string_view name;
  ColumnKind kind;
  TableId refersTo = TableId::none;
  Presence presence = Presence::usual;
};

struct Table {
  TableId id;
  std::string_view name;
  std::string_view rowId;           ///< the column that references to this table hold
  std::span<const Column> columns;  ///< all others, as the file declares them
  /// By what the library finds a row again, and what a reference to this table prints.
  std::span<const std::string_view> key;
  bool onlyInCompilation;
};

namespace table_columns {

inline constexpr ColumnKind kNumber = ColumnKind::number;
inline constexpr ColumnKind kText = ColumnKind::text;
inline constexpr ColumnKind kReference = ColumnKind::reference;
inline constexpr Presence kRequired = Presence::required;

// clang-format off
inline constexpr Column kFile[] = {
    {"Path", kText}, {"Kind", kNumber}, {"Lang", kNumber}, {"Huge", kNumber}};
inline constexpr Column kIdentifier[] = {
    {"Name", kText}, {"Count", kNumber}, {"Kind", kNumber}};
inline constexpr Column kMacro[] = {
    {"IdentifierId", kReference, TableId::identifier, kRequired},
    {"DeclFileId", kReference, TableId::file}, {"DeclLineNum", kNumber}, {"DeclColNum", kNumber},
    {"RefCount", kNumber}, {"Value", kNumber, TableId::none, Presence::optional},
    {"ValueIsSigned", kNumber}, {"IsObjectLike", kNumber}, {"IsVariadic", kNumber},
    {"IsCommandLineDefinition", kNumber}, {"IsPredefined", kNumber}, {"Text", kText}};
inline constexpr Column kMacroInvocation[] = {
    {"MacroId", kReference, TableId::macro, kRequired},
    {"FileId", kReference, TableId::file}, {"LineNum", kNumber}, {"ColNum", kNumber},
    {"ppFileId", kReference, TableId::file}, {"ppLineNum", kNumber}, {"ppStartColNum", kNumber},
    {"ppEndColNum", kNumber}};
inline constexpr Column kMacroInvocationCodeOrigin[] = {
    {"FileId", kReference, TableId::file}, {"LineNum", kNumber}, {"ColNum", kNumber},
    {"MacroInvocationId", kReference, TableId::macroInvocation},
    {"OffsetColumnInInvocation", kNumber}, {"EndOffsetColumnInInvocation", kNumber},
    {"IsParameter", kNumber}, {"TokenString", kText}};
inline constexpr Column kMacroExpansion[] = {
    {"MacroCall", kText}, {"ExpandedCode", kText},
    {"FileId", kReference, TableId::file}, {"LineNum", kNumber}, {"ColNum", kNumber},
    {"PpLineNum", kNumber}, {"PpColNum", kNumber}};
inline constexpr Column kType[] = {
    {"IdentifierId", kReference, TableId::identifier, kRequired},
    {"Unnamed", kNumber}, {"Local", kNumber}, {"Incomplete", kNumber},
    {"DeclFileId", kReference, TableId::file}, {"DeclLineNum", kNumber}, {"DeclColNum", kNumber},
    {"Kind", kNumber}, {"RefCount", kNumber}, {"RefTagCount", kNumber}};
inline constexpr Column kTypeReference[] = {
    {"DeclaredType", kReference, TableId::type}, {"ReferencedType", kReference, TableId::type}};
inline constexpr Column kVariable[] = {
    {"IdentifierId", kReference, TableId::identifier, kRequired},
    {"DeclFileId", kReference, TableId::file, kRequired}, {"DeclLineNum", kNumber},
    {"DeclColNum", kNumber}, {"TypeId", kReference, TableId::type},
    {"isDefined", kNumber}, {"Linkage", kNumber}, {"RefCount", kNumber}};
inline constexpr Column kFunction[] = {
    {"IdentifierId", kReference, TableId::identifier, kRequired},
    {"SourceNameId", kReference, TableId::identifier, kRequired},
    {"DeclFileId", kReference, TableId::file}, {"DeclLineNum", kNumber}, {"DeclColNum", kNumber},
    {"isDefined", kNumber}, {"isSpecial", kNumber}, {"Effect", kNumber}, {"Linkage", kNumber},
    {"RefCount", kNumber}};
inline constexpr Column kExternalIdentifier[] = {
    {"IdentifierId", kReference, TableId::identifier, kRequired},
    {"Kind", kNumber}, {"EntityId", ColumnKind::entity}};
inline constexpr Column kField[] = {
    {"IdentifierId", kReference, TableId::identifier, kRequired},
    {"DeclFileId", kReference, TableId::file}, {"DeclLineNum", kNumber}, {"DeclColNum", kNumber},
    {"RefCount", kNumber}};
/// Of enum constants and labels: a name at a position, and nothing else.
inline constexpr Column kNameAtPosition[] = {
    {"IdentifierId", kReference, TableId::identifier, kRequired},
    {"DeclFileId", kReference, TableId::file}, {"DeclLineNum", kNumber}, {"DeclColNum", kNumber}};
inline constexpr Column kCallPoint[] = {
    {"FileId", kReference, TableId::file}, {"LineNum", kNumber}, {"ColNum", kNumber},
    {"IsValueUsed", kNumber},
    {"CallerId", kReference, TableId::function, kRequired},
    {"CalleeId", kReference, TableId::function, kRequired}};

inline constexpr std::string_view kPathKey[] = {"Path"};
inline constexpr std::string_view kNameKey[] = {"Name"};
inline constexpr std::string_view kPositionKey[] = {
    "DeclFileId", "DeclLineNum", "DeclColNum", "IdentifierId"};
/// One name at one place may be several types, told apart by their kind.
inline constexpr std::string_view kTypeKey[] = {
    "DeclFileId", "DeclLineNum", "DeclColNum", "IdentifierId", "Kind"};
inline constexpr std::string_view kInvocationKey[] = {"MacroId", "ppLineNum", "ppStartColNum"};
inline constexpr std::string_view kTypeReferenceKey[] = {"DeclaredType"};
inline constexpr std::string_view kExternalKey[] = {"IdentifierId", "Kind", "EntityId"};
inline constexpr std::string_view kCallKey[] = {"FileId", "LineNum", "ColNum", "CallerId"};
// clang-format on

}  // namespace table_columns

namespace tables {
using namespace table_columns;
// clang-format off
inline constexpr std::array<Table, 15> kAll = {{
    {TableId::file, "File", "FileId", kFile, kPathKey, false},
    {TableId::identifier, "Identifier", "IdentifierId", kIdentifier, kNameKey, false},
    {TableId::macro, "Macro", "MacroId", kMacro, kPositionKey, false},
    {TableId::macroInvocation, "MacroInvocation", "MacroInvocationId", kMacroInvocation,
     kInvocationKey, false},
    {TableId::macroInvocationCodeOrigin, "MacroInvocationCodeOrigin", "rowid",
     kMacroInvocationCodeOrigin, {}, false},
    {TableId::macroExpansion, "MacroExpansion", "rowid", kMacroExpansion, {}, false},
    {TableId::type, "Type", "TypeId", kType, kTypeKey, true},
    {TableId::typeReference, "TypeReference", "rowid", kTypeReference, kTypeReferenceKey, true},
    {TableId::variable, "Variable", "VariableId", kVariable, kPositionKey, true},
    {TableId::function, "Function", "FunctionId", kFunction, kPositionKey, true},
    {TableId::externalIdentifier, "ExternalIdentifier", "ExternalIdentifierId",
     kExternalIdentifier, kExternalKey, true},
    {TableId::field, "Field", "FieldId", kField, kPositionKey, true},
    {TableId::enumConstant, "EnumConstant", "EnumConstantId", kNameAtPosition, kPositionKey, true},
    {TableId::label, "Label", "LabelId", kNameAtPosition, kPositionKey, true},
    {TableId::callPoint, "CallPoint", "CallPointId", kCallPoint, kCallKey, true},
}};
// clang-format on
}  // namespace tables

inline constexpr const std::array<Table, 15>& kTables = tables::kAll;

constexpr const Table& tableOf(TableId id) { return kTables[static_cast<std::size_t>(id) - 1]; }

constexpr const Column& columnOf(const Table& table, std::string_view name) {
  for (const Column& column : table.columns) {
    if (column.name == name) return column;
  }
  throw "a key names a column that the table lacks";
}

static_assert([] {
  for (const Table& table : kTables) {
    if (&tableOf(table.id) != &table) return false;
    for (const std::string_view name : table.key) columnOf(table, name);
  }
  return true;
}());

}  // namespace fe_db_tools
