#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "fe_db/kinds.h"
#include "persistence/database.h"
#include "persistence/statement.h"

struct sqlite3;
struct sqlite3_stmt;

namespace orvalesca::databases_merger {

/// The hand-written searches; the values index kNamedQueries.
enum class Query : std::size_t {
  identifierIdFromKindAndCount,
  identifierIdFromKind,
  macroIdFromIdentifier,
  macroIdFromRefCount,
  typeIdFromIdentifier,
  typeIdFromIdentifierAndKind,
  typeIdFromRefCount,
  typeIdFromRefTagCount,
  variableIdFromIdentifier,
  variableIdFromIdentifierAndLinkage,
  variableIdFromRefCount,
  functionIdFromIdentifier,
  functionIdFromIdentifierAndLinkage,
  definedFunctionId,
  functionIdFromRefCount,
  externalIdentifierIdFromIdentifier,
  fieldIdFromIdentifier,
  fieldIdFromRefCount,
  enumConstantIdFromIdentifier,
  labelIdFromIdentifier,
  callPointIdFromCaller,
  callPointIdFromCallee,
  variableIdFromRefCountAndLinkage,
  externalVariableIdFromTotalRefCount,
  callPointIdWithNoEffect,
  typeReferenceIdFromType,
  macroIdFromMinLength,
  typeIdFromMinLength,
  variableIdFromMinLength,
  functionIdFromMinLength,
  fieldIdFromMinLength,
  enumConstantIdFromMinLength,
  labelIdFromMinLength,
};

/// When a search is compiled: as an SQLite handle when a database of either kind or a compilation
/// database is connected, or as a statement on first use.
enum class Compiled { always, forCompilation, onUse };

/// Which reports of a search are followed by the statement with its values.
struct ReportsStatement {
  bool atBind = false;
  bool atStep = false;
  bool atReset = false;
};

/// One search, all of it.
struct NamedQuery {
  Query query;
  std::string_view operation;  ///< as traces and reports name it
  const char* table;           ///< whose rows it answers with
  const char* index;  ///< what it compares by equality (the length: from a least one on), or null
  Compiled compiled;
  ReportsStatement reports;
  const char* sql;
};

/// What a search for names of a least length is indexed by, in the table of names.
inline constexpr char kNameLength[] = "length(Name)";

namespace named_queries {

inline constexpr Compiled kAlways = Compiled::always;
inline constexpr Compiled kForCompilation = Compiled::forCompilation;
inline constexpr Compiled kOnUse = Compiled::onUse;
inline constexpr ReportsStatement kNever = {};
inline constexpr ReportsStatement kAtBind = {true, false, false};
inline constexpr ReportsStatement kAtBindAndReset = {true, false, true};
inline constexpr ReportsStatement kAtAll = {true, true, true};
inline constexpr char kId[] = "IdentifierId";

// Numbers in the texts.
static_assert(static_cast<int>(LinkageKind::External) == 1);
static_assert(static_cast<int>(EffectKind::NoEffect) == 0);
static_assert(static_cast<int>(TypeKind::NamedMask) == 964);

// clang-format off
inline constexpr NamedQuery kAll[] = {
    {Query::identifierIdFromKindAndCount, "FrontendDatabase::listIdentifierIdFromKindAndCount()", "Identifier", nullptr, kAlways, kAtBindAndReset,
     "SELECT IdentifierId FROM Identifier WHERE (((Kind & ?) != 0) AND (Count >= ?))"},
    {Query::identifierIdFromKind, "FrontendDatabase::listIdentifierIdFromKind()", "Identifier", nullptr, kAlways, kAtBindAndReset,
     "SELECT IdentifierId FROM Identifier WHERE ((Kind & ?) != 0)"},
    {Query::macroIdFromIdentifier, "FrontendDatabase::listMacroIdFromIdentifier()", "Macro", kId, kAlways, kAtBindAndReset,
     "SELECT MacroId FROM Macro WHERE IdentifierId=?"},
    {Query::macroIdFromRefCount, "FrontendDatabase::listMacroIdFromRefCount()", "Macro", "RefCount", kAlways, kAtBindAndReset,
     "SELECT MacroId FROM Macro WHERE RefCount=?"},
    {Query::typeIdFromIdentifier, "FrontendDatabase::listTypeIdFromIdentifier()", "Type", kId, kForCompilation, kNever,
     "SELECT TypeId FROM Type WHERE IdentifierId=?"},
    {Query::typeIdFromIdentifierAndKind, "FrontendDatabase::listTypeIdFromIdentifierAndKind()", "Type", kId, kForCompilation, kNever,
     "SELECT TypeId FROM Type WHERE Unnamed=0 AND IdentifierId=? AND ((Kind & ?) != 0)"},
    {Query::typeIdFromRefCount, "FrontendDatabase::listTypeIdFromRefCount()", "Type", "RefCount", kForCompilation, kNever,
     "SELECT TypeId FROM Type WHERE Unnamed=0 AND Kind!=0 AND RefCount=?"},
    {Query::typeIdFromRefTagCount, "FrontendDatabase::listTypeIdFromRefTagCount()", "Type", "RefTagCount", kForCompilation, kNever,
     "SELECT TypeId FROM Type WHERE Unnamed=0 AND RefTagCount=? AND Kind IN (?,?,?,?)"},
    {Query::variableIdFromIdentifier, "FrontendDatabase::listEntityIdFromIdentifier()", "Variable", kId, kForCompilation, kNever,
     "SELECT VariableId FROM Variable WHERE IdentifierId=?"},
    {Query::variableIdFromIdentifierAndLinkage, "FrontendDatabase::listEntityIdFromIdentifier()", "Variable", kId, kForCompilation, kNever,
     "SELECT VariableId FROM Variable WHERE IdentifierId=? AND Linkage=?"},
    {Query::variableIdFromRefCount, "FrontendDatabase::listEntityIdFromRefCount()", "Variable", "RefCount", kForCompilation, kNever,
     "SELECT VariableId FROM Variable WHERE RefCount=?"},
    {Query::functionIdFromIdentifier, "FrontendDatabase::listEntityIdFromIdentifier()", "Function", kId, kForCompilation, kNever,
     "SELECT FunctionId FROM Function WHERE IdentifierId=?"},
    {Query::functionIdFromIdentifierAndLinkage, "FrontendDatabase::listEntityIdFromIdentifier()", "Function", kId, kForCompilation, kNever,
     "SELECT FunctionId FROM Function WHERE IdentifierId=? AND Linkage=?"},
    {Query::definedFunctionId, "FrontendDatabase::getExternalDefinedFunction()", "Function", kId, kForCompilation, kNever,
     "SELECT FunctionId FROM Function WHERE IdentifierId=? AND Linkage=? AND isDefined=?"},
    {Query::functionIdFromRefCount, "FrontendDatabase::listEntityIdFromRefCount()", "Function", "RefCount", kForCompilation, kNever,
     "SELECT FunctionId FROM Function WHERE RefCount=?"},
    {Query::externalIdentifierIdFromIdentifier, "FrontendDatabase::listExternalIdentifierFromIdentifier()", "ExternalIdentifier", kId, kForCompilation, kAtBind,
     "SELECT ExternalIdentifierId FROM ExternalIdentifier WHERE IdentifierId=? ORDER BY Kind"},
    {Query::fieldIdFromIdentifier, "FrontendDatabase::listFieldIdFromIdentifier()", "Field", kId, kForCompilation, kNever,
     "SELECT FieldId FROM Field WHERE IdentifierId=?"},
    {Query::fieldIdFromRefCount, "FrontendDatabase::listFieldIdFromRefCount()", "Field", "RefCount", kForCompilation, kAtBindAndReset,
     "SELECT FieldId FROM Field WHERE RefCount=?"},
    {Query::enumConstantIdFromIdentifier, "FrontendDatabase::listEnumConstantIdFromIdentifier()", "EnumConstant", kId, kForCompilation, kAtBindAndReset,
     "SELECT EnumConstantId FROM EnumConstant WHERE IdentifierId=?"},
    {Query::labelIdFromIdentifier, "FrontendDatabase::listLabelIdFromIdentifier()", "Label", kId, kForCompilation, kAtAll,
     "SELECT LabelId FROM Label WHERE IdentifierId=?"},
    {Query::callPointIdFromCaller, "FrontendDatabase::listCallPointIdFromCaller()", "CallPoint", "CallerId", kForCompilation, kAtAll,
     "SELECT CallPointId FROM CallPoint WHERE CallerId=?"},
    {Query::callPointIdFromCallee, "FrontendDatabase::listCallPointIdFromCallee()", "CallPoint", "CalleeId", kForCompilation, kAtAll,
     "SELECT CallPointId FROM CallPoint WHERE CalleeId=?"},
    {Query::variableIdFromRefCountAndLinkage, "FrontendDatabase::listVariableIdFromRefCountAndLinkage()", "Variable", "RefCount", kOnUse, kNever,
     "SELECT VariableId FROM Variable WHERE RefCount = ? AND Linkage = ?"},
    // A name counts when the counts of all its external variables add up to the parameter.
    {Query::externalVariableIdFromTotalRefCount, "FrontendDatabase::listVariableIdFromRefCountAndLinkage()", "Variable", kId, kOnUse, kNever,
     "SELECT VariableId FROM Variable, (SELECT IdentifierId FROM Variable, Identifier USING (IdentifierId) WHERE Linkage = 1"
     " GROUP BY IdentifierId HAVING sum(RefCount) = ?) USING (IdentifierId) WHERE Linkage = 1"},
    // The function called may be a declaration; what it does is known of the definition of its name.
    {Query::callPointIdWithNoEffect, "FrontendDatabase::listCallPointIdWithNoEffect()", "CallPoint", "CalleeId", kOnUse, kAtBind,
     "SELECT CallPoint.CallPointId FROM CallPoint INNER JOIN Function AS Dec ON CallPoint.CalleeId = Dec.FunctionId"
     " INNER JOIN Function AS Def ON Dec.IdentifierId = Def.IdentifierId WHERE CallPoint.IsValueUsed=0 AND Def.IsDefined = 1 AND Def.Effect=0"},
    // The index for key look-ups serves it.
    {Query::typeReferenceIdFromType, "FrontendDatabase::listTypeReferenceIdFromType()", "TypeReference", nullptr, kOnUse, kNever,
     "SELECT rowid FROM TypeReference WHERE DeclaredType=?"},
    {Query::macroIdFromMinLength, "FrontendDatabase::listIdFromMinLength()", "Macro", kNameLength, kOnUse, kAtBind,
     "SELECT Macro.MacroId FROM Macro JOIN Identifier USING(IdentifierId) WHERE length(Identifier.Name) >= ?"},
    {Query::typeIdFromMinLength, "FrontendDatabase::listIdFromMinLength()", "Type", kNameLength, kOnUse, kAtBind,
     "SELECT Type.TypeId FROM Type JOIN Identifier USING(IdentifierId) WHERE Type.Unnamed = 0 AND Type.Kind & 964 != 0 AND length(Identifier.Name) >= ?"},
    {Query::variableIdFromMinLength, "FrontendDatabase::listIdFromMinLength()", "Variable", kNameLength, kOnUse, kAtBind,
     "SELECT Variable.VariableId FROM Variable JOIN Identifier USING(IdentifierId) WHERE length(Identifier.Name) >= ?"},
    {Query::functionIdFromMinLength, "FrontendDatabase::listIdFromMinLength()", "Function", kNameLength, kOnUse, kAtBind,
     "SELECT Function.FunctionId FROM Function JOIN Identifier USING(IdentifierId) WHERE length(Identifier.Name) >= ?"},
    {Query::fieldIdFromMinLength, "FrontendDatabase::listIdFromMinLength()", "Field", kNameLength, kOnUse, kAtBind,
     "SELECT Field.FieldId FROM Field JOIN Identifier USING(IdentifierId) WHERE length(Identifier.Name) >= ?"},
    {Query::enumConstantIdFromMinLength, "FrontendDatabase::listIdFromMinLength()", "EnumConstant", kNameLength, kOnUse, kAtBind,
     "SELECT EnumConstant.EnumConstantId FROM EnumConstant JOIN Identifier USING(IdentifierId) WHERE length(Identifier.Name) >= ?"},
    {Query::labelIdFromMinLength, "FrontendDatabase::listIdFromMinLength()", "Label", kNameLength, kOnUse, kAtBind,
     "SELECT Label.LabelId FROM Label JOIN Identifier USING(IdentifierId) WHERE length(Identifier.Name) >= ?"},
};
// clang-format on

}  // namespace named_queries

/// All of it on one page: the searches, a row each. Without symbols; programs make the indexes that
/// a file can have for them of this list.
inline constexpr std::span<const NamedQuery> kNamedQueries = named_queries::kAll;

constexpr const NamedQuery& namedQuery(Query query) {
  return kNamedQueries[static_cast<std::size_t>(query)];
}

static_assert(
    [] {
      for (std::size_t i = 0; i < kNamedQueries.size(); ++i) {
        if (kNamedQueries[i].query != static_cast<Query>(i)) return false;
      }
      return true;
    }(),
    "each row is at the place of its value");

/// The searches of a database on its connection.
class NamedQueries {
 public:
  NamedQueries();
  /// REQUIRES: the connection is still open, or finalize() ran before it closed.
  ~NamedQueries();
  NamedQueries(const NamedQueries&) = delete;
  NamedQueries& operator=(const NamedQueries&) = delete;

  /// Of a search that is compiled when connecting; null before, and if it did not compile.
  sqlite3_stmt* handle(Query query) { return handles[static_cast<std::size_t>(query)]; }
  /// Of a search that is compiled on first use.
  persistence::DatabaseStatement& statement(Query query) {
    return statements[static_cast<std::size_t>(query)];
  }

  /// Compiles what is compiled when connecting; failures are reported. Answers the first one, an
  /// empty one when there was none.
  persistence::Failure compile(sqlite3* connection, bool isCompilation);
  void finalize(sqlite3* connection);

 private:
  void finalizeHandles(sqlite3* connection);

  std::array<sqlite3_stmt*, kNamedQueries.size()> handles{};
  std::vector<persistence::DatabaseStatement> statements;  ///< one for each search
};

}  // namespace orvalesca::databases_merger
