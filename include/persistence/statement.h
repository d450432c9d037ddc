#pragma once

#include <string>
#include <string_view>

#include "persistence/export.h"

struct sqlite3;
struct sqlite3_stmt;

namespace persistence {

struct ConnectionState;

/// One SQL statement, compiled on first use and run any number of times.
///
/// Use:      prepare(), bind() each parameter, then exec(); or step() and column() for each row
///           and reset() at the end.
/// Indexes:  bind() fills the parameters in turn, from 1; reset() and exec() start over.
/// Errors:   bind, exec, reset and prepare report on standard error and return nothing; result()
///           is the code of the last run. step() reports nothing, its caller does.
/// Lifetime: destruction finalizes, and so does closing the Database that the statement was
/// compiled
///           on. On any other connection call finalize() before that closes. A copy has the text
///           and is not compiled.
/// In a transaction: exec() and run() are writes. One that fails for any reason but the refusal of
///           its own row (a constraint, a type mismatch, a value that is too big) fails the
///           transaction. In a failed transaction step(), exec() and run() do nothing and the
///           result is SQLITE_ABORT.
class SHARED_PERSISTENCE_EXPORT DatabaseStatement {
 public:
  /// The flag is reserved; pass false.
  explicit DatabaseStatement(bool reserved);
  explicit DatabaseStatement(const char* sql);
  DatabaseStatement(std::string_view sql, bool reserved);
  DatabaseStatement(const DatabaseStatement& other);
  DatabaseStatement& operator=(const DatabaseStatement&) = delete;
  virtual ~DatabaseStatement();

  /// Compiles the text. Does nothing on a compiled statement, also in the middle of its rows. A
  /// compilation that failed is reported once and tried again only after finalize().
  virtual void prepare(sqlite3* connection);

  void bind(sqlite3* connection, unsigned long long value);
  void bind(sqlite3* connection, const long long& value);
  void bind(sqlite3* connection, int value);

  /// One sqlite3_step; its result code.
  int step();
  /// First column of the current row.
  void column(long long& value);
  /// Runs a statement without rows to its end and makes it ready to be bound again.
  void exec(sqlite3* connection);
  /// As exec, and leaves the report to the caller; the result code, SQLITE_DONE when all is well.
  int run(sqlite3* connection);
  /// Says nothing of a code that the last step has already answered.
  void reset(sqlite3* connection);
  void finalize(sqlite3* connection);

  /// Whether the report of a failed bind is followed by the statement with its values; true at
  /// first.
  void reportStatementAtBind(bool on) { reportsStatement = on; }

  /// Code of the last step, exec or run.
  int result() const { return lastResult; }
  /// The failure of result() has been reported before: the compilation failed, or SQLite
  /// has rolled the transaction back.
  bool isFailureReported() const;
  const std::string& getText() const { return text; }

 protected:
  std::string text;
  sqlite3_stmt* handle = nullptr;
  bool prepared = false;

 private:
  int nextParameter();

  ConnectionState* state = nullptr;
  int lastResult = 0;
  int parameter = 0;
  bool reportsStatement = true;
  bool compilationFailed = false;
};

}  // namespace persistence
