#pragma once

#include <sqlite3.h>

#include <string>
#include <vector>

namespace persistence {

class DatabaseStatement;

/// What a connection's statements have to know of the transaction that is open on it. A Database
/// owns it; statements reach it through the connection that they are compiled on.
struct ConnectionState {
  std::string path;
  bool inTransaction = false;
  /// SQLite has rolled the transaction back by itself (disk full, I/O error, no memory): what
  /// follows would run in autocommit mode, statement by statement, so nothing may. Or the owner has
  /// given it up: nothing of it is to be committed.
  bool transactionFailed = false;
  bool refusalReported = false;
  /// What was compiled on the connection and not finalized yet. SQLite's own list also has the
  /// statements of virtual tables, which belong to SQLite.
  std::vector<DatabaseStatement*> compiled;

  /// Ties the state to the connection. The rollback hook both reports that SQLite has rolled back
  /// and, with its argument, is the one pointer per connection that SQLite returns.
  void attach(sqlite3* connection) { sqlite3_rollback_hook(connection, onRollback, this); }

  static ConnectionState* of(sqlite3* connection) {
    void* state = sqlite3_rollback_hook(connection, onRollback, nullptr);
    sqlite3_rollback_hook(connection, onRollback, state);
    return static_cast<ConnectionState*>(state);
  }

  /// A write has failed. Where it was not just its own row that was refused, the rest of the
  /// transaction may fail or succeed by chance: nothing of it is to be committed.
  void noteFailedWrite(int rc, sqlite3* connection) {
    const int code = rc & 0xff;
    const bool isRefusedRow =
        code == SQLITE_CONSTRAINT || code == SQLITE_MISMATCH || code == SQLITE_TOOBIG;
    // A connection that only reads has nothing to commit.
    if (inTransaction && !isRefusedRow && sqlite3_db_readonly(connection, "main") != 1) {
      transactionFailed = true;
    }
  }

  /// Whether a step must not run; says so once per transaction.
  bool refuses();

  void begin() {
    inTransaction = true;
    transactionFailed = refusalReported = false;
  }
  void end() { inTransaction = transactionFailed = refusalReported = false; }

 private:
  static void onRollback(void* state) {
    auto* self = static_cast<ConnectionState*>(state);
    if (self != nullptr && self->inTransaction) self->transactionFailed = true;
  }
};

}  // namespace persistence
