#pragma once

#include <memory>
#include <string_view>

#include "fe_db/elements.h"
#include "fe_db/export.h"
#include "persistence/database.h"
#include "persistence/statement.h"

namespace orvalesca::databases_merger {

class CompilationData;
class NamedQueries;
enum class Query : std::size_t;
enum class StatementKind : std::uint32_t;
struct NamedQuery;
struct Tables;
template <class T>
class IdCache;
template <class T>
class TableStatement;

/// One SQLite database as a dataset sees it: single rows in and out, no view of what they mean.
///
/// Programs use what is public here and in persistence::Database. The rest serves the library
/// itself; its operations exist for each of the element classes that the database has a table for.
///
/// Cursors:  set `first` to true and call until the result is 0. One walk per table and kind at a
///           time, run to its end: starting a second one before the first has ended continues
///           the first.
/// Errors:   reported on standard error; the operation goes on, and a failed step counts as the end
///           of the rows.
/// Cost:     a row is one statement with fresh bindings; statements are compiled on first use.
class FrontendDatabase : public persistence::Database {
 public:
  DatabaseKind getKind() const { return kind; }

  /// The function of a row that has come into memory, or null. Never reads the file.
  FE_DB_EXPORT Function* getFunction(long long id);

  /// Whether the connected file has a table of the name, as its schema is now. (Which of the five
  /// that it may lack are loaded and saved was decided when it was connected.)
  FE_DB_EXPORT bool hasTable(std::string_view name) const;

  // --- The searches that no find operation of the dataset reaches: row ids, one per call; cursors
  // as above. On a connected CompilationDatabase that is no merger's. A failure reads as the end.

  /// `entity` is 0 for variables and 1 for functions.
  FE_DB_EXPORT long long listEntityIdFromRefCount(int entity, unsigned refCount, bool& first);
  /// By the row with the function's key, whatever id the element holds.
  FE_DB_EXPORT long long listCallPointIdFromCaller(Function* caller, bool& first);
  FE_DB_EXPORT long long listCallPointIdFromCallee(Function* callee, bool& first);

  /// Rows that loading has read so far, all tables together.
  unsigned long long countRowsListed() const { return rowsListed; }
  /// The same, and the rows that were found by key.
  unsigned long long countRowsRead() const { return rowsListed + rowsFound; }
  /// Rows that have been inserted so far, all tables together.
  unsigned long long countRowsAdded() const { return rowsAdded; }
  /// How often a row or a reference was passed over that cannot become an element.
  unsigned long getLeftOutReferences() const { return leftOutReferences; }

 protected:
  bool prepareStatements() override;
  void finalizeStatements() override;

  FrontendDatabase(std::string_view path, DatabaseKind kind, CompilationData* dataset, bool shared);
  ~FrontendDatabase() override;

 private:
  friend class CompilationData;
  friend class LastSave;
  friend class mergerImpl;
  friend struct ElementSave;
  template <class T>
  friend struct ColumnValue;
  /// Every operation for every class; compiled once, where they are defined.
  struct Operations;

  // --- Single rows.

  /// Inserts a row; the element takes its id. 0 when the row was refused.
  template <class T>
  long long add(T& element);
  /// As add; a File or Identifier whose row is already there takes the id of that row, which is
  /// written again with the element's values.
  template <class T>
  long long addOrAdoptRow(T& element);
  /// Writes the columns that are no key into the row of the element's id.
  template <class T>
  void update(T& element);
  /// Finds the element's row by key and merges it with the element by the rule of the class; adds
  /// one when there is none.
  template <class T>
  long long add_or_update(T& element);
  /// The element's id, or that of the row with its key, whose values it takes, or add.
  template <class T>
  long long getIdOrAdd(T& element);
  /// Fills the element from the first row with its key; 0 when there is none.
  template <class T>
  long long getId(T& element);
  /// Cursor over all rows with the key of `row`.
  long long getId(bool& first, Type& row);
  /// The element of a row, in the dataset: read and emplaced unless it is there. Null for 0 and for
  /// a row that cannot become an element. An id without a row gives an empty element, or null where
  /// databases are merged.
  template <class T>
  T* get(long long id);
  /// The same for an id that a search of this database has found: null, and counted as left out,
  /// also when the id has no row.
  template <class T>
  T* getFound(long long id);
  /// The element of a row that has been read, or null: nothing is read and nothing reported.
  template <class T>
  T* getKnown(long long id);
  /// Fills the element from the row of its id, past the dataset.
  template <class T>
  void get(T& element);
  template <class T>
  long long listId(bool& first);
  /// All columns arrive in `row`, which is reused and keeps what a column does not write.
  template <class T>
  long long listALL(bool& first, T& row);
  template <class T>
  void truncate();
  /// Whether the table has as many rows as were written into it when it was empty, each with its
  /// id. A definition of the owner's (a conflict clause, an id that is no row id) can be otherwise.
  template <class T>
  bool holdsJust(std::size_t rows);
  /// About as many rows as the table has, in no time: the span of its row ids, as long as the file
  /// has room for so many. (Not the largest: in a table that is rewritten again and again with
  /// AUTOINCREMENT, ids begin far above 1.) 0 when nothing can be read. Says nothing: whoever reads
  /// the rows will.
  template <class T>
  std::size_t guessRowCount() const;

  // --- Named searches: row ids, one per call; cursors as above. A failure reads as the end. They
  // are compiled when the database is connected, those of macros and identifiers on a preprocessing
  // database too, none on a merger's. `entity` is 0 for variables and 1 for functions.

  long long listIdentifierIdFromKindAndCount(int identifierKind, unsigned count, int operation,
                                             bool& first);
  long long listIdentifierIdFromKind(int identifierKind, bool& first);
  long long listMacroIdFromIdentifier(const Identifier* identifier, bool& first);
  long long listMacroIdFromRefCount(unsigned refCount, bool& first);
  long long listEntityIdFromIdentifier(int entity, Identifier* identifier, bool& first);
  long long listEntityIdFromIdentifier(int entity, Identifier* identifier, int linkage,
                                       bool& first);
  long long listVariableIdFromRefCountAndLinkage(unsigned refCount, unsigned linkage, bool& first);
  long long listTypeIdFromIdentifier(Identifier* identifier, bool& first);
  long long listTypeIdFromIdentifierAndKind(Identifier* identifier, int typeKind, bool& first);
  long long listTypeIdFromRefCount(unsigned refCount, bool& first);
  long long listTypeIdFromRefTagCount(unsigned refTagCount, bool& first);
  long long listTypeReferenceIdFromType(Type* type, bool& first);
  long long listExternalIdentifierFromIdentifier(const Identifier* identifier, bool& first);
  long long listFieldIdFromIdentifier(Identifier* identifier, bool& first);
  long long listFieldIdFromRefCount(unsigned refCount, bool& first);
  long long listEnumConstantIdFromIdentifier(Identifier* identifier, bool& first);
  long long listLabelIdFromIdentifier(Identifier* identifier, bool& first);
  long long listCallPointIdWithNoEffect(bool& first);
  template <class T>
  long long listIdFromMinLength(std::size_t minLength, bool& first);
  /// No cursor: the first function of the name that is defined and has external linkage, or 0.
  long long getExternalDefinedFunction(Identifier* identifier);
  /// The element's id, or that of the row with its name, or 0. The element is not changed.
  long long getIdentifierId(const Identifier* identifier);

  /// Which element of the dataset a row is. `enter` accepts null for a row that is no element.
  template <class T>
  void enterInIdCache(long long id, T* element);
  template <class T>
  bool isInIdCache(long long id) const;
  template <class T>
  void reserveIdCache(std::size_t rows);
  template <class T>
  const IdCache<T>& idCacheOf() const;
  void clearIdCaches();

  template <class T>
  bool has() const;
  void findExtensions();
  template <class T>
  bool isReadyFor(const char* operation);
  template <class T>
  bool isReadyToRead(const char* operation);
  template <class T>
  void reportRead(const TableStatement<T>& statement, int expected, int line = __builtin_LINE());
  template <class T>
  void reportWrite(const TableStatement<T>& statement, int line = __builtin_LINE());
  template <class T>
  static bool mergeWithRow(T& element, const T& row);
  template <class T>
  T* getElement(long long id, bool isFound);
  template <class T>
  bool readRow(T& element);
  template <class T>
  void readEmptyRow(T& element);
  template <class T>
  long long nextRow(StatementKind statementKind, bool& first, T& row);
  bool isReadyToSearch(const NamedQuery& query);
  template <class ValuesOf>
  long long nextId(Query query, bool& first, ValuesOf&& valuesOf);
  template <class Bind>
  long long nextIdOnUse(Query query, bool& first, Bind&& bind);
  template <class T>
  long long lookUpId(const T* element);

  DatabaseKind kind;
  CompilationData* dataset;
  std::unique_ptr<Tables> tables;
  std::unique_ptr<NamedQueries> namedQueries;
  unsigned long leftOutReferences = 0;
  unsigned long long rowsListed = 0;
  unsigned long long rowsFound = 0;
  unsigned long long rowsAdded = 0;
};

/// All facts of a translation unit, or of many. The file has to be there, with its tables: the
/// library makes none (the fe_db program does).
class CompilationDatabase : public FrontendDatabase {
 private:
  friend class CompilationData;
  friend struct std::default_delete<CompilationDatabase>;

  CompilationDatabase(std::string_view path, CompilationData* dataset);
  ~CompilationDatabase() override;
};

/// What preprocessing produced: files, names, macros and their uses. Connecting may create the
/// file; addTables() lays its schema.
class PreprocessingDatabase : public FrontendDatabase {
 public:
  /// Makes tables, indexes and views, and prepares the statements. Harmless on a file that has
  /// them. REQUIRES: connected.
  [[nodiscard]] FE_DB_EXPORT bool addTables();

 private:
  friend class CompilationData;
  friend struct std::default_delete<PreprocessingDatabase>;

  PreprocessingDatabase(std::string_view path, CompilationData* dataset);
  ~PreprocessingDatabase() override;
};

}  // namespace orvalesca::databases_merger
