#include <sqlite3.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>

#include "fe_database/compilation_database/describe_table.h"
#include "fe_database/compilation_database/named_queries.h"
#include "fe_database/compilation_database/rollback_guard.h"
#include "fe_database/compilation_database/row_validity.h"
#include "fe_database/compilation_database/tables.h"
#include "fe_database/compilation_database/trace_level.h"
#include "fe_db/compilation_data.h"
#include "fe_db/compilation_database.h"
#include "persistence/debug.h"
#include "persistence/sqlite_report.h"

namespace orvalesca::databases_merger {

using persistence::Debug;

static_assert(SQLITE_ROW == 100 && SQLITE_DONE == 101 && SQLITE_NULL == 5);

// --- Construction.

namespace {

/// Handed to the layer below and read nowhere else: the name of an environment variable.
constexpr char kQueueName[] = "ORVALESCA_TRANSACTIONS_QUEUE_NAME_FE";

}  // namespace

Tables::Tables(DatabaseKind kind) {
  AllElements::each([&]<class T>() {
    describe(of<T>().description);
    const bool hasTable = kind != DatabaseKind::Preprocessing || PreprocessingElements::has<T>;
    if (!hasTable) of<T>().description.columns.clear();
    of<T>().isThere = hasTable && !ExtensionElements::has<T>;
  });
  for (std::uint32_t statementKind = 0; statementKind < kStatementKinds; ++statementKind) {
    AllElements::each([&]<class T>() {
      Table<T>& table = of<T>();
      if (table.description.columns.empty()) return;
      table.statements.emplace_back(table.description, static_cast<StatementKind>(statementKind));
    });
  }
}

FrontendDatabase::FrontendDatabase(std::string_view path, DatabaseKind kind,
                                   CompilationData* dataset, bool shared)
    : persistence::Database(path, kQueueName, shared),
      kind(kind),
      dataset(dataset),
      tables(std::make_unique<Tables>(kind)),
      namedQueries(std::make_unique<NamedQueries>()) {}

FrontendDatabase::~FrontendDatabase() = default;

/// From the schema: to compile a statement and see it fail would be reported.
bool FrontendDatabase::hasTable(std::string_view name) const {
  return connection != nullptr &&
         sqlite3_table_column_metadata(connection, "main", std::string(name).c_str(), nullptr,
                                       nullptr, nullptr, nullptr, nullptr, nullptr) == SQLITE_OK;
}

void FrontendDatabase::findExtensions() {
  ExtensionElements::each([this]<class T>() {
    Table<T>& table = tables->of<T>();
    table.isThere = !table.statements.empty() && hasTable(TableColumns<T>::kName);
    // A row of it means nothing without its unit's.
    if (std::is_same_v<T, UnitFile>) table.isThere = table.isThere && has<Unit>();
  });
}

template <class T>
bool FrontendDatabase::has() const {
  return tables->of<T>().isThere;
}

bool FrontendDatabase::prepareStatements() {
  findExtensions();
  if (kind == DatabaseKind::Merge) return true;
  if (!beginReading()) return false;
  {
    RollbackOnException guard(*this);
    const bool isCompilation = kind == DatabaseKind::Compilation;
    const auto [table, reason] = namedQueries->compile(connection, isCompilation);
    if (!reason.empty()) noteFailedRead(table, reason);
  }
  return commitTransaction();
}

void FrontendDatabase::finalizeStatements() {
  namedQueries->finalize(connection);
  AllElements::each([this]<class T>() {
    for (TableStatement<T>& statement : tables->of<T>().statements) statement.finalize(connection);
  });
}

// --- What the operations share.

/// Connected, and a database of this kind has the table.
template <class T>
bool FrontendDatabase::isReadyFor(const char* operation) {
  if (!isConnectedFor(operation)) return false;
  if (!tables->of<T>().statements.empty()) return true;
  persistence::reportMessage("%s: %s: a preprocessing database has no table %s", getPath().c_str(),
                             operation, TableColumns<T>::kName);
  return false;
}

template <class T>
bool FrontendDatabase::isReadyToRead(const char* operation) {
  if (isReadyFor<T>(operation)) return true;
  noteFailedRead(TableColumns<T>::kName, "not connected");
  return false;
}

template <class T>
void FrontendDatabase::reportRead(const TableStatement<T>& statement, int expected, int line) {
  // An id without a row is damage of the file; the read itself went well.
  if (statement.result() != SQLITE_DONE) {
    noteFailedRead(TableColumns<T>::kName, sqlite3_errmsg(connection));
  }
  if (statement.isFailureReported()) return;
  persistence::reportSqlite(statement.result(), expected, connection, nullptr, line);
}

template <class T>
void FrontendDatabase::reportWrite(const TableStatement<T>& statement, int line) {
  if (statement.isFailureReported()) return;
  persistence::reportSqlite(statement.result(), SQLITE_DONE, connection, nullptr, line);
}

// --- Writing single rows.

template <class T>
long long FrontendDatabase::add(T& element) {
  Debug debug(kTraceLevel<T>, "FrontendDatabase::add()");
  element.setId(0);
  if (!isReadyFor<T>("FrontendDatabase::add()")) return 0;
  TableStatement<T>& statement = tables->statement<T>(StatementKind::add);
  statement.bind(*this, connection, element);
  statement.exec(connection);
  if (statement.result() == SQLITE_DONE && sqlite3_changes(connection) == 0) {
    constexpr char kDropped[] = "a constraint of the table has dropped a row";
    noteFailedWrite(TableColumns<T>::kName, kDropped);
    persistence::reportMessage("%s: table %s: %s", getPath().c_str(), TableColumns<T>::kName,
                               kDropped);
  } else if (statement.result() == SQLITE_DONE) {
    element.setId(lastInsertRowID());
    ++rowsAdded;
  } else {
    // The latest row id is that of some other row: nothing may refer to it by this element.
    noteFailedWrite(TableColumns<T>::kName, sqlite3_errmsg(connection));
  }
  return element.getId();
}

template <class T>
long long FrontendDatabase::addOrAdoptRow(T& element) {
  Debug debug(kTraceLevel<T>, "FrontendDatabase::add()");
  element.setId(0);
  if (!isReadyFor<T>("FrontendDatabase::add()")) return 0;
  TableStatement<T>& statement = tables->statement<T>(StatementKind::add);
  statement.bind(*this, connection, element);
  if (statement.run(connection) == SQLITE_DONE) {
    element.setId(lastInsertRowID());
    return element.getId();
  }
  const std::string reason = sqlite3_errmsg(connection);
  // The connection's code is that of its last call, and a statement that was not run made none.
  if (statement.result() == SQLITE_CONSTRAINT &&
      sqlite3_extended_errcode(connection) == SQLITE_CONSTRAINT_UNIQUE) {
    T row = element;
    element.setId(getId(row));
    if (element.getId() != 0) {
      update(element);
      return element.getId();
    }
    // Some other index of the file's owner refused it; the look-up has replaced SQLite's reason.
    persistence::reportMessage("%s: table %s: a row was refused: %s", getPath().c_str(),
                               TableColumns<T>::kName, reason.c_str());
  } else {
    reportWrite(statement);
  }
  noteFailedWrite(TableColumns<T>::kName, reason);
  return 0;
}

template <class T>
void FrontendDatabase::update(T& element) {
  Debug debug(kTraceLevel<T>, "FrontendDatabase::update()");
  if (!isReadyFor<T>("FrontendDatabase::update()")) return;
  TableStatement<T>& statement = tables->statement<T>(StatementKind::update);
  statement.bind(*this, connection, element);
  statement.exec(connection);
  if (statement.result() != SQLITE_DONE) {
    noteFailedWrite(TableColumns<T>::kName, sqlite3_errmsg(connection));
  }
}

template <class T>
void FrontendDatabase::truncate() {
  if (!isReadyFor<T>("FrontendDatabase::truncate()")) return;
  T element;
  TableStatement<T>& statement = tables->statement<T>(StatementKind::delete_all);
  statement.bind(*this, connection, element);
  if (statement.run(connection) != SQLITE_DONE) {
    noteFailedWrite(TableColumns<T>::kName, sqlite3_errmsg(connection));
    reportWrite(statement);
  }
}

template <class T>
bool FrontendDatabase::holdsJust(std::size_t rows) {
  const std::string table = TableColumns<T>::kName, idColumn = idColumnOf<T>();
  // A column that is no alias of the row id was given no value by any insert.
  const std::string sql = "SELECT (SELECT count(*) FROM " + table + "), EXISTS (SELECT 1 FROM " +
                          table + " WHERE " + idColumn + " IS NULL)";
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(connection, sql.c_str(), -1, &statement, nullptr);
  std::string reason;
  if (sqlite3_step(statement) != SQLITE_ROW) {
    reason = sqlite3_errmsg(connection);
  } else if (const auto found = static_cast<std::size_t>(sqlite3_column_int64(statement, 0));
             found != rows) {
    reason = std::to_string(rows) + " rows were written and it holds " + std::to_string(found);
  } else if (sqlite3_column_int(statement, 1) != 0) {
    reason = idColumn + " is no INTEGER PRIMARY KEY: the ids are lost";
  }
  sqlite3_finalize(statement);
  if (reason.empty()) return true;
  noteFailedWrite(table, reason);
  persistence::reportMessage("%s: table %s: %s", getPath().c_str(), TableColumns<T>::kName,
                             reason.c_str());
  return false;
}

// --- Finding a row by its key.

template <class T>
long long FrontendDatabase::getId(T& element) {
  Debug debug(kTraceLevel<T>, "FrontendDatabase::getId()");
  if (!isReadyToRead<T>("FrontendDatabase::getId()")) return 0;
  TableStatement<T>& statement = tables->statement<T>(StatementKind::get_id);
  debug.print("calling bind");
  statement.bind(*this, connection, element);
  debug.print("calling step");
  long long id = 0;
  if (statement.step() == SQLITE_ROW) {
    debug.print("calling column");
    statement.column(*this, connection, element);
    id = element.getId();
    ++rowsFound;
  } else if (statement.result() != SQLITE_DONE) {
    reportRead(statement, SQLITE_DONE);
  }
  statement.reset(connection);
  return id;
}

long long FrontendDatabase::getId(bool& first, Type& row) {
  Debug debug(3, "FrontendDatabase::getId()");
  if (!isReadyToRead<Type>("FrontendDatabase::getId()")) return 0;
  TableStatement<Type>& statement = tables->statement<Type>(StatementKind::get_id);
  if (first) {
    first = false;
    debug.print("calling bind");
    statement.bind(*this, connection, row);
  }
  debug.print("calling step");
  if (statement.step() == SQLITE_ROW) {
    debug.print("calling column");
    statement.column(*this, connection, row);
    ++rowsFound;
    return row.getId();
  }
  if (statement.result() != SQLITE_DONE) reportRead(statement, SQLITE_DONE);
  statement.reset(connection);
  return 0;
}

template <class T>
long long FrontendDatabase::getIdOrAdd(T& element) {
  if (element.getId() != 0) return element.getId();
  if (!isReadyToRead<T>("FrontendDatabase::getIdOrAdd()")) return 0;
  if (const long long id = getId(element); id != 0) return id;
  return add(element);
}

/// What an element takes from the row with its key; true when the row has to be written again.
/// Classes without counts have nothing that a repeated occurrence could change.
template <class T>
bool FrontendDatabase::mergeWithRow(T& element, const T& row) {
  if constexpr (std::is_same_v<T, Identifier>) {
    return element.updateFromRow(row);
  } else if constexpr (requires { element.update(row); }) {
    return element.update(row);
  } else {
    element.setId(row.getId());
    return false;
  }
}

template <class T>
long long FrontendDatabase::add_or_update(T& element) {
  Debug debug(kTraceLevel<T>, "FrontendDatabase::add_or_update()");
  if (!isReadyToRead<T>("FrontendDatabase::add_or_update()")) return 0;
  T row = element;
  row.forgetRow();
  const long long id = getId(row);
  if (id == 0) return add(element);
  if (mergeWithRow(element, row)) update(element);
  return id;
}

/// Nothing keeps rows of equal keys out of this table, so the element is merged with each of them
/// by itself, and comes out as it went in.
template <>
long long FrontendDatabase::add_or_update(Type& element) {
  Debug debug(3, "FrontendDatabase::add_or_update()");
  if (!isReadyToRead<Type>("FrontendDatabase::add_or_update()")) return 0;
  Type row = element;
  row.forgetRow();
  bool first = true;
  const long long firstId = getId(first, row);
  if (firstId == 0) return add(element);
  const Type remembered = element;
  for (long long id = firstId; id != 0; id = getId(first, row)) {
    if (mergeWithRow(element, row)) update(element);
    element = remembered;
  }
  return firstId;
}

// --- Reading a row by its id.

Function* FrontendDatabase::getFunction(long long id) {
  return tables->of<Function>().idCache.find(id).value_or(nullptr);
}

/// False when there is no row, which leaves the element as it is.
template <class T>
bool FrontendDatabase::readRow(T& element) {
  TableStatement<T>& statement = tables->statement<T>(StatementKind::get_from_id);
  statement.bind(*this, connection, element);
  const bool hasRow = statement.step() == SQLITE_ROW;
  if (hasRow) {
    statement.column(*this, connection, element);
  } else if (kind != DatabaseKind::Merge || statement.result() != SQLITE_DONE) {
    // A merge reports once per table how many references are dangling.
    reportRead(statement, SQLITE_ROW);
  }
  statement.reset(connection);
  return hasRow;
}

/// The columns of an id without a row are 0, NULL or empty.
template <class T>
void FrontendDatabase::readEmptyRow(T& element) {
  auto& columns = tables->of<T>().description.columns;
  std::string sql = "SELECT NULL";
  for (std::size_t i = 1; i < columns.size(); ++i) sql += ", NULL";
  sqlite3_stmt* nulls = nullptr;
  sqlite3_prepare_v2(connection, sql.c_str(), -1, &nulls, nullptr);
  sqlite3_step(nulls);
  int index = 0;
  for (auto& [column, field] : columns) {
    if (!column.isPrimaryKey()) field->column(element, *this, nulls, index++);
  }
  sqlite3_finalize(nulls);
}

template <class T>
T* FrontendDatabase::get(long long id) {
  return getElement<T>(id, /*isFound=*/false);
}

template <class T>
T* FrontendDatabase::getFound(long long id) {
  T* element = getElement<T>(id, /*isFound=*/true);
  if (element == nullptr) noteLeftOutRow(TableColumns<T>::kName);
  return element;
}

/// An id that a search has found but that has no row, as the index of a damaged file can have one,
/// makes no element; in a reference it becomes an empty one.
template <class T>
T* FrontendDatabase::getElement(long long id, bool isFound) {
  if (id == 0) return nullptr;
  IdCache<T>& idCache = tables->of<T>().idCache;
  std::set<long long>& idsWithoutRow = tables->of<T>().idsWithoutRow;
  if (const std::optional<T*> known = idCache.find(id)) {
    const bool isLeftOut = *known == nullptr || (isFound && idsWithoutRow.count(id) != 0);
    if (isLeftOut) ++leftOutReferences;
    return isLeftOut ? nullptr : *known;
  }
  Debug debug(kTraceLevel<T>, "FrontendDatabase::get()");
  if (!isReadyToRead<T>("FrontendDatabase::get()")) return nullptr;
  T row;
  row.setId(id);
  const unsigned long leftOutBefore = leftOutReferences;
  const bool hasRow = readRow(row);
  if (!hasRow && isFound) {
    ++leftOutReferences;
    return nullptr;
  }
  if (!hasRow) idsWithoutRow.insert(id);
  if (!hasRow && kind != DatabaseKind::Merge) readEmptyRow(row);
  // An id without a row becomes an empty element. A variable cannot be without a file, and a
  // merge would write the empty element as a row of its own.
  const bool isElement = kind == DatabaseKind::Merge ? hasRow && canBeMerged(row)
                         : hasRow ? canBecomeElement(row, leftOutReferences != leftOutBefore)
                                  : !std::is_same_v<T, Variable>;
  T* element = isElement ? dataset->emplaceFromDB(row, /*accumulate=*/true) : nullptr;
  if (element != nullptr) {
    element->setId(id);
  } else {
    ++leftOutReferences;
  }
  idCache.enter(id, element);
  return element;
}

template <class T>
T* FrontendDatabase::getKnown(long long id) {
  if (id == 0) return nullptr;
  const Table<T>& table = tables->of<T>();
  T* element = table.idCache.find(id).value_or(nullptr);
  if (element != nullptr && table.idsWithoutRow.count(id) == 0) return element;
  ++leftOutReferences;
  return nullptr;
}

template <class T>
void FrontendDatabase::get(T& element) {
  Debug debug(kTraceLevel<T>, "FrontendDatabase::get()");
  if (!isReadyToRead<T>("FrontendDatabase::get()")) return;
  if (!readRow(element)) readEmptyRow(element);
}

// --- Walking a table.

template <class T>
long long FrontendDatabase::nextRow(StatementKind statementKind, bool& first, T& row) {
  TableStatement<T>& statement = tables->statement<T>(statementKind);
  if (first) {
    first = false;
    statement.bind(*this, connection, row);
  }
  if (statement.step() == SQLITE_ROW) {
    statement.column(*this, connection, row);
    // The caller takes id 0 for the end, and so never sees the rows after this one.
    if (row.getId() == 0) noteFailedRead(TableColumns<T>::kName, "a row has the id 0");
    return row.getId();
  }
  if (statement.result() != SQLITE_DONE) reportRead(statement, SQLITE_DONE);
  statement.reset(connection);
  return 0;
}

template <class T>
long long FrontendDatabase::listId(bool& first) {
  Debug debug(kTraceLevel<T>, "FrontendDatabase::listId()");
  if (!isReadyToRead<T>("FrontendDatabase::listId()")) return 0;
  T row;
  return nextRow(StatementKind::list_id, first, row);
}

template <class T>
long long FrontendDatabase::listALL(bool& first, T& row) {
  Debug debug(kTraceLevel<T>, "FrontendDatabase::listALL()");
  if (!isReadyToRead<T>("FrontendDatabase::listALL()")) return 0;
  const long long id = nextRow(StatementKind::list_all, first, row);
  if (id != 0) ++rowsListed;
  return id;
}

template <class T>
std::size_t FrontendDatabase::guessRowCount() const {
  // Each by itself is one search; together in one SELECT they would read the table. Unsigned: the
  // ids of a damaged file may lie further apart than a signed number holds.
  const auto outermostId = [this](const char* which) -> std::optional<std::uint64_t> {
    sqlite3_stmt* statement = nullptr;
    const std::string sql =
        std::string("SELECT ") + which + "(rowid) FROM " + TableColumns<T>::kName;
    sqlite3_prepare_v2(connection, sql.c_str(), -1, &statement, nullptr);
    std::optional<std::uint64_t> id;
    if (sqlite3_step(statement) == SQLITE_ROW && sqlite3_column_type(statement, 0) != SQLITE_NULL) {
      id = static_cast<std::uint64_t>(sqlite3_column_int64(statement, 0));
    }
    sqlite3_finalize(statement);
    return id;
  };
  const auto smallest = outermostId("min");
  const auto largest = outermostId("max");
  std::error_code error;
  const std::uint64_t bytes = std::filesystem::file_size(getPath(), error);
  if (error || !smallest || !largest) return 0;
  constexpr std::uint64_t kShortestRow = 8;
  return std::min(*largest - *smallest + 1, bytes / kShortestRow);
}

// --- Row ids of elements.

template <class T>
void FrontendDatabase::enterInIdCache(long long id, T* element) {
  tables->of<T>().idCache.enter(id, element);
}

template <class T>
void FrontendDatabase::reserveIdCache(std::size_t rows) {
  tables->of<T>().idCache.reserve(rows);
}

template <class T>
bool FrontendDatabase::isInIdCache(long long id) const {
  return tables->of<T>().idCache.find(id).has_value();
}

template <class T>
const IdCache<T>& FrontendDatabase::idCacheOf() const {
  return tables->of<T>().idCache;
}

void FrontendDatabase::clearIdCaches() {
  AllElements::each([this]<class T>() {
    tables->of<T>().idCache.clear();
    tables->of<T>().idsWithoutRow.clear();
  });
}

// --- Every operation for every class. The addresses make the compiler emit what the other source
// files call.

struct FrontendDatabase::Operations {
  template <class T>
  static auto of() {
    using Database = FrontendDatabase;
    return std::make_tuple(
        &Database::add<T>, &Database::addOrAdoptRow<T>, &Database::update<T>,
        &Database::add_or_update<T>, &Database::getIdOrAdd<T>,
        static_cast<long long (Database::*)(T&)>(&Database::getId<T>),
        static_cast<T* (Database::*)(long long)>(&Database::get<T>), &Database::getFound<T>,
        static_cast<void (Database::*)(T&)>(&Database::get<T>), &Database::listId<T>,
        &Database::listALL<T>, &Database::truncate<T>, &Database::enterInIdCache<T>,
        &Database::isInIdCache<T>, &Database::guessRowCount<T>, &Database::holdsJust<T>,
        &Database::idCacheOf<T>, &Database::reserveIdCache<T>, &Database::getKnown<T>,
        &Database::has<T>);
  }

  template <class... T>
  struct All {
    static auto addresses() { return std::make_tuple(of<T>()...); }
  };
  static const void* emit();
};

const void* FrontendDatabase::Operations::emit() {
  static const auto kAddresses = AllElements::Apply<All>::addresses();
  return &kAddresses;
}

}  // namespace orvalesca::databases_merger
