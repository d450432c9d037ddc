#include "persistence/database.h"

#include <algorithm>
#include <cstdlib>

#include "connection_state.h"
#include "persistence/sqlite_report.h"
#include "persistence/statement.h"
#include "queue_lock.h"

namespace persistence {

namespace {

using Clock = std::chrono::steady_clock;

void reportCannotBegin(const std::string& path, sqlite3* connection) {
  reportMessage("%s: cannot begin a transaction: %s", path.c_str(), sqlite3_errmsg(connection));
}

}  // namespace

Database::Database(std::string_view path, std::string_view queueName, bool shared)
    : path(path),
      queueName(queueName),
      shared(shared),
      queueLock(std::make_unique<QueueLock>()),
      state(std::make_unique<ConnectionState>()) {
  state->path = path;
}

bool Database::prepareStatements() { return true; }

void Database::finalizeStatements() {}

Database::~Database() { close(); }

// --- Connection.

bool Database::quick_connect(bool readOnly) {
  if (isConnected()) {
    reportMessage("%s: already connected", path.c_str());
    return false;
  }
  int tables = 0;
  if (!open(readOnly) || !countTables(tables)) {
    reportMessage("%s: cannot open the database: %s", path.c_str(), sqlite3_errmsg(connection));
    close();
    return false;
  }
  if (mustExist && tables == 0) {
    reportMessage("%s: cannot open the database: it has no tables", path.c_str());
    close();
    return false;
  }
  if (tables != 0 && !prepareStatements()) {
    disconnect();
    return false;
  }
  return true;
}

bool Database::open(bool readOnly) {
  int flags = SQLITE_OPEN_NOMUTEX;
  flags |= readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
  if (!readOnly && !mustExist) flags |= SQLITE_OPEN_CREATE;
  // Some builds of SQLite take a name that begins so for a URI; ours are paths.
  const std::string file = path.starts_with("file:") ? "./" + path : path;
  if (sqlite3_open_v2(file.c_str(), &connection, flags, nullptr) != SQLITE_OK) return false;
  state->end();
  state->attach(connection);
  sqlite3_busy_timeout(connection, busyTimeout);
  // What a trigger of the file's owner would write or drop is in nobody's count.
  if (!readOnly) sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  // 64 MiB of pages while a save fills the tables in no particular order: a twentieth off a write.
  sqlite3_exec(connection, "PRAGMA cache_size=-65536", nullptr, nullptr, nullptr);
  return true;
}

/// An open alone reads nothing; this finds out whether the file is a database.
bool Database::countTables(int& tables) {
  sqlite3_stmt* statement = nullptr;
  const int rc = sqlite3_prepare_v2(
      connection, "SELECT count(*) FROM sqlite_schema WHERE type='table'", -1, &statement, nullptr);
  const bool hasRow = rc == SQLITE_OK && sqlite3_step(statement) == SQLITE_ROW;
  if (hasRow) tables = sqlite3_column_int(statement, 0);
  sqlite3_finalize(statement);
  return hasRow;
}

void Database::disconnect() {
  if (!isConnected()) return;
  if (state->inTransaction) rollbackTransaction();
  finalizeStatements();
  close();
}

/// Finalizes what its owners have left compiled, or SQLite would keep the file open.
void Database::close() {
  if (connection == nullptr) return;
  state->end();
  while (!state->compiled.empty()) state->compiled.back()->finalize(connection);
  finalizeForeignStatements();
  sqlite3_close_v2(connection);  // rolls back what is open
  connection = nullptr;
  queueLock->release();
}

/// Statements that an owner has compiled past this layer. Virtual tables have some of their own,
/// which cannot be distinguished from them and which the close finalizes; where there are any, an
/// owner's statement keeps the connection open until the owner finalizes it.
void Database::finalizeForeignStatements() {
  if (sqlite3_next_stmt(connection, nullptr) == nullptr) return;
  constexpr char kVirtualTables[] =
      "SELECT 1 FROM sqlite_schema WHERE type='table' AND rootpage=0 UNION ALL "
      "SELECT 1 FROM sqlite_temp_schema WHERE type='table' AND rootpage=0";
  sqlite3_stmt* search = nullptr;
  sqlite3_prepare_v2(connection, kVirtualTables, -1, &search, nullptr);
  const bool hasNone = sqlite3_step(search) == SQLITE_DONE;
  sqlite3_finalize(search);
  while (hasNone) {
    sqlite3_stmt* statement = sqlite3_next_stmt(connection, nullptr);
    if (statement == nullptr) return;
    sqlite3_finalize(statement);
  }
}

bool Database::isConnectedFor(const char* operation) {
  if (isConnected()) return true;
  reportMessage("%s: %s: the database is not connected", path.c_str(), operation);
  return false;
}

void Database::setBusyTimeout(int milliseconds) {
  busyTimeout = milliseconds;
  if (isConnected()) sqlite3_busy_timeout(connection, busyTimeout);
}

// --- Transactions.

bool Database::beginTransaction() {
  if (!isConnectedFor("beginTransaction")) return false;
  if (!isFreeToBegin()) return false;
  // SQLite begins all the same, and would refuse row by row.
  if (sqlite3_db_readonly(connection, "main") == 1) {
    reportMessage("%s: cannot begin a transaction: attempt to write a readonly database",
                  path.c_str());
    return false;
  }
  const auto deadline = Clock::now() + std::chrono::milliseconds(busyTimeout);
  if (shared && !takeQueueLock(deadline)) return false;
  const auto waitForWhatIsLeft = [this, deadline] {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    sqlite3_busy_timeout(connection, std::max(0, static_cast<int>(left.count())));
  };
  waitForWhatIsLeft();  // a writer that is just committing is waited for here already
  // An immediate begin would write the first page of a new file, and with it fix a page size that
  // the schema has yet to ask for.
  const std::optional<int> pages = countPages();
  waitForWhatIsLeft();
  const bool begun = pages && begin(*pages == 0 ? "BEGIN" : "BEGIN IMMEDIATE");
  sqlite3_busy_timeout(connection, busyTimeout);
  if (!begun) queueLock->release();
  return begun;
}

bool Database::beginReading() {
  return isConnectedFor("beginReading") && isFreeToBegin() && begin("BEGIN");
}

/// A transaction that SQLite has rolled back is still open for its owner, though not for SQLite.
bool Database::isFreeToBegin() {
  if (!state->inTransaction) return true;
  reportMessage("%s: cannot start a transaction within a transaction", path.c_str());
  return false;
}

/// None if the file cannot be read now. That is reported: a guess would begin the wrong way.
std::optional<int> Database::countPages() {
  sqlite3_stmt* statement = nullptr;
  std::optional<int> pages;
  if (sqlite3_prepare_v2(connection, "PRAGMA page_count", -1, &statement, nullptr) == SQLITE_OK &&
      sqlite3_step(statement) == SQLITE_ROW) {
    pages = sqlite3_column_int(statement, 0);
  } else {
    reportCannotBegin(path, connection);
  }
  sqlite3_finalize(statement);
  return pages;
}

bool Database::takeQueueLock(std::chrono::steady_clock::time_point deadline) {
  const char* lockPath = std::getenv(queueName.c_str());
  if (lockPath == nullptr || *lockPath == '\0') return true;
  std::string reason;
  if (queueLock->take(lockPath, deadline, reason)) return true;
  reportMessage("%s: cannot lock %s, named by %s: %s", path.c_str(), lockPath, queueName.c_str(),
                reason.c_str());
  return false;
}

bool Database::begin(const char* sql) {
  const int rc = sqlite3_exec(connection, sql, nullptr, nullptr, nullptr);
  if (rc != SQLITE_OK) {
    reportCannotBegin(path, connection);
    return false;
  }
  state->begin();
  return true;
}

bool Database::commitTransaction() {
  if (!isConnectedFor("commitTransaction")) return false;
  if (allOrNothing && hasFailed()) failTransaction();
  if (state->transactionFailed) {
    state->refuses();
    rollbackTransaction();
    return false;
  }
  if (sqlite3_exec(connection, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) {
    reportMessage("%s: cannot commit: %s", path.c_str(), sqlite3_errmsg(connection));
    noteFailedWrite("", sqlite3_errmsg(connection));
    if (state->inTransaction) rollbackTransaction();
    return false;
  }
  state->end();
  queueLock->release();
  return true;
}

bool Database::rollbackTransaction() {
  if (!isConnectedFor("rollbackTransaction")) return false;
  const bool isOpen = sqlite3_get_autocommit(connection) == 0;
  const bool wasOpen = state->inTransaction;
  state->end();
  int rc = SQLITE_OK;
  if (isOpen || !wasOpen) rc = sqlite3_exec(connection, "ROLLBACK", nullptr, nullptr, nullptr);
  if (rc != SQLITE_OK) {
    reportMessage("%s: cannot roll back: %s", path.c_str(), sqlite3_errmsg(connection));
  }
  queueLock->release();
  return rc == SQLITE_OK;
}

bool Database::hasTransactionFailed() const { return state->transactionFailed; }

void Database::failTransaction() { state->transactionFailed = state->inTransaction; }

// --- Statements of the owner.

long long Database::lastInsertRowID() {
  return isConnectedFor("lastInsertRowID") ? sqlite3_last_insert_rowid(connection) : 0;
}

bool Database::execute(const std::string& sql) {
  if (!isConnectedFor("execute")) return false;
  if (state->transactionFailed) {
    state->refuses();
    return false;
  }
  const int rc = sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr);
  if (rc == SQLITE_OK) return true;
  reportMessage("%s: %s: %s", path.c_str(), sql.c_str(), sqlite3_errmsg(connection));
  state->noteFailedWrite(rc, connection);
  noteFailedWrite("", sqlite3_errmsg(connection));
  return false;
}

void Database::noteFailedRead(std::string_view table, std::string_view reason) {
  ++failedReads;
  rememberFailure(table, reason);
}

void Database::noteFailedWrite(std::string_view table, std::string_view reason) {
  if (allOrNothing) failTransaction();
  rememberFailure(table, reason);
}

void Database::rememberFailure(std::string_view table, std::string_view reason) {
  if (failure.reason.empty()) failure = {std::string(table), std::string(reason)};
}

}  // namespace persistence
