#include "fe_database/compilation_database/column_value.h"
#include "fe_database/compilation_database/table_description.h"
#include "persistence/sqlite_report.h"

/// Which member goes to which column, in one place.
///
/// Order is meaning: it is the order of the columns in every statement, of the parameters, and of
/// reading a row. Columns are addressed by name, so the order of the schema is free.
///   kPrimaryKey  the row id ("rowid" where the table declares none)
///   kUnique      belongs to the key by which a row is found again; never rewritten
///   byValue, byReference  how the accessors pass the member; text has to go by reference
namespace orvalesca::databases_merger {

using persistence::kPrimaryKey;
using persistence::kUnique;

namespace {

constexpr std::uint32_t kNoFlags = 0;

template <class T, class U, class Owner>
std::unique_ptr<GenericDataField<T>> byValue(U (Owner::*get)() const, void (Owner::*set)(U)) {
  return std::make_unique<DataField<T, U>>(static_cast<U (T::*)() const>(get),
                                           static_cast<void (T::*)(U)>(set));
}

template <class T, class U, class Owner>
std::unique_ptr<GenericDataField<T>> byReference(const U& (Owner::*get)() const,
                                                 void (Owner::*set)(const U&)) {
  return std::make_unique<DataField<T, U>>(static_cast<const U& (T::*)() const>(get),
                                           static_cast<void (T::*)(const U&)>(set));
}

}  // namespace

void checkBind(int rc, sqlite3_stmt* statement) {
  persistence::reportSqlite(rc, SQLITE_OK, sqlite3_db_handle(statement), statement);
}

// clang-format off

template <>
void describe(TableDescription<File>& table) {
  using E = File;
  table.name = "File";
  table.addField({"FileId",  kPrimaryKey}, byValue<E>    (&E::getId,        &E::setId));
  table.addField({"Path",    kUnique},     byReference<E>(&E::getPath,      &E::setPath));
  table.addField({"Kind",    kNoFlags},    byValue<E>    (&E::getKind,      &E::setKind));
  table.addField({"Lang",    kNoFlags},    byValue<E>    (&E::getLanguage,  &E::setLanguage));
  table.addField({"Huge",    kNoFlags},    byValue<E>    (&E::getHugeForDB, &E::setHugeFromDB));  // a number: any but 0 reads as true
}

template <>
void describe(TableDescription<Identifier>& table) {
  using E = Identifier;
  table.name = "Identifier";
  table.addField({"IdentifierId",  kPrimaryKey}, byValue<E>    (&E::getId,    &E::setId));
  table.addField({"Name",          kUnique},     byReference<E>(&E::getName,  &E::setName));
  table.addField({"Kind",          kNoFlags},    byValue<E>    (&E::getKind,  &E::setKind));  // the schema has Count before Kind
  table.addField({"Count",         kNoFlags},    byValue<E>    (&E::getCount, &E::setCount));
}

template <>
void describe(TableDescription<Macro>& table) {
  using E = Macro;
  table.name = "Macro";
  table.addField({"MacroId",                  kPrimaryKey}, byValue<E>    (&E::getId,                      &E::setId));
  table.addField({"IdentifierId",             kUnique},     byValue<E>    (&E::getIdentifier,              &E::setIdentifier));
  table.addField({"DeclFileId",               kUnique},     byValue<E>    (&E::getFile,                    &E::setFile));
  table.addField({"DeclLineNum",              kUnique},     byValue<E>    (&E::getLine,                    &E::setLine));
  table.addField({"DeclColNum",               kUnique},     byValue<E>    (&E::getColumn,                  &E::setColumn));
  table.addField({"RefCount",                 kNoFlags},    byValue<E>    (&E::getRefCount,                &E::setRefCount));
  table.addField({"Value",                    kNoFlags},    byValue<E>    (&E::getIntegralValueForDB,      &E::setIntegralValueFromDB));  // before ValueIsSigned, which re-labels it
  table.addField({"ValueIsSigned",            kNoFlags},    byValue<E>    (&E::getSignednessForDB,         &E::setSignednessFromDB));
  table.addField({"IsObjectLike",             kNoFlags},    byValue<E>    (&E::getIsObjectLike,            &E::setIsObjectLike));
  table.addField({"IsVariadic",               kNoFlags},    byValue<E>    (&E::getIsVariadic,              &E::setIsVariadic));
  table.addField({"IsCommandLineDefinition",  kNoFlags},    byValue<E>    (&E::getIsCommandLineDefinition, &E::setIsCommandLineDefinition));
  table.addField({"IsPredefined",             kNoFlags},    byValue<E>    (&E::getIsPredefined,            &E::setIsPredefined));
  table.addField({"Text",                     kNoFlags},    byReference<E>(&E::getText,                    &E::setText));
}

template <>
void describe(TableDescription<MacroInvocation>& table) {
  using E = MacroInvocation;
  table.name = "MacroInvocation";
  table.addField({"MacroInvocationId",  kPrimaryKey}, byValue<E>(&E::getId,            &E::setId));
  table.addField({"MacroId",            kUnique},     byValue<E>(&E::getMacro,         &E::setMacro));
  table.addField({"FileId",             kNoFlags},    byValue<E>(&E::getFile,          &E::setFile));
  table.addField({"LineNum",            kNoFlags},    byValue<E>(&E::getLine,          &E::setLine));
  table.addField({"ColNum",             kNoFlags},    byValue<E>(&E::getColumn,        &E::setColumn));
  table.addField({"ppLineNum",          kUnique},     byValue<E>(&E::getPpLine,        &E::setPpLine));  // ppFileId of the schema is never written
  table.addField({"ppStartColNum",      kUnique},     byValue<E>(&E::getPpStartColumn, &E::setPpStartColumn));
  table.addField({"ppEndColNum",        kNoFlags},    byValue<E>(&E::getPpEndColumn,   &E::setPpEndColumn));
}

template <>
void describe(TableDescription<MacroInvocationCodeOrigin>& table) {
  using E = MacroInvocationCodeOrigin;
  table.name = "MacroInvocationCodeOrigin";
  table.addField({"rowid",                        kPrimaryKey}, byValue<E>    (&E::getId,          &E::setId));
  table.addField({"FileId",                       kNoFlags},    byValue<E>    (&E::getFile,        &E::setFile));
  table.addField({"LineNum",                      kNoFlags},    byValue<E>    (&E::getLine,        &E::setLine));
  table.addField({"ColNum",                       kNoFlags},    byValue<E>    (&E::getColumn,      &E::setColumn));
  table.addField({"MacroInvocationId",            kNoFlags},    byValue<E>    (&E::getInvocation,  &E::setInvocation));
  table.addField({"OffsetColumnInInvocation",     kNoFlags},    byValue<E>    (&E::getOffset,      &E::setOffset));
  table.addField({"EndOffsetColumnInInvocation",  kNoFlags},    byValue<E>    (&E::getEndOffset,   &E::setEndOffset));
  table.addField({"IsParameter",                  kNoFlags},    byValue<E>    (&E::getIsParameter, &E::setIsParameter));
  table.addField({"TokenString",                  kNoFlags},    byReference<E>(&E::getTokenString, &E::setTokenString));
}

template <>
void describe(TableDescription<MacroExpansion>& table) {
  using E = MacroExpansion;
  table.name = "MacroExpansion";
  table.addField({"rowid",         kPrimaryKey}, byValue<E>    (&E::getId,           &E::setId));
  table.addField({"FileId",        kNoFlags},    byValue<E>    (&E::getFile,         &E::setFile));
  table.addField({"LineNum",       kNoFlags},    byValue<E>    (&E::getLine,         &E::setLine));
  table.addField({"ColNum",        kNoFlags},    byValue<E>    (&E::getColumn,       &E::setColumn));
  table.addField({"ppLineNum",     kNoFlags},    byValue<E>    (&E::getPpLine,       &E::setPpLine));  // PpLineNum and PpColNum in the schema: the same columns
  table.addField({"ppColNum",      kNoFlags},    byValue<E>    (&E::getPpColumn,     &E::setPpColumn));
  table.addField({"ExpandedCode",  kNoFlags},    byReference<E>(&E::getExpandedCode, &E::setExpandedCode));
  table.addField({"MacroCall",     kNoFlags},    byReference<E>(&E::getMacroCall,    &E::setMacroCall));
}

template <>
void describe(TableDescription<Type>& table) {
  using E = Type;
  table.name = "Type";
  table.addField({"TypeId",        kPrimaryKey}, byValue<E>(&E::getId,          &E::setId));
  table.addField({"IdentifierId",  kUnique},     byValue<E>(&E::getIdentifier,  &E::setIdentifier));
  table.addField({"Unnamed",       kNoFlags},    byValue<E>(&E::getUnnamed,     &E::setUnnamed));
  table.addField({"Local",         kNoFlags},    byValue<E>(&E::getLocal,       &E::setLocal));
  table.addField({"Incomplete",    kNoFlags},    byValue<E>(&E::getIncomplete,  &E::setIncomplete));
  table.addField({"DeclFileId",    kUnique},     byValue<E>(&E::getFile,        &E::setFile));
  table.addField({"DeclLineNum",   kUnique},     byValue<E>(&E::getLine,        &E::setLine));
  table.addField({"DeclColNum",    kUnique},     byValue<E>(&E::getColumn,      &E::setColumn));
  table.addField({"Kind",          kUnique},     byValue<E>(&E::getKind,        &E::setKind));
  table.addField({"RefCount",      kNoFlags},    byValue<E>(&E::getRefCount,    &E::setRefCount));
  table.addField({"RefTagCount",   kNoFlags},    byValue<E>(&E::getRefTagCount, &E::setRefTagCount));
}

template <>
void describe(TableDescription<TypeReference>& table) {
  using E = TypeReference;
  table.name = "TypeReference";
  table.addField({"rowid",           kPrimaryKey}, byValue<E>(&E::getId,             &E::setId));
  table.addField({"DeclaredType",    kUnique},     byValue<E>(&E::getDeclaredType,   &E::setDeclaredType));
  table.addField({"ReferencedType",  kNoFlags},    byValue<E>(&E::getReferencedType, &E::setReferencedType));
}

template <>
void describe(TableDescription<Variable>& table) {
  using E = Variable;
  table.name = "Variable";
  table.addField({"VariableId",    kPrimaryKey}, byValue<E>(&E::getId,         &E::setId));
  table.addField({"IdentifierId",  kUnique},     byValue<E>(&E::getIdentifier, &E::setIdentifier));
  table.addField({"DeclFileId",    kUnique},     byValue<E>(&E::getFile,       &E::setFile));
  table.addField({"DeclLineNum",   kUnique},     byValue<E>(&E::getLine,       &E::setLine));
  table.addField({"DeclColNum",    kUnique},     byValue<E>(&E::getColumn,     &E::setColumn));
  table.addField({"TypeId",        kNoFlags},    byValue<E>(&E::getType,       &E::setType));
  table.addField({"isDefined",     kNoFlags},    byValue<E>(&E::getIsDefined,  &E::setIsDefined));
  table.addField({"Linkage",       kNoFlags},    byValue<E>(&E::getLinkage,    &E::setLinkage));
  table.addField({"RefCount",      kNoFlags},    byValue<E>(&E::getRefCount,   &E::setRefCount));
}

template <>
void describe(TableDescription<Function>& table) {
  using E = Function;
  table.name = "Function";
  table.addField({"FunctionId",    kPrimaryKey}, byValue<E>(&E::getId,         &E::setId));
  table.addField({"IdentifierId",  kUnique},     byValue<E>(&E::getIdentifier, &E::setIdentifier));
  table.addField({"SourceNameId",  kNoFlags},    byValue<E>(&E::getSourceName, &E::setSourceName));
  table.addField({"DeclFileId",    kUnique},     byValue<E>(&E::getFile,       &E::setFile));
  table.addField({"DeclLineNum",   kUnique},     byValue<E>(&E::getLine,       &E::setLine));
  table.addField({"DeclColNum",    kUnique},     byValue<E>(&E::getColumn,     &E::setColumn));
  table.addField({"isDefined",     kNoFlags},    byValue<E>(&E::getIsDefined,  &E::setIsDefined));
  table.addField({"isSpecial",     kNoFlags},    byValue<E>(&E::getIsSpecial,  &E::setIsSpecial));
  table.addField({"Effect",        kNoFlags},    byValue<E>(&E::getEffect,     &E::setEffect));
  table.addField({"Linkage",       kNoFlags},    byValue<E>(&E::getLinkage,    &E::setLinkage));
  table.addField({"RefCount",      kNoFlags},    byValue<E>(&E::getRefCount,   &E::setRefCount));
}

template <>
void describe(TableDescription<ExternalIdentifier>& table) {
  using E = ExternalIdentifier;
  table.name = "ExternalIdentifier";
  table.addField({"ExternalIdentifierId",  kPrimaryKey}, byValue<E>    (&E::getId,          &E::setId));
  table.addField({"IdentifierId",          kUnique},     byValue<E>    (&E::getIdentifier,  &E::setIdentifier));
  table.addField({"Kind",                  kUnique},     byValue<E>    (&E::getEntityKind,  &E::setEntityKind));  // before EntityId, which needs it
  table.addField({"EntityId",              kUnique},     byReference<E>(&E::getDescription, &E::setDescription));
}

template <>
void describe(TableDescription<Field>& table) {
  using E = Field;
  table.name = "Field";
  table.addField({"FieldId",       kPrimaryKey}, byValue<E>(&E::getId,         &E::setId));
  table.addField({"IdentifierId",  kUnique},     byValue<E>(&E::getIdentifier, &E::setIdentifier));
  table.addField({"DeclFileId",    kUnique},     byValue<E>(&E::getFile,       &E::setFile));
  table.addField({"DeclLineNum",   kUnique},     byValue<E>(&E::getLine,       &E::setLine));
  table.addField({"DeclColNum",    kUnique},     byValue<E>(&E::getColumn,     &E::setColumn));
  table.addField({"RefCount",      kNoFlags},    byValue<E>(&E::getRefCount,   &E::setRefCount));
}

template <>
void describe(TableDescription<EnumConstant>& table) {
  using E = EnumConstant;
  table.name = "EnumConstant";
  table.addField({"EnumConstantId",  kPrimaryKey}, byValue<E>(&E::getId,         &E::setId));
  table.addField({"IdentifierId",    kUnique},     byValue<E>(&E::getIdentifier, &E::setIdentifier));
  table.addField({"DeclFileId",      kUnique},     byValue<E>(&E::getFile,       &E::setFile));
  table.addField({"DeclLineNum",     kUnique},     byValue<E>(&E::getLine,       &E::setLine));
  table.addField({"DeclColNum",      kUnique},     byValue<E>(&E::getColumn,     &E::setColumn));
}

template <>
void describe(TableDescription<Label>& table) {
  using E = Label;
  table.name = "Label";
  table.addField({"LabelId",       kPrimaryKey}, byValue<E>(&E::getId,         &E::setId));
  table.addField({"IdentifierId",  kUnique},     byValue<E>(&E::getIdentifier, &E::setIdentifier));
  table.addField({"DeclFileId",    kUnique},     byValue<E>(&E::getFile,       &E::setFile));
  table.addField({"DeclLineNum",   kUnique},     byValue<E>(&E::getLine,       &E::setLine));
  table.addField({"DeclColNum",    kUnique},     byValue<E>(&E::getColumn,     &E::setColumn));
}

template <>
void describe(TableDescription<CallPoint>& table) {
  using E = CallPoint;
  table.name = "CallPoint";
  table.hasOrderBy = true;
  table.orderBy = "LineNum";
  table.addField({"CallPointId",  kPrimaryKey}, byValue<E>(&E::getId,          &E::setId));
  table.addField({"FileId",       kUnique},     byValue<E>(&E::getFile,        &E::setFile));
  table.addField({"LineNum",      kUnique},     byValue<E>(&E::getLine,        &E::setLine));
  table.addField({"ColNum",       kUnique},     byValue<E>(&E::getColumn,      &E::setColumn));
  table.addField({"IsValueUsed",  kNoFlags},    byValue<E>(&E::getIsValueUsed, &E::setIsValueUsed));
  table.addField({"CallerId",     kUnique},     byValue<E>(&E::getCaller,      &E::setCaller));
  table.addField({"CalleeId",     kNoFlags},    byValue<E>(&E::getCallee,      &E::setCallee));
}

// clang-format on

}  // namespace orvalesca::databases_merger
