#include "fe_database/compilation_database/column_value.h"
#include "fe_database/compilation_database/table_description.h"
#include "persistence/sqlite_report.h"

/// Which member goes to which column, in one place.
///
/// Order is meaning: it is the order of the columns in every statement, of the parameters, and of
/// reading a row. Columns are addressed by name, so the order of the schema is free.
///   kPrimaryKey  the row id ("rowid" where the table declares none)
///   kUnique      belongs to the key by which a row is found again; never rewritten
namespace orvalesca::databases_merger {

using persistence::kPrimaryKey;
using persistence::kUnique;

namespace {

constexpr std::uint32_t kNoFlags = 0;

/// Adds columns to a table; the accessors tell the type and how they pass it.
template <class T>
struct Columns {
  TableDescription<T>& table;

  template <class U, class Owner>
  void operator()(const char* name, std::uint32_t flags, U (Owner::*get)() const,
                  void (Owner::*set)(U)) const {
    using Field = DataField<T, U>;
    table.addField({name, flags},
                   std::make_unique<Field>(static_cast<typename Field::ValueGetter>(get),
                                           static_cast<typename Field::ValueSetter>(set)));
  }

  template <class U, class Owner>
  void operator()(const char* name, std::uint32_t flags, const U& (Owner::*get)() const,
                  void (Owner::*set)(const U&)) const {
    using Field = DataField<T, U>;
    table.addField({name, flags},
                   std::make_unique<Field>(static_cast<typename Field::ReferenceGetter>(get),
                                           static_cast<typename Field::ReferenceSetter>(set)));
  }
};

}  // namespace

void checkBind(int rc, sqlite3_stmt* statement) {
  persistence::reportSqlite(rc, SQLITE_OK, sqlite3_db_handle(statement), statement);
}

// clang-format off

template <>
void describe(TableDescription<File>& table) {
  using E = File;
  table.name = "File";
  const Columns<E> column{table};
  column("FileId", kPrimaryKey, &E::getId,        &E::setId);
  column("Path",   kUnique,     &E::getPath,      &E::setPath);
  column("Kind",   kNoFlags,    &E::getKind,      &E::setKind);
  column("Lang",   kNoFlags,    &E::getLanguage,  &E::setLanguage);
  // a number: any but 0 reads as true
  column("Huge",   kNoFlags,    &E::getHugeForDB, &E::setHugeFromDB);
}

template <>
void describe(TableDescription<Identifier>& table) {
  using E = Identifier;
  table.name = "Identifier";
  const Columns<E> column{table};
  column("IdentifierId", kPrimaryKey, &E::getId,    &E::setId);
  column("Name",         kUnique,     &E::getName,  &E::setName);
  // the schema has Count before Kind
  column("Kind",         kNoFlags,    &E::getKind,  &E::setKind);
  column("Count",        kNoFlags,    &E::getCount, &E::setCount);
}

template <>
void describe(TableDescription<Macro>& table) {
  using E = Macro;
  table.name = "Macro";
  const Columns<E> column{table};
  column("MacroId",                 kPrimaryKey, &E::getId,                      &E::setId);
  column("IdentifierId",            kUnique,     &E::getIdentifier,              &E::setIdentifier);
  column("DeclFileId",              kUnique,     &E::getFile,                    &E::setFile);
  column("DeclLineNum",             kUnique,     &E::getLine,                    &E::setLine);
  column("DeclColNum",              kUnique,     &E::getColumn,                  &E::setColumn);
  column("RefCount",                kNoFlags,    &E::getRefCount,                &E::setRefCount);
  // before ValueIsSigned, which re-labels it
  column("Value",                   kNoFlags,    &E::getIntegralValueForDB,      &E::setIntegralValueFromDB);
  column("ValueIsSigned",           kNoFlags,    &E::getSignednessForDB,         &E::setSignednessFromDB);
  column("IsObjectLike",            kNoFlags,    &E::getIsObjectLike,            &E::setIsObjectLike);
  column("IsVariadic",              kNoFlags,    &E::getIsVariadic,              &E::setIsVariadic);
  column("IsCommandLineDefinition", kNoFlags,    &E::getIsCommandLineDefinition, &E::setIsCommandLineDefinition);
  column("IsPredefined",            kNoFlags,    &E::getIsPredefined,            &E::setIsPredefined);
  column("Text",                    kNoFlags,    &E::getText,                    &E::setText);
}

template <>
void describe(TableDescription<MacroInvocation>& table) {
  using E = MacroInvocation;
  table.name = "MacroInvocation";
  const Columns<E> column{table};
  column("MacroInvocationId", kPrimaryKey, &E::getId,            &E::setId);
  column("MacroId",           kUnique,     &E::getMacro,         &E::setMacro);
  column("FileId",            kNoFlags,    &E::getFile,          &E::setFile);
  column("LineNum",           kNoFlags,    &E::getLine,          &E::setLine);
  column("ColNum",            kNoFlags,    &E::getColumn,        &E::setColumn);
  // ppFileId of the schema is never written
  column("ppLineNum",         kUnique,     &E::getPpLine,        &E::setPpLine);
  column("ppStartColNum",     kUnique,     &E::getPpStartColumn, &E::setPpStartColumn);
  column("ppEndColNum",       kNoFlags,    &E::getPpEndColumn,   &E::setPpEndColumn);
}

template <>
void describe(TableDescription<MacroInvocationCodeOrigin>& table) {
  using E = MacroInvocationCodeOrigin;
  table.name = "MacroInvocationCodeOrigin";
  const Columns<E> column{table};
  column("rowid",                       kPrimaryKey, &E::getId,          &E::setId);
  column("FileId",                      kNoFlags,    &E::getFile,        &E::setFile);
  column("LineNum",                     kNoFlags,    &E::getLine,        &E::setLine);
  column("ColNum",                      kNoFlags,    &E::getColumn,      &E::setColumn);
  column("MacroInvocationId",           kNoFlags,    &E::getInvocation,  &E::setInvocation);
  column("OffsetColumnInInvocation",    kNoFlags,    &E::getOffset,      &E::setOffset);
  column("EndOffsetColumnInInvocation", kNoFlags,    &E::getEndOffset,   &E::setEndOffset);
  column("IsParameter",                 kNoFlags,    &E::getIsParameter, &E::setIsParameter);
  column("TokenString",                 kNoFlags,    &E::getTokenString, &E::setTokenString);
}

template <>
void describe(TableDescription<MacroExpansion>& table) {
  using E = MacroExpansion;
  table.name = "MacroExpansion";
  const Columns<E> column{table};
  column("rowid",        kPrimaryKey, &E::getId,           &E::setId);
  column("FileId",       kNoFlags,    &E::getFile,         &E::setFile);
  column("LineNum",      kNoFlags,    &E::getLine,         &E::setLine);
  column("ColNum",       kNoFlags,    &E::getColumn,       &E::setColumn);
  // PpLineNum and PpColNum in the schema: the same columns
  column("ppLineNum",    kNoFlags,    &E::getPpLine,       &E::setPpLine);
  column("ppColNum",     kNoFlags,    &E::getPpColumn,     &E::setPpColumn);
  column("ExpandedCode", kNoFlags,    &E::getExpandedCode, &E::setExpandedCode);
  column("MacroCall",    kNoFlags,    &E::getMacroCall,    &E::setMacroCall);
}

template <>
void describe(TableDescription<Type>& table) {
  using E = Type;
  table.name = "Type";
  const Columns<E> column{table};
  column("TypeId",       kPrimaryKey, &E::getId,          &E::setId);
  column("IdentifierId", kUnique,     &E::getIdentifier,  &E::setIdentifier);
  column("Unnamed",      kNoFlags,    &E::getUnnamed,     &E::setUnnamed);
  column("Local",        kNoFlags,    &E::getLocal,       &E::setLocal);
  column("Incomplete",   kNoFlags,    &E::getIncomplete,  &E::setIncomplete);
  column("DeclFileId",   kUnique,     &E::getFile,        &E::setFile);
  column("DeclLineNum",  kUnique,     &E::getLine,        &E::setLine);
  column("DeclColNum",   kUnique,     &E::getColumn,      &E::setColumn);
  column("Kind",         kUnique,     &E::getKind,        &E::setKind);
  column("RefCount",     kNoFlags,    &E::getRefCount,    &E::setRefCount);
  column("RefTagCount",  kNoFlags,    &E::getRefTagCount, &E::setRefTagCount);
}

template <>
void describe(TableDescription<TypeReference>& table) {
  using E = TypeReference;
  table.name = "TypeReference";
  const Columns<E> column{table};
  column("rowid",          kPrimaryKey, &E::getId,             &E::setId);
  column("DeclaredType",   kUnique,     &E::getDeclaredType,   &E::setDeclaredType);
  column("ReferencedType", kNoFlags,    &E::getReferencedType, &E::setReferencedType);
}

template <>
void describe(TableDescription<Variable>& table) {
  using E = Variable;
  table.name = "Variable";
  const Columns<E> column{table};
  column("VariableId",   kPrimaryKey, &E::getId,         &E::setId);
  column("IdentifierId", kUnique,     &E::getIdentifier, &E::setIdentifier);
  column("DeclFileId",   kUnique,     &E::getFile,       &E::setFile);
  column("DeclLineNum",  kUnique,     &E::getLine,       &E::setLine);
  column("DeclColNum",   kUnique,     &E::getColumn,     &E::setColumn);
  column("TypeId",       kNoFlags,    &E::getType,       &E::setType);
  column("isDefined",    kNoFlags,    &E::getIsDefined,  &E::setIsDefined);
  column("Linkage",      kNoFlags,    &E::getLinkage,    &E::setLinkage);
  column("RefCount",     kNoFlags,    &E::getRefCount,   &E::setRefCount);
}

template <>
void describe(TableDescription<Function>& table) {
  using E = Function;
  table.name = "Function";
  const Columns<E> column{table};
  column("FunctionId",   kPrimaryKey, &E::getId,         &E::setId);
  column("IdentifierId", kUnique,     &E::getIdentifier, &E::setIdentifier);
  column("SourceNameId", kNoFlags,    &E::getSourceName, &E::setSourceName);
  column("DeclFileId",   kUnique,     &E::getFile,       &E::setFile);
  column("DeclLineNum",  kUnique,     &E::getLine,       &E::setLine);
  column("DeclColNum",   kUnique,     &E::getColumn,     &E::setColumn);
  column("isDefined",    kNoFlags,    &E::getIsDefined,  &E::setIsDefined);
  column("isSpecial",    kNoFlags,    &E::getIsSpecial,  &E::setIsSpecial);
  column("Effect",       kNoFlags,    &E::getEffect,     &E::setEffect);
  column("Linkage",      kNoFlags,    &E::getLinkage,    &E::setLinkage);
  column("RefCount",     kNoFlags,    &E::getRefCount,   &E::setRefCount);
}

template <>
void describe(TableDescription<ExternalIdentifier>& table) {
  using E = ExternalIdentifier;
  table.name = "ExternalIdentifier";
  const Columns<E> column{table};
  column("ExternalIdentifierId", kPrimaryKey, &E::getId,          &E::setId);
  column("IdentifierId",         kUnique,     &E::getIdentifier,  &E::setIdentifier);
  // before EntityId, which needs it
  column("Kind",                 kUnique,     &E::getEntityKind,  &E::setEntityKind);
  column("EntityId",             kUnique,     &E::getDescription, &E::setDescription);
}

template <>
void describe(TableDescription<Field>& table) {
  using E = Field;
  table.name = "Field";
  const Columns<E> column{table};
  column("FieldId",      kPrimaryKey, &E::getId,         &E::setId);
  column("IdentifierId", kUnique,     &E::getIdentifier, &E::setIdentifier);
  column("DeclFileId",   kUnique,     &E::getFile,       &E::setFile);
  column("DeclLineNum",  kUnique,     &E::getLine,       &E::setLine);
  column("DeclColNum",   kUnique,     &E::getColumn,     &E::setColumn);
  column("RefCount",     kNoFlags,    &E::getRefCount,   &E::setRefCount);
}

template <>
void describe(TableDescription<EnumConstant>& table) {
  using E = EnumConstant;
  table.name = "EnumConstant";
  const Columns<E> column{table};
  column("EnumConstantId", kPrimaryKey, &E::getId,         &E::setId);
  column("IdentifierId",   kUnique,     &E::getIdentifier, &E::setIdentifier);
  column("DeclFileId",     kUnique,     &E::getFile,       &E::setFile);
  column("DeclLineNum",    kUnique,     &E::getLine,       &E::setLine);
  column("DeclColNum",     kUnique,     &E::getColumn,     &E::setColumn);
}

template <>
void describe(TableDescription<Label>& table) {
  using E = Label;
  table.name = "Label";
  const Columns<E> column{table};
  column("LabelId",      kPrimaryKey, &E::getId,         &E::setId);
  column("IdentifierId", kUnique,     &E::getIdentifier, &E::setIdentifier);
  column("DeclFileId",   kUnique,     &E::getFile,       &E::setFile);
  column("DeclLineNum",  kUnique,     &E::getLine,       &E::setLine);
  column("DeclColNum",   kUnique,     &E::getColumn,     &E::setColumn);
}

template <>
void describe(TableDescription<CallPoint>& table) {
  using E = CallPoint;
  table.name = "CallPoint";
  table.hasOrderBy = true;
  table.orderBy = "LineNum";
  const Columns<E> column{table};
  column("CallPointId", kPrimaryKey, &E::getId,          &E::setId);
  column("FileId",      kUnique,     &E::getFile,        &E::setFile);
  column("LineNum",     kUnique,     &E::getLine,        &E::setLine);
  column("ColNum",      kUnique,     &E::getColumn,      &E::setColumn);
  column("IsValueUsed", kNoFlags,    &E::getIsValueUsed, &E::setIsValueUsed);
  column("CallerId",    kUnique,     &E::getCaller,      &E::setCaller);
  column("CalleeId",    kNoFlags,    &E::getCallee,      &E::setCallee);
}

// clang-format on

}  // namespace orvalesca::databases_merger
