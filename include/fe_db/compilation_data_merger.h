#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fe_db/element_containers.h"
#include "fe_db/export.h"

namespace orvalesca::databases_merger {

class CompilationDatabase;
class mergerImpl;

/// Folds the compilation databases of many translation units into one: each file, name, type,
/// function and so on is there once in the end, with its counts added up. One object per database;
/// one of them is the target, the others are its sources.
///
/// Use:      CompilationDataMerger target("all.db");
///           CompilationDatabase& db = target.openDB();
///           if (!db.isConnected()) ...
///           target.beginTransaction();        // before the load: nobody writes in between
///           target.loadDataFromDB();
///           for each source {                 // in the order that shall decide conflicts
///             CompilationDataMerger source(path);
///             source.openDB();
///             source.loadDataFromDB();
///             source.closeDB();
///             target.mergeCompilationTables(source);
///           }
///           target.truncateDataFromDB();
///           target.saveToDB();
///           target.commitTransaction();       // or db.commitTransaction(), which answers
///           target.closeDB();
/// Covers:   File, Identifier, Function, CallPoint, EnumConstant, Type, Field, Label, Macro,
///           TypeReference, Variable, ExternalIdentifier; and the cross-reference, as far as a file
///           has its five tables. Rows of the three tables of macro uses
///           are neither read nor written nor deleted.
/// Errors:   reported on standard error. No operation answers; ask the database that openDB()
/// gives:
///           isConnected(), hasFailed(), lastFailure(), leftOutRows(), lostReferences(). A merger
///           whose rows could not all be read never rewrites its file, nor does a target that was
///           given such a source. Out of memory: std::bad_alloc, after which the merger may only
///           be destroyed.
/// Threads:  one at a time per merger; different mergers may load in different threads at once.
/// Cost:     linear in the rows; the rows of a merger stay in memory until it is destroyed.
class FE_DB_EXPORT CompilationDataMerger {
 public:
  /// Opens nothing. Throws std::invalid_argument when the path is empty.
  explicit CompilationDataMerger(std::string_view path);
  /// Closes a connection that is still open; an open transaction is rolled back.
  ~CompilationDataMerger();
  CompilationDataMerger(const CompilationDataMerger&) = delete;
  CompilationDataMerger& operator=(const CompilationDataMerger&) = delete;

  /// Connects, to a file that is there and has its tables. The database belongs to the merger; its
  /// named searches and the dataset's find operations are not available on it.
  CompilationDatabase& openDB();
  /// Disconnects. What was loaded stays in memory.
  void closeDB();

  void beginTransaction();
  /// Rolls back instead when a read or a write of this merger has failed.
  void commitTransaction();

  /// saveToDB() prints the number of rows of each table on standard output. Cannot be undone.
  void setDebug();

  /// Reads the tables, each row as stored. REQUIRES: connected, and nothing loaded before.
  ///
  /// Rows of one key become one element: the values are those of the first. A row that could not be
  /// merged is left out, with one report line per table: one that lacks its name, a variable
  /// without a file, a function without a source name, a call without caller or callee, an external
  /// name of kind 0 or 1 without its entity. A reference to a row that is not there or was left out
  /// counts as none. Stored reference counts of functions are not read. Opens no transaction.
  void loadDataFromDB();

  /// Folds what `other` has loaded into what this merger has loaded, in memory; no database is
  /// touched and none need be connected. REQUIRES: loadDataFromDB() ran on both. Afterwards `other`
  /// may only be closed and destroyed. Does nothing, with a report, when `other` is this merger or
  /// was folded before; nor when a read of `other` failed, and then this merger will not rewrite
  /// its file either.
  ///
  /// Where both know an element, counts add up, flags of names and types are united, a macro value
  /// that is missing is taken over, a macro undefined on either side is undefined; all other values
  /// stay those of this merger. Roles of references and flags of properties are united, and all
  /// units count as folded. Each enum constant, field and label counts 1 more for its name.
  void mergeCompilationTables(CompilationDataMerger const& other);

  /// Deletes the rows of the tables. REQUIRES: loadDataFromDB() ran, or they are lost; a
  /// transaction, or a failure after this step loses them too. Refused, with a report, when rows
  /// of the file are not in memory: a read failed, or rows were left out.
  void truncateDataFromDB();
  /// Inserts a row for every element; ids are given anew. REQUIRES: truncateDataFromDB() ran.
  /// Inside a transaction a refused row ends the writing, and the commit will roll back.
  void saveToDB();

  /// The units that are in memory: those of this file, and of what was folded into it.
  const UnitSet& getUnits() const;
  /// The tables that the file lacks and that are not empty in memory: what saveToDB() cannot write.
  std::vector<std::string> tablesNotInFile() const;

 private:
  std::unique_ptr<mergerImpl> impl;
};

}  // namespace orvalesca::databases_merger
