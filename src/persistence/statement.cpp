#include "persistence/statement.h"

#include "connection_state.h"
#include "persistence/sqlite_report.h"

namespace persistence {

bool ConnectionState::refuses() {
  if (!transactionFailed) return false;
  if (!refusalReported) {
    reportMessage("%s: the transaction has failed; nothing more is written in it", path.c_str());
    refusalReported = true;
  }
  return true;
}

DatabaseStatement::DatabaseStatement(bool) {}

DatabaseStatement::DatabaseStatement(const char* sql) : text(sql) {}

DatabaseStatement::DatabaseStatement(std::string_view sql, bool) : text(sql) {}

DatabaseStatement::DatabaseStatement(const DatabaseStatement& other) : text(other.text) {}

/// A statement that a connection knows of is finalized at the latest when that connection closes,
/// and forgets it then.
DatabaseStatement::~DatabaseStatement() {
  if (prepared && state != nullptr) finalize(sqlite3_db_handle(handle));
}

void DatabaseStatement::prepare(sqlite3* connection) {
  if (prepared || compilationFailed) return;
  state = ConnectionState::of(connection);
  const int rc = sqlite3_prepare_v2(connection, text.c_str(), -1, &handle, nullptr);
  if (rc != SQLITE_OK) {
    reportSqlite(rc, SQLITE_OK, connection);
    compilationFailed = true;
    lastResult = rc;
    return;
  }
  if (state != nullptr) state->compiled.push_back(this);
  prepared = true;
}

int DatabaseStatement::nextParameter() { return ++parameter; }

void DatabaseStatement::bind(sqlite3* connection, unsigned long long value) {
  bind(connection, static_cast<const long long&>(static_cast<long long>(value)));
}

void DatabaseStatement::bind(sqlite3* connection, const long long& value) {
  const int rc = sqlite3_bind_int64(handle, nextParameter(), value);
  if (rc != SQLITE_OK) reportSqlite(rc, SQLITE_OK, connection, reportsStatement ? handle : nullptr);
}

void DatabaseStatement::bind(sqlite3* connection, int value) {
  const int rc = sqlite3_bind_int(handle, nextParameter(), value);
  if (rc != SQLITE_OK) reportSqlite(rc, SQLITE_OK, connection, reportsStatement ? handle : nullptr);
}

int DatabaseStatement::step() {
  // Without a handle lastResult is the code of the failed compilation.
  if (handle == nullptr) return compilationFailed ? lastResult : (lastResult = SQLITE_MISUSE);
  if (state != nullptr && state->transactionFailed && state->refuses()) {
    return lastResult = SQLITE_ABORT;
  }
  return lastResult = sqlite3_step(handle);
}

void DatabaseStatement::column(long long& value) { value = sqlite3_column_int64(handle, 0); }

int DatabaseStatement::run(sqlite3* connection) {
  int rc = step();
  while (rc == SQLITE_ROW) rc = step();
  parameter = 0;
  if (rc != SQLITE_DONE && state != nullptr) state->noteFailedWrite(rc, connection);
  if (handle != nullptr) sqlite3_reset(handle);
  return rc;
}

void DatabaseStatement::exec(sqlite3* connection) {
  const int rc = run(connection);
  if (rc != SQLITE_DONE && !isFailureReported()) reportSqlite(rc, SQLITE_DONE, connection);
}

bool DatabaseStatement::isFailureReported() const {
  return compilationFailed || (state != nullptr && state->refusalReported);
}

void DatabaseStatement::reset(sqlite3* connection) {
  parameter = 0;
  if (handle == nullptr) return;
  const int rc = sqlite3_reset(handle);
  if (rc != SQLITE_OK && rc != lastResult) reportSqlite(rc, SQLITE_OK, connection);
}

void DatabaseStatement::finalize(sqlite3* connection) {
  // The code of a statement that failed before comes back here, and was reported then.
  const int rc = sqlite3_finalize(handle);
  if (rc != SQLITE_OK && rc != lastResult) reportSqlite(rc, SQLITE_OK, connection);
  if (prepared && state != nullptr) std::erase(state->compiled, this);
  handle = nullptr;
  state = nullptr;
  prepared = compilationFailed = false;
  lastResult = parameter = 0;
}

}  // namespace persistence
