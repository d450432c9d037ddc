#pragma once

#include <boost/core/noncopyable.hpp>
#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "persistence/export.h"

struct sqlite3;

namespace persistence {

class QueueLock;
struct ConnectionState;

/// What first went wrong in a database: the table concerned (empty when it was no table's
/// statement) and SQLite's own reason. Both empty: nothing did.
struct Failure {
  std::string table;
  std::string reason;
};

/// An SQLite database file and the transaction on it.
///
/// Threads:  one at a time per object; two objects may be used by two threads at once.
/// Errors:   every operation reports a failure on standard error, once, and answers false or 0.
///           So does every operation on a database that is not connected.
/// Lifetime: destroying a connected database rolls back, finalizes the statements that are still
///           compiled, closes.
/// Writing:  no trigger of the file runs on a connection that may write.
class SHARED_PERSISTENCE_EXPORT Database : boost::noncopyable {
 public:
  /// queueName: name of an environment variable. When that is set and not empty, its value is the
  ///            path of a lock file; a writer's transaction on a shared file holds an exclusive
  ///            advisory lock on it, so that many processes queue up instead of racing.
  /// shared:    the file is shared with other writers; false: this object alone builds it.
  /// Opens nothing.
  Database(std::string_view path, std::string_view queueName, bool shared);

  /// For the derived class: compile what has to be ready before the first call. A false makes
  /// quick_connect fail.
  virtual bool prepareStatements();
  /// For the derived class: finalize every statement that it owns.
  virtual void finalizeStatements();
  virtual ~Database();

  /// Opens the file, read-write unless readOnly (a file that may not be written is then opened
  /// for reading), and calls prepareStatements. False, with one report naming path and reason,
  /// when the file is missing, no database, or has no table where tables have to be there.
  [[nodiscard]] bool quick_connect(bool readOnly);
  /// Rolls back an open transaction, finalizes all statements, closes. Harmless when not connected.
  void disconnect();
  bool isConnected() const { return connection != nullptr; }

  /// Takes the write lock, and before it the queue lock of a shared file; waits for both together
  /// up to the busy timeout.
  [[nodiscard]] bool beginTransaction();
  /// For readers: takes neither lock.
  [[nodiscard]] bool beginReading();
  /// False, and everything rolled back, when the commit fails or the transaction has failed before:
  /// SQLite has rolled it back, or a write has failed for another reason than the refusal of its
  /// own row. A transaction never commits half of what it was asked to write.
  [[nodiscard]] bool commitTransaction();
  bool rollbackTransaction();

  /// Row id of the latest insertion on this connection.
  long long lastInsertRowID();

  /// Runs SQL of the caller's own, inside the transaction if one is open. Rows are dropped. What
  /// fails fails the transaction as well, unless a row was refused.
  [[nodiscard]] bool execute(const std::string& sql);

  /// How long a lock held by others is waited for; 60 s unless set. In milliseconds.
  void setBusyTimeout(int milliseconds);

  /// A read has failed: a row could not be had or a statement not be compiled, so what is in memory
  /// may be less than what the file holds. Stays for the life of this object.
  bool hasFailed() const { return failedReads != 0; }
  /// The first failed read or write.
  const Failure& lastFailure() const { return failure; }
  /// Rows that were read and could not become elements, per table.
  const std::map<std::string, std::size_t>& leftOutRows() const { return leftOut; }
  /// Rows that became elements without a reference of theirs, because it references a row that is
  /// not there or was left out; per table.
  const std::map<std::string, std::size_t>& lostReferences() const { return withoutReference; }

  const std::string& getPath() const { return path; }

 protected:
  /// True when connected; otherwise reports that the operation was called without a connection.
  bool isConnectedFor(const char* operation);
  /// How many reads have failed so far.
  unsigned long countFailedReads() const { return failedReads; }
  /// SQLite has rolled back the open transaction, a write in it has failed, or failTransaction()
  /// was called; nothing runs until it is ended.
  bool hasTransactionFailed() const;
  /// The open transaction will not be committed.
  void failTransaction();
  void noteFailedRead(std::string_view table, std::string_view reason);
  void noteFailedWrite(std::string_view table, std::string_view reason);
  void noteLeftOutRow(const std::string& table) { ++leftOut[table]; }
  void noteLostReference(const std::string& table) { ++withoutReference[table]; }

  /// Null while not connected.
  sqlite3* connection = nullptr;
  /// A file without tables is an error. When false, connecting may create the file, and nothing
  /// is prepared while it has no table.
  bool mustExist = true;
  /// The tables are rewritten as a whole: a refused row fails the transaction, and nothing is
  /// committed once a read has failed.
  bool allOrNothing = false;

 private:
  bool open(bool readOnly);
  bool countTables(int& tables);
  void close();
  void finalizeForeignStatements();
  bool isFreeToBegin();
  std::optional<int> countPages();
  bool takeQueueLock(std::chrono::steady_clock::time_point deadline);
  bool begin(const char* sql);
  void rememberFailure(std::string_view table, std::string_view reason);

  std::string path;
  std::string queueName;
  bool shared;
  int busyTimeout = 60'000;
  std::unique_ptr<QueueLock> queueLock;
  std::unique_ptr<ConnectionState> state;
  unsigned long failedReads = 0;
  Failure failure;
  std::map<std::string, std::size_t> leftOut;
  std::map<std::string, std::size_t> withoutReference;
};

}  // namespace persistence
