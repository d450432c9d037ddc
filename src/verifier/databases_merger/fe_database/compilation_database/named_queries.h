#pragma once

#include <array>
#include <cstddef>

#include "persistence/database.h"
#include "persistence/statement.h"

struct sqlite3;
struct sqlite3_stmt;

namespace orvalesca::databases_merger {

/// The searches that are SQLite handles, compiled when a database is connected. In the order of
/// their compilation; a preprocessing database has the first four.
enum class RawQuery : std::size_t {
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
};
inline constexpr std::size_t kRawQueries = 22;
inline constexpr std::size_t kPreprocessingRawQueries = 4;

/// Which reports of a raw query are followed by the statement with its values.
struct TellsStatement {
  bool atBind = false;
  bool atStep = false;
  bool atReset = false;
};

struct RawQueryText {
  const char* table;
  const char* sql;
  TellsStatement tells = {};
};

/// Indexed by RawQuery.
extern const std::array<RawQueryText, kRawQueries> kRawQueryTexts;

/// The hand-written searches of a database: each answers with row ids, one per call. Raw ones are
/// compiled together; the others are statements that compile themselves on first use.
class NamedQueries {
 public:
  NamedQueries();
  /// REQUIRES: the connection is still open, or finalize() ran before it closed.
  ~NamedQueries();
  NamedQueries(const NamedQueries&) = delete;
  NamedQueries& operator=(const NamedQueries&) = delete;

  sqlite3_stmt*& handle(RawQuery query) { return raw[static_cast<std::size_t>(query)]; }
  /// Compiles the first `count` raw queries; what does not compile is reported and stays null.
  /// Answers the first failure, an empty one when there was none.
  persistence::Failure compile(sqlite3* connection, std::size_t count);
  /// Finalizes the raw queries, the others only of a compilation database: no other uses them.
  void finalize(sqlite3* connection, bool isCompilation);

  persistence::DatabaseStatement variableIdFromRefCountAndLinkage;
  persistence::DatabaseStatement externalVariableIdFromTotalRefCount;
  persistence::DatabaseStatement callPointIdWithNoEffect;
  persistence::DatabaseStatement typeReferenceIdFromType;
  persistence::DatabaseStatement macroIdFromMinLength;
  persistence::DatabaseStatement typeIdFromMinLength;
  persistence::DatabaseStatement variableIdFromMinLength;
  persistence::DatabaseStatement functionIdFromMinLength;
  persistence::DatabaseStatement fieldIdFromMinLength;
  persistence::DatabaseStatement enumConstantIdFromMinLength;
  persistence::DatabaseStatement labelIdFromMinLength;

 private:
  void finalizeRaw(sqlite3* connection);

  std::array<sqlite3_stmt*, kRawQueries> raw{};
};

}  // namespace orvalesca::databases_merger
