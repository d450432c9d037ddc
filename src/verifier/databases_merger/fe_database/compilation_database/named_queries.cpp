#include "fe_database/compilation_database/named_queries.h"

#include <sqlite3.h>

#include "persistence/sqlite_report.h"

namespace orvalesca::databases_merger {

NamedQueries::NamedQueries() {
  statements.reserve(kNamedQueries.size());
  for (const NamedQuery& query : kNamedQueries) {
    statements.emplace_back(query.sql).reportStatementAtBind(query.reports.atBind);
  }
}

NamedQueries::~NamedQueries() {
  for (sqlite3_stmt* handle : handles) sqlite3_finalize(handle);
}

persistence::Failure NamedQueries::compile(sqlite3* connection, bool isCompilation) {
  finalizeHandles(connection);
  persistence::Failure first;
  for (std::size_t i = 0; i < kNamedQueries.size(); ++i) {
    const NamedQuery& query = kNamedQueries[i];
    const bool isCompiled = query.compiled == Compiled::always ||
                            (query.compiled == Compiled::forCompilation && isCompilation);
    if (!isCompiled) continue;
    const int rc = sqlite3_prepare_v2(connection, query.sql, -1, &handles[i], nullptr);
    if (rc == SQLITE_OK) continue;
    if (first.reason.empty()) first = {query.table, sqlite3_errmsg(connection)};
    persistence::reportQuery(query.sql);
    persistence::reportSqlite(rc, SQLITE_OK, connection, handles[i]);
  }
  return first;
}

void NamedQueries::finalize(sqlite3* connection) {
  for (persistence::DatabaseStatement& statement : statements) statement.finalize(connection);
  finalizeHandles(connection);
}

void NamedQueries::finalizeHandles(sqlite3* connection) {
  for (sqlite3_stmt*& handle : handles) {
    const int rc = sqlite3_finalize(handle);
    if (rc != SQLITE_OK) persistence::reportSqlite(rc, SQLITE_OK, connection);
    handle = nullptr;
  }
}

}  // namespace orvalesca::databases_merger
