#include <sqlite3.h>

#include <array>

#include "fe_database/compilation_database/named_queries.h"
#include "fe_db/compilation_database.h"
#include "persistence/debug.h"
#include "persistence/sqlite_report.h"

/// The named searches: row ids, one per call.
namespace orvalesca::databases_merger {

using persistence::DatabaseStatement;
using persistence::Debug;
using persistence::reportSqlite;

namespace {

using Values = long long;
template <std::size_t N>
using Parameters = std::array<Values, N>;

template <class... Value>
Parameters<sizeof...(Value)> parameters(Value... values) {
  return {static_cast<Values>(values)...};
}

/// The search of a variable (0) or of a function (1).
constexpr RawQuery kEntityIdFromIdentifier[] = {RawQuery::variableIdFromIdentifier,
                                                RawQuery::functionIdFromIdentifier};
constexpr RawQuery kEntityIdFromIdentifierAndLinkage[] = {
    RawQuery::variableIdFromIdentifierAndLinkage, RawQuery::functionIdFromIdentifierAndLinkage};
constexpr RawQuery kEntityIdFromRefCount[] = {RawQuery::variableIdFromRefCount,
                                              RawQuery::functionIdFromRefCount};

const char* nameOf(const Identifier* identifier) {
  return identifier == nullptr ? "" : identifier->getName().c_str();
}

int traced(long long id) { return static_cast<int>(id); }

}  // namespace

bool FrontendDatabase::isReadyToSearch(const char* table, const char* operation) {
  if (isConnectedFor(operation)) return true;
  noteFailedRead(table, "not connected");
  return false;
}

// --- Raw queries.

/// `valuesOf` is asked for the parameters at the first call of a walk only. A walk that is begun
/// while another one is open is not reset: SQLite refuses the binding, and the rows of the open one
/// go on.
template <class ValuesOf>
long long FrontendDatabase::nextId(RawQuery query, const char* operation, bool& first,
                                   ValuesOf&& valuesOf) {
  const RawQueryText& text = kRawQueryTexts[static_cast<std::size_t>(query)];
  if (!isReadyToSearch(text.table, operation)) return 0;
  sqlite3_stmt* statement = namedQueries->handle(query);
  const auto told = [statement](bool tells) { return tells ? statement : nullptr; };
  if (first) {
    int index = 0;
    for (const long long value : valuesOf()) {
      const int rc = sqlite3_bind_int64(statement, ++index, value);
      if (rc != SQLITE_OK) reportSqlite(rc, SQLITE_OK, connection, told(text.tells.atBind));
    }
    first = false;
  }
  const int rc = sqlite3_step(statement);
  if (rc == SQLITE_ROW) return sqlite3_column_int64(statement, 0);
  if (rc != SQLITE_DONE) {
    noteFailedRead(text.table, sqlite3_errmsg(connection));
    reportSqlite(rc, SQLITE_DONE, connection, told(text.tells.atStep));
  }
  const int resetRc = sqlite3_reset(statement);
  // The reset of a failed step answers with the step's code. Walks report it again; a search for
  // one answer does not.
  const bool isReported = query == RawQuery::definedFunctionId && resetRc == rc;
  if (resetRc != SQLITE_OK && !isReported) {
    reportSqlite(resetRc, SQLITE_OK, connection, told(text.tells.atReset));
  }
  return 0;
}

long long FrontendDatabase::listIdentifierIdFromKindAndCount(int identifierKind, unsigned count,
                                                             int operation, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listIdentifierIdFromKindAndCount()";
  Debug debug(3, kName, "kind=%d operation=%d count=%d", identifierKind, operation, count);
  const long long id = nextId(RawQuery::identifierIdFromKindAndCount, kName, first,
                              [&] { return parameters(identifierKind, count); });
  if (id != 0) debug.print("identifierId=%d", traced(id));
  return id;
}

long long FrontendDatabase::listIdentifierIdFromKind(int identifierKind, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listIdentifierIdFromKind()";
  Debug debug(3, kName, "kind=%d", identifierKind);
  const long long id = nextId(RawQuery::identifierIdFromKind, kName, first,
                              [&] { return parameters(identifierKind); });
  if (id != 0) debug.print("identifierId=%d", traced(id));
  return id;
}

long long FrontendDatabase::listMacroIdFromIdentifier(const Identifier* identifier, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listMacroIdFromIdentifier()";
  Debug debug(3, kName);
  return nextId(RawQuery::macroIdFromIdentifier, kName, first,
                [&] { return parameters(getIdentifierId(identifier)); });
}

long long FrontendDatabase::listMacroIdFromRefCount(unsigned refCount, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listMacroIdFromRefCount()";
  Debug debug(3, kName);
  return nextId(RawQuery::macroIdFromRefCount, kName, first, [&] { return parameters(refCount); });
}

long long FrontendDatabase::listEntityIdFromIdentifier(int entity, Identifier* identifier,
                                                       bool& first) {
  constexpr char kName[] = "FrontendDatabase::listEntityIdFromIdentifier()";
  Debug debug(3, kName);
  return nextId(kEntityIdFromIdentifier[entity], kName, first,
                [&] { return parameters(getIdentifierId(identifier)); });
}

long long FrontendDatabase::listEntityIdFromIdentifier(int entity, Identifier* identifier,
                                                       int linkage, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listEntityIdFromIdentifier()";
  Debug debug(3, kName);
  return nextId(kEntityIdFromIdentifierAndLinkage[entity], kName, first,
                [&] { return parameters(getIdentifierId(identifier), linkage); });
}

long long FrontendDatabase::listEntityIdFromRefCount(int entity, unsigned refCount, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listEntityIdFromRefCount()";
  Debug debug(3, kName);
  return nextId(kEntityIdFromRefCount[entity], kName, first, [&] { return parameters(refCount); });
}

long long FrontendDatabase::listTypeIdFromIdentifier(Identifier* identifier, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listTypeIdFromIdentifier()";
  Debug debug(3, kName);
  return nextId(RawQuery::typeIdFromIdentifier, kName, first,
                [&] { return parameters(getIdentifierId(identifier)); });
}

long long FrontendDatabase::listTypeIdFromIdentifierAndKind(Identifier* identifier, int typeKind,
                                                            bool& first) {
  constexpr char kName[] = "FrontendDatabase::listTypeIdFromIdentifierAndKind()";
  Debug debug(3, kName, "identifier=%s kind=%d", nameOf(identifier), typeKind);
  return nextId(RawQuery::typeIdFromIdentifierAndKind, kName, first,
                [&] { return parameters(getIdentifierId(identifier), typeKind); });
}

long long FrontendDatabase::listTypeIdFromRefCount(unsigned refCount, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listTypeIdFromRefCount()";
  Debug debug(3, kName);
  return nextId(RawQuery::typeIdFromRefCount, kName, first, [&] { return parameters(refCount); });
}

long long FrontendDatabase::listTypeIdFromRefTagCount(unsigned refTagCount, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listTypeIdFromRefTagCount()";
  Debug debug(3, kName);
  return nextId(RawQuery::typeIdFromRefTagCount, kName, first, [&] {
    return parameters(refTagCount, TypeKind::Tagged4, TypeKind::Tagged64, TypeKind::Tagged128,
                      TypeKind::Tagged256);
  });
}

long long FrontendDatabase::listExternalIdentifierFromIdentifier(const Identifier* identifier,
                                                                 bool& first) {
  constexpr char kName[] = "FrontendDatabase::listExternalIdentifierFromIdentifier()";
  Debug debug(3, kName, "identifier=%s", nameOf(identifier));
  const long long id = nextId(RawQuery::externalIdentifierIdFromIdentifier, kName, first,
                              [&] { return parameters(getIdentifierId(identifier)); });
  if (id != 0) debug.print("externalIdentifierId=%d", traced(id));
  return id;
}

long long FrontendDatabase::listFieldIdFromIdentifier(Identifier* identifier, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listFieldIdFromIdentifier()";
  Debug debug(3, kName);
  return nextId(RawQuery::fieldIdFromIdentifier, kName, first,
                [&] { return parameters(getIdentifierId(identifier)); });
}

long long FrontendDatabase::listFieldIdFromRefCount(unsigned refCount, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listFieldIdFromRefCount()";
  Debug debug(3, kName);
  return nextId(RawQuery::fieldIdFromRefCount, kName, first, [&] { return parameters(refCount); });
}

long long FrontendDatabase::listEnumConstantIdFromIdentifier(Identifier* identifier, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listEnumConstantIdFromIdentifier()";
  Debug debug(3, kName);
  return nextId(RawQuery::enumConstantIdFromIdentifier, kName, first,
                [&] { return parameters(getIdentifierId(identifier)); });
}

long long FrontendDatabase::listLabelIdFromIdentifier(Identifier* identifier, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listLabelIdFromIdentifier()";
  Debug debug(3, kName);
  return nextId(RawQuery::labelIdFromIdentifier, kName, first,
                [&] { return parameters(getIdentifierId(identifier)); });
}

long long FrontendDatabase::listCallPointIdFromCaller(Function* caller, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listCallPointIdFromCaller()";
  Debug debug(3, kName);
  return nextId(RawQuery::callPointIdFromCaller, kName, first,
                [&] { return parameters(lookUpId(caller)); });
}

long long FrontendDatabase::listCallPointIdFromCallee(Function* callee, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listCallPointIdFromCallee()";
  Debug debug(3, kName);
  return nextId(RawQuery::callPointIdFromCallee, kName, first,
                [&] { return parameters(lookUpId(callee)); });
}

long long FrontendDatabase::getExternalDefinedFunction(Identifier* identifier) {
  constexpr char kName[] = "FrontendDatabase::getExternalDefinedFunction()";
  Debug debug(3, kName);
  bool first = true;
  const long long id = nextId(RawQuery::definedFunctionId, kName, first, [&] {
    return parameters(getIdentifierId(identifier), LinkageKind::External, /*isDefined=*/1);
  });
  // One answer is asked for, so what is behind it is given up at once.
  if (id != 0) sqlite3_reset(namedQueries->handle(RawQuery::definedFunctionId));
  return id;
}

// --- Ids of arguments.

long long FrontendDatabase::getIdentifierId(const Identifier* identifier) {
  Debug debug(3, "FrontendDatabase::getIdentifierId(0)");
  if (identifier == nullptr || identifier->getId() != 0) {
    return identifier == nullptr ? 0 : identifier->getId();
  }
  return lookUpId(identifier);
}

/// A copy is looked up: a row that is found would overwrite what the element has counted.
template <class T>
long long FrontendDatabase::lookUpId(const T* element) {
  if (element == nullptr) return 0;
  T copy = *element;
  return getId(copy);
}

// --- Wrapped queries.

template <class Bind>
long long FrontendDatabase::nextId(DatabaseStatement& statement, const char* table,
                                   const char* operation, bool& first, Bind&& bind) {
  if (!isReadyToSearch(table, operation)) return 0;
  statement.prepare(connection);
  if (first) {
    first = false;
    bind();
  }
  if (statement.step() == SQLITE_ROW) {
    long long id = 0;
    statement.column(id);
    return id;
  }
  if (statement.result() != SQLITE_DONE) {
    noteFailedRead(table, sqlite3_errmsg(connection));
    if (!statement.isFailureReported()) reportSqlite(statement.result(), SQLITE_DONE, connection);
  }
  statement.reset(connection);
  return 0;
}

long long FrontendDatabase::listVariableIdFromRefCountAndLinkage(unsigned refCount,
                                                                 unsigned linkage, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listVariableIdFromRefCountAndLinkage()";
  Debug debug(3, kName);
  const bool isTotal = linkage == static_cast<unsigned>(LinkageKind::External);
  DatabaseStatement& statement = isTotal ? namedQueries->externalVariableIdFromTotalRefCount
                                         : namedQueries->variableIdFromRefCountAndLinkage;
  return nextId(statement, "Variable", kName, first, [&] {
    statement.bind(connection, static_cast<int>(refCount));
    if (!isTotal) statement.bind(connection, static_cast<int>(linkage));
  });
}

long long FrontendDatabase::listTypeReferenceIdFromType(Type* type, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listTypeReferenceIdFromType()";
  Debug debug(3, kName);
  DatabaseStatement& statement = namedQueries->typeReferenceIdFromType;
  const long long id = type == nullptr ? 0 : type->getId();
  return nextId(statement, "TypeReference", kName, first, [&] { statement.bind(connection, id); });
}

long long FrontendDatabase::listCallPointIdWithNoEffect(bool& first) {
  constexpr char kName[] = "FrontendDatabase::listCallPointIdWithNoEffect()";
  Debug debug(3, kName);
  return nextId(namedQueries->callPointIdWithNoEffect, "CallPoint", kName, first, [] {});
}

namespace {

DatabaseStatement& fromMinLength(NamedQueries& queries, const Macro*) {
  return queries.macroIdFromMinLength;
}
DatabaseStatement& fromMinLength(NamedQueries& queries, const Type*) {
  return queries.typeIdFromMinLength;
}
DatabaseStatement& fromMinLength(NamedQueries& queries, const Variable*) {
  return queries.variableIdFromMinLength;
}
DatabaseStatement& fromMinLength(NamedQueries& queries, const Function*) {
  return queries.functionIdFromMinLength;
}
DatabaseStatement& fromMinLength(NamedQueries& queries, const Field*) {
  return queries.fieldIdFromMinLength;
}
DatabaseStatement& fromMinLength(NamedQueries& queries, const EnumConstant*) {
  return queries.enumConstantIdFromMinLength;
}
DatabaseStatement& fromMinLength(NamedQueries& queries, const Label*) {
  return queries.labelIdFromMinLength;
}

}  // namespace

template <class T>
long long FrontendDatabase::listIdFromMinLength(std::size_t minLength, bool& first) {
  constexpr char kName[] = "FrontendDatabase::listIdFromMinLength()";
  Debug debug(3, kName);
  DatabaseStatement& statement = fromMinLength(*namedQueries, static_cast<const T*>(nullptr));
  return nextId(statement, tableName<T>(), kName, first,
                [&] { statement.bind(connection, static_cast<unsigned long long>(minLength)); });
}

template long long FrontendDatabase::listIdFromMinLength<EnumConstant>(std::size_t, bool&);
template long long FrontendDatabase::listIdFromMinLength<Field>(std::size_t, bool&);
template long long FrontendDatabase::listIdFromMinLength<Function>(std::size_t, bool&);
template long long FrontendDatabase::listIdFromMinLength<Label>(std::size_t, bool&);
template long long FrontendDatabase::listIdFromMinLength<Macro>(std::size_t, bool&);
template long long FrontendDatabase::listIdFromMinLength<Type>(std::size_t, bool&);
template long long FrontendDatabase::listIdFromMinLength<Variable>(std::size_t, bool&);

}  // namespace orvalesca::databases_merger
