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
constexpr Query kEntityIdFromIdentifier[] = {Query::variableIdFromIdentifier,
                                             Query::functionIdFromIdentifier};
constexpr Query kEntityIdFromIdentifierAndLinkage[] = {Query::variableIdFromIdentifierAndLinkage,
                                                       Query::functionIdFromIdentifierAndLinkage};
constexpr Query kEntityIdFromRefCount[] = {Query::variableIdFromRefCount,
                                           Query::functionIdFromRefCount};

std::string_view operationOf(Query query) { return namedQuery(query).operation; }

const char* nameOf(const Identifier* identifier) {
  return identifier == nullptr ? "" : identifier->getName().c_str();
}

int traced(long long id) { return static_cast<int>(id); }

}  // namespace

bool FrontendDatabase::isReadyToSearch(const NamedQuery& query) {
  if (isConnectedFor(query.operation.data())) return true;
  noteFailedRead(query.table, "not connected");
  return false;
}

// --- Searches that were compiled when the database was connected.

/// `valuesOf` is asked for the parameters at the first call of a walk only. A walk that is begun
/// while another one is open is not reset: SQLite refuses the binding, and the rows of the open one
/// go on.
template <class ValuesOf>
long long FrontendDatabase::nextId(Query query, bool& first, ValuesOf&& valuesOf) {
  const NamedQuery& named = namedQuery(query);
  if (!isReadyToSearch(named)) return 0;
  sqlite3_stmt* statement = namedQueries->handle(query);
  const auto shown = [statement](bool isShown) { return isShown ? statement : nullptr; };
  if (first) {
    int index = 0;
    for (const long long value : valuesOf()) {
      const int rc = sqlite3_bind_int64(statement, ++index, value);
      if (rc != SQLITE_OK) reportSqlite(rc, SQLITE_OK, connection, shown(named.reports.atBind));
    }
    first = false;
  }
  const int rc = sqlite3_step(statement);
  if (rc == SQLITE_ROW) return sqlite3_column_int64(statement, 0);
  if (rc != SQLITE_DONE) {
    noteFailedRead(named.table, sqlite3_errmsg(connection));
    reportSqlite(rc, SQLITE_DONE, connection, shown(named.reports.atStep));
  }
  const int resetRc = sqlite3_reset(statement);
  // The reset of a failed step answers with the step's code. Walks report it again; a search for
  // one answer does not.
  const bool isReported = query == Query::definedFunctionId && resetRc == rc;
  if (resetRc != SQLITE_OK && !isReported) {
    reportSqlite(resetRc, SQLITE_OK, connection, shown(named.reports.atReset));
  }
  return 0;
}

long long FrontendDatabase::listIdentifierIdFromKindAndCount(int identifierKind, unsigned count,
                                                             int operation, bool& first) {
  Debug debug(3, operationOf(Query::identifierIdFromKindAndCount), "kind=%d operation=%d count=%d",
              identifierKind, operation, count);
  const long long id = nextId(Query::identifierIdFromKindAndCount, first,
                              [&] { return parameters(identifierKind, count); });
  if (id != 0) debug.print("identifierId=%d", traced(id));
  return id;
}

long long FrontendDatabase::listIdentifierIdFromKind(int identifierKind, bool& first) {
  Debug debug(3, operationOf(Query::identifierIdFromKind), "kind=%d", identifierKind);
  const long long id =
      nextId(Query::identifierIdFromKind, first, [&] { return parameters(identifierKind); });
  if (id != 0) debug.print("identifierId=%d", traced(id));
  return id;
}

long long FrontendDatabase::listMacroIdFromIdentifier(const Identifier* identifier, bool& first) {
  Debug debug(3, operationOf(Query::macroIdFromIdentifier));
  return nextId(Query::macroIdFromIdentifier, first,
                [&] { return parameters(getIdentifierId(identifier)); });
}

long long FrontendDatabase::listMacroIdFromRefCount(unsigned refCount, bool& first) {
  Debug debug(3, operationOf(Query::macroIdFromRefCount));
  return nextId(Query::macroIdFromRefCount, first, [&] { return parameters(refCount); });
}

long long FrontendDatabase::listEntityIdFromIdentifier(int entity, Identifier* identifier,
                                                       bool& first) {
  Debug debug(3, operationOf(kEntityIdFromIdentifier[entity]));
  return nextId(kEntityIdFromIdentifier[entity], first,
                [&] { return parameters(getIdentifierId(identifier)); });
}

long long FrontendDatabase::listEntityIdFromIdentifier(int entity, Identifier* identifier,
                                                       int linkage, bool& first) {
  Debug debug(3, operationOf(kEntityIdFromIdentifierAndLinkage[entity]));
  return nextId(kEntityIdFromIdentifierAndLinkage[entity], first,
                [&] { return parameters(getIdentifierId(identifier), linkage); });
}

long long FrontendDatabase::listEntityIdFromRefCount(int entity, unsigned refCount, bool& first) {
  Debug debug(3, operationOf(kEntityIdFromRefCount[entity]));
  return nextId(kEntityIdFromRefCount[entity], first, [&] { return parameters(refCount); });
}

long long FrontendDatabase::listTypeIdFromIdentifier(Identifier* identifier, bool& first) {
  Debug debug(3, operationOf(Query::typeIdFromIdentifier));
  return nextId(Query::typeIdFromIdentifier, first,
                [&] { return parameters(getIdentifierId(identifier)); });
}

long long FrontendDatabase::listTypeIdFromIdentifierAndKind(Identifier* identifier, int typeKind,
                                                            bool& first) {
  Debug debug(3, operationOf(Query::typeIdFromIdentifierAndKind), "identifier=%s kind=%d",
              nameOf(identifier), typeKind);
  return nextId(Query::typeIdFromIdentifierAndKind, first,
                [&] { return parameters(getIdentifierId(identifier), typeKind); });
}

long long FrontendDatabase::listTypeIdFromRefCount(unsigned refCount, bool& first) {
  Debug debug(3, operationOf(Query::typeIdFromRefCount));
  return nextId(Query::typeIdFromRefCount, first, [&] { return parameters(refCount); });
}

long long FrontendDatabase::listTypeIdFromRefTagCount(unsigned refTagCount, bool& first) {
  Debug debug(3, operationOf(Query::typeIdFromRefTagCount));
  return nextId(Query::typeIdFromRefTagCount, first, [&] {
    return parameters(refTagCount, TypeKind::Tagged4, TypeKind::Tagged64, TypeKind::Tagged128,
                      TypeKind::Tagged256);
  });
}

long long FrontendDatabase::listExternalIdentifierFromIdentifier(const Identifier* identifier,
                                                                 bool& first) {
  Debug debug(3, operationOf(Query::externalIdentifierIdFromIdentifier), "identifier=%s",
              nameOf(identifier));
  const long long id = nextId(Query::externalIdentifierIdFromIdentifier, first,
                              [&] { return parameters(getIdentifierId(identifier)); });
  if (id != 0) debug.print("externalIdentifierId=%d", traced(id));
  return id;
}

long long FrontendDatabase::listFieldIdFromIdentifier(Identifier* identifier, bool& first) {
  Debug debug(3, operationOf(Query::fieldIdFromIdentifier));
  return nextId(Query::fieldIdFromIdentifier, first,
                [&] { return parameters(getIdentifierId(identifier)); });
}

long long FrontendDatabase::listFieldIdFromRefCount(unsigned refCount, bool& first) {
  Debug debug(3, operationOf(Query::fieldIdFromRefCount));
  return nextId(Query::fieldIdFromRefCount, first, [&] { return parameters(refCount); });
}

long long FrontendDatabase::listEnumConstantIdFromIdentifier(Identifier* identifier, bool& first) {
  Debug debug(3, operationOf(Query::enumConstantIdFromIdentifier));
  return nextId(Query::enumConstantIdFromIdentifier, first,
                [&] { return parameters(getIdentifierId(identifier)); });
}

long long FrontendDatabase::listLabelIdFromIdentifier(Identifier* identifier, bool& first) {
  Debug debug(3, operationOf(Query::labelIdFromIdentifier));
  return nextId(Query::labelIdFromIdentifier, first,
                [&] { return parameters(getIdentifierId(identifier)); });
}

long long FrontendDatabase::listCallPointIdFromCaller(Function* caller, bool& first) {
  Debug debug(3, operationOf(Query::callPointIdFromCaller));
  return nextId(Query::callPointIdFromCaller, first, [&] { return parameters(lookUpId(caller)); });
}

long long FrontendDatabase::listCallPointIdFromCallee(Function* callee, bool& first) {
  Debug debug(3, operationOf(Query::callPointIdFromCallee));
  return nextId(Query::callPointIdFromCallee, first, [&] { return parameters(lookUpId(callee)); });
}

long long FrontendDatabase::getExternalDefinedFunction(Identifier* identifier) {
  Debug debug(3, operationOf(Query::definedFunctionId));
  bool first = true;
  const long long id = nextId(Query::definedFunctionId, first, [&] {
    return parameters(getIdentifierId(identifier), LinkageKind::External, /*isDefined=*/1);
  });
  // One answer is asked for, so the rest is given up at once.
  if (id != 0) sqlite3_reset(namedQueries->handle(Query::definedFunctionId));
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

// --- Searches that are compiled on first use.

template <class Bind>
long long FrontendDatabase::nextIdOnUse(Query query, bool& first, Bind&& bind) {
  const NamedQuery& named = namedQuery(query);
  if (!isReadyToSearch(named)) return 0;
  DatabaseStatement& statement = namedQueries->statement(query);
  statement.prepare(connection);
  if (first) {
    first = false;
    bind(statement);
  }
  if (statement.step() == SQLITE_ROW) {
    long long id = 0;
    statement.column(id);
    return id;
  }
  if (statement.result() != SQLITE_DONE) {
    noteFailedRead(named.table, sqlite3_errmsg(connection));
    if (!statement.isFailureReported()) reportSqlite(statement.result(), SQLITE_DONE, connection);
  }
  statement.reset(connection);
  return 0;
}

long long FrontendDatabase::listVariableIdFromRefCountAndLinkage(unsigned refCount,
                                                                 unsigned linkage, bool& first) {
  const bool isTotal = linkage == static_cast<unsigned>(LinkageKind::External);
  const Query query = isTotal ? Query::externalVariableIdFromTotalRefCount
                              : Query::variableIdFromRefCountAndLinkage;
  Debug debug(3, operationOf(query));
  return nextIdOnUse(query, first, [&](DatabaseStatement& statement) {
    statement.bind(connection, static_cast<int>(refCount));
    if (!isTotal) statement.bind(connection, static_cast<int>(linkage));
  });
}

long long FrontendDatabase::listTypeReferenceIdFromType(Type* type, bool& first) {
  Debug debug(3, operationOf(Query::typeReferenceIdFromType));
  const long long id = type == nullptr ? 0 : type->getId();
  return nextIdOnUse(Query::typeReferenceIdFromType, first,
                     [&](DatabaseStatement& statement) { statement.bind(connection, id); });
}

long long FrontendDatabase::listCallPointIdWithNoEffect(bool& first) {
  Debug debug(3, operationOf(Query::callPointIdWithNoEffect));
  return nextIdOnUse(Query::callPointIdWithNoEffect, first, [](DatabaseStatement&) {});
}

namespace {

// clang-format off
template <class T> constexpr Query kFromMinLength{};
template <> constexpr Query kFromMinLength<Macro> = Query::macroIdFromMinLength;
template <> constexpr Query kFromMinLength<Type> = Query::typeIdFromMinLength;
template <> constexpr Query kFromMinLength<Variable> = Query::variableIdFromMinLength;
template <> constexpr Query kFromMinLength<Function> = Query::functionIdFromMinLength;
template <> constexpr Query kFromMinLength<Field> = Query::fieldIdFromMinLength;
template <> constexpr Query kFromMinLength<EnumConstant> = Query::enumConstantIdFromMinLength;
template <> constexpr Query kFromMinLength<Label> = Query::labelIdFromMinLength;
// clang-format on

}  // namespace

template <class T>
long long FrontendDatabase::listIdFromMinLength(std::size_t minLength, bool& first) {
  Debug debug(3, operationOf(kFromMinLength<T>));
  return nextIdOnUse(kFromMinLength<T>, first, [&](DatabaseStatement& statement) {
    statement.bind(connection, static_cast<unsigned long long>(minLength));
  });
}

template long long FrontendDatabase::listIdFromMinLength<EnumConstant>(std::size_t, bool&);
template long long FrontendDatabase::listIdFromMinLength<Field>(std::size_t, bool&);
template long long FrontendDatabase::listIdFromMinLength<Function>(std::size_t, bool&);
template long long FrontendDatabase::listIdFromMinLength<Label>(std::size_t, bool&);
template long long FrontendDatabase::listIdFromMinLength<Macro>(std::size_t, bool&);
template long long FrontendDatabase::listIdFromMinLength<Type>(std::size_t, bool&);
template long long FrontendDatabase::listIdFromMinLength<Variable>(std::size_t, bool&);

}  // namespace orvalesca::databases_merger
