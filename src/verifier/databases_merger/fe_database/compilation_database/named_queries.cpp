#include "fe_database/compilation_database/named_queries.h"

#include <sqlite3.h>

#include <string>

#include "fe_db/kinds.h"
#include "persistence/sqlite_report.h"

/// The SQL of all named searches, on one page.
namespace orvalesca::databases_merger {

namespace {

constexpr TellsStatement kNever = {};
constexpr TellsStatement kAtBind = {true, false, false};
constexpr TellsStatement kAtBindAndReset = {true, false, true};
constexpr TellsStatement kAlways = {true, true, true};

template <class Kind>
std::string number(Kind kind) {
  return std::to_string(static_cast<std::uint32_t>(kind));
}

/// A name counts when the counts of all its external variables add up to the parameter.
std::string totalRefCountText() {
  const std::string external = number(LinkageKind::External);
  return "SELECT VariableId FROM Variable, (SELECT IdentifierId FROM Variable, Identifier USING "
         "(IdentifierId) WHERE Linkage = " +
         external +
         " GROUP BY IdentifierId HAVING sum(RefCount) = ?) USING (IdentifierId) WHERE "
         "Linkage = " +
         external;
}

/// The function called may be a declaration; what it does is known of the definition of its name.
std::string noEffectText() {
  return "SELECT CallPoint.CallPointId FROM CallPoint INNER JOIN Function AS Dec ON "
         "CallPoint.CalleeId = Dec.FunctionId INNER JOIN Function AS Def ON Dec.IdentifierId = "
         "Def.IdentifierId WHERE CallPoint.IsValueUsed=0 AND Def.IsDefined = 1 AND Def.Effect=" +
         number(EffectKind::NoEffect);
}

std::string namedTypeText() {
  return "SELECT Type.TypeId FROM Type JOIN Identifier USING(IdentifierId) WHERE Type.Unnamed = 0 "
         "AND Type.Kind & " +
         number(TypeKind::NamedMask) + " != 0 AND length(Identifier.Name) >= ?";
}

}  // namespace

// clang-format off
const std::array<RawQueryText, kRawQueries> kRawQueryTexts = {{
    {"Identifier", "SELECT IdentifierId FROM Identifier WHERE (((Kind & ?) != 0) AND (Count >= ?))", kAtBindAndReset},
    {"Identifier", "SELECT IdentifierId FROM Identifier WHERE ((Kind & ?) != 0)", kAtBindAndReset},
    {"Macro", "SELECT MacroId FROM Macro WHERE IdentifierId=?", kAtBindAndReset},
    {"Macro", "SELECT MacroId FROM Macro WHERE RefCount=?", kAtBindAndReset},
    {"Type", "SELECT TypeId FROM Type WHERE IdentifierId=?", kNever},
    {"Type", "SELECT TypeId FROM Type WHERE Unnamed=0 AND IdentifierId=? AND ((Kind & ?) != 0)", kNever},
    {"Type", "SELECT TypeId FROM Type WHERE Unnamed=0 AND Kind!=0 AND RefCount=?", kNever},
    {"Type", "SELECT TypeId FROM Type WHERE Unnamed=0 AND RefTagCount=? AND Kind IN (?,?,?,?)", kNever},
    {"Variable", "SELECT VariableId FROM Variable WHERE IdentifierId=?", kNever},
    {"Variable", "SELECT VariableId FROM Variable WHERE IdentifierId=? AND Linkage=?", kNever},
    {"Variable", "SELECT VariableId FROM Variable WHERE RefCount=?", kNever},
    {"Function", "SELECT FunctionId FROM Function WHERE IdentifierId=?", kNever},
    {"Function", "SELECT FunctionId FROM Function WHERE IdentifierId=? AND Linkage=?", kNever},
    {"Function", "SELECT FunctionId FROM Function WHERE IdentifierId=? AND Linkage=? AND isDefined=?", kNever},
    {"Function", "SELECT FunctionId FROM Function WHERE RefCount=?", kNever},
    {"ExternalIdentifier", "SELECT ExternalIdentifierId FROM ExternalIdentifier WHERE IdentifierId=? ORDER BY Kind", kAtBind},
    {"Field", "SELECT FieldId FROM Field WHERE IdentifierId=?", kNever},
    {"Field", "SELECT FieldId FROM Field WHERE RefCount=?", kAtBindAndReset},
    {"EnumConstant", "SELECT EnumConstantId FROM EnumConstant WHERE IdentifierId=?", kAtBindAndReset},
    {"Label", "SELECT LabelId FROM Label WHERE IdentifierId=?", kAlways},
    {"CallPoint", "SELECT CallPointId FROM CallPoint WHERE CallerId=?", kAlways},
    {"CallPoint", "SELECT CallPointId FROM CallPoint WHERE CalleeId=?", kAlways},
}};

NamedQueries::NamedQueries()
    : variableIdFromRefCountAndLinkage("SELECT VariableId FROM Variable WHERE RefCount = ? AND Linkage = ?"),
      externalVariableIdFromTotalRefCount(totalRefCountText(), false),
      callPointIdWithNoEffect(noEffectText(), false),
      typeReferenceIdFromType("SELECT rowid FROM TypeReference WHERE DeclaredType=?"),
      macroIdFromMinLength("SELECT Macro.MacroId FROM Macro JOIN Identifier USING(IdentifierId) WHERE length(Identifier.Name) >= ?"),
      typeIdFromMinLength(namedTypeText(), false),
      variableIdFromMinLength("SELECT Variable.VariableId FROM Variable JOIN Identifier USING(IdentifierId) WHERE length(Identifier.Name) >= ?"),
      functionIdFromMinLength("SELECT Function.FunctionId FROM Function JOIN Identifier USING(IdentifierId) WHERE length(Identifier.Name) >= ?"),
      fieldIdFromMinLength("SELECT Field.FieldId FROM Field JOIN Identifier USING(IdentifierId) WHERE length(Identifier.Name) >= ?"),
      enumConstantIdFromMinLength("SELECT EnumConstant.EnumConstantId FROM EnumConstant JOIN Identifier USING(IdentifierId) WHERE length(Identifier.Name) >= ?"),
      labelIdFromMinLength("SELECT Label.LabelId FROM Label JOIN Identifier USING(IdentifierId) WHERE length(Identifier.Name) >= ?") {
  // Their reports stay one line, as those of most raw searches.
  variableIdFromRefCountAndLinkage.tellStatementAtBind(false);
  externalVariableIdFromTotalRefCount.tellStatementAtBind(false);
  typeReferenceIdFromType.tellStatementAtBind(false);
}
// clang-format on

NamedQueries::~NamedQueries() {
  for (sqlite3_stmt* statement : raw) sqlite3_finalize(statement);
}

persistence::Failure NamedQueries::compile(sqlite3* connection, std::size_t count) {
  finalizeRaw(connection);
  persistence::Failure first;
  for (std::size_t i = 0; i < count; ++i) {
    const auto& [table, sql, tells] = kRawQueryTexts[i];
    const int rc = sqlite3_prepare_v2(connection, sql, -1, &raw[i], nullptr);
    if (rc == SQLITE_OK) continue;
    if (first.reason.empty()) first = {table, sqlite3_errmsg(connection)};
    persistence::reportQuery(sql);
    persistence::reportSqlite(rc, SQLITE_OK, connection, raw[i]);
  }
  return first;
}

void NamedQueries::finalize(sqlite3* connection, bool isCompilation) {
  if (isCompilation) {
    for (auto* statement :
         {&macroIdFromMinLength, &callPointIdWithNoEffect, &typeReferenceIdFromType,
          &typeIdFromMinLength, &variableIdFromMinLength, &variableIdFromRefCountAndLinkage,
          &externalVariableIdFromTotalRefCount, &functionIdFromMinLength, &fieldIdFromMinLength,
          &enumConstantIdFromMinLength, &labelIdFromMinLength}) {
      statement->finalize(connection);
    }
  }
  finalizeRaw(connection);
}

void NamedQueries::finalizeRaw(sqlite3* connection) {
  for (sqlite3_stmt*& statement : raw) {
    const int rc = sqlite3_finalize(statement);
    if (rc != SQLITE_OK) persistence::reportSqlite(rc, SQLITE_OK, connection);
    statement = nullptr;
  }
}

}  // namespace orvalesca::databases_merger
