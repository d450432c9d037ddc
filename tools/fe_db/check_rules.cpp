#include "check_rules.h"

#include <algorithm>
#include <map>
#include <sstream>

#include "canonical_text.h"

namespace fe_db_tools {
namespace {

/// The bits of Identifier.Kind, from the lowest on, say which tables have a row with the name.
constexpr TableId kNameTables[] = {TableId::type,
                                   TableId::function,
                                   TableId::variable,
                                   TableId::macro,
                                   TableId::externalIdentifier,
                                   TableId::enumConstant,
                                   TableId::field,
                                   TableId::label};

/// A merge rewrites the rows that these tables reference, and keeps the old ids in them.
constexpr bool isMacroUse(const Table& table) {
  return table.id == TableId::macroInvocation || table.id == TableId::macroInvocationCodeOrigin ||
         table.id == TableId::macroExpansion;
}

std::string operator+(std::string left, std::string_view right) { return left.append(right); }

/// Calls read(); returns the damage that ended it. Any other failure is thrown to the caller.
template <class Read>
std::optional<Remark> damageFoundBy(Read&& read) {
  try {
    read();
    return std::nullopt;
  } catch (const ReadError& error) {
    const int code = error.code & 0xff;
    // A plain error is a table with another schema, for instance without row ids.
    if (code != SQLITE_CORRUPT && code != SQLITE_ERROR && code != SQLITE_TOOBIG) throw;
    return Remark{false, std::nullopt, "the check is incomplete: " + printable(error.reason)};
  }
}

/// The row ids of a table, in memory as runs without gaps: few for what was written in one go.
/// Look-ups in the file would take most of the time.
class RowIds {
 public:
  RowIds(const ReadOnlyFile& file, const Table& table) {
    const Statement ids = file.prepare(std::string("SELECT ") + table.rowId + " FROM " +
                                       table.name + " NOT INDEXED ORDER BY 1");
    for (; file.step(ids); ++count) {
      const sqlite3_int64 id = sqlite3_column_int64(ids.get(), 0);
      if (runs.empty() || !isNext(id, runs.back().last)) runs.push_back({id, id, count});
      runs.back().last = id;
    }
  }

  std::size_t getCount() const { return count; }
  /// How many rows come before the one of this id; nothing if there is no such row.
  std::optional<std::size_t> find(sqlite3_int64 id) const {
    auto run = std::upper_bound(runs.begin(), runs.end(), id,
                                [](sqlite3_int64 one, const Run& r) { return one < r.first; });
    if (run == runs.begin() || id > (--run)->last) return std::nullopt;
    return run->rowsBefore + static_cast<std::size_t>(id - run->first);
  }

 private:
  /// Ids that are no row ids may be there twice, the smallest and the largest number as well.
  static bool isNext(sqlite3_int64 id, sqlite3_int64 last) { return id > last && id - 1 == last; }

  struct Run {
    sqlite3_int64 first, last;
    std::size_t rowsBefore;
  };
  std::vector<Run> runs;
  std::size_t count = 0;
};
/// Of referenced tables, read when first needed; nothing for those that cannot be read.
using IdsOfTables = std::map<TableId, std::optional<RowIds>>;

class TableCheck {
 public:
  TableCheck(const ReadOnlyFile& file, const Table& table, IdsOfTables& ids)
      : file(file),
        checked(table),
        idsByTable(ids),
        rowIdColumn(file.hasColumn(table, table.rowId) ? table.rowId : "rowid") {}

  std::vector<Remark> run();

 private:
  void add(sqlite3_int64 row, std::string reason, bool isNote = false) {
    remarks.push_back({isNote, row, std::move(reason)});
  }
  const RowIds* idsOf(TableId id);
  void checkLayout();
  void checkRows();
  void checkCell(const Column& column, int cell);
  void checkEntity(const Column& column, int cell);
  void checkReference(const Column& column, int cell, TableId target, bool required);
  void checkKeys();
  void checkNameBits();
  template <class Visit>
  bool eachName(const Table& table, Visit&& visit) const;
  void addNameBits(sqlite3_int64 id, int stored, int wrong);

  const ReadOnlyFile& file;
  const Table& checked;
  IdsOfTables& idsByTable;
  const std::string rowIdColumn;
  std::vector<Remark> remarks;
  sqlite3_stmt* cells = nullptr;  ///< of the current row, its id first
  sqlite3_int64 currentId = 0;
  int kindCell = 0;
  sqlite3_int64 danglingAfterMerge = 0;
};

std::vector<Remark> TableCheck::run() {
  if (!file.hasColumn(checked, rowIdColumn)) return {};
  std::optional<Remark> damage = damageFoundBy([&] { checkLayout(); });
  if (auto more = damageFoundBy([&] { checkRows(); }); !damage) damage = std::move(more);
  if (auto more = damageFoundBy([&] { checkKeys(); }); !damage) damage = std::move(more);
  if (auto more = damageFoundBy([&] { checkNameBits(); }); !damage) damage = std::move(more);
  if (damage) remarks.push_back(*damage);
  if (danglingAfterMerge > 0) {
    const bool isOne = danglingAfterMerge == 1;
    remarks.push_back({/*isNote=*/true, std::nullopt,
                       std::to_string(danglingAfterMerge) +
                           (isOne ? " macro-use id is stale since a merge renumbered its target"
                                  : " macro-use ids are stale since a merge renumbered their "
                                    "targets") +
                           " (expected)"});
  }
  std::stable_sort(remarks.begin(), remarks.end(),
                   [](const Remark& a, const Remark& b) { return a.row < b.row; });
  return std::move(remarks);
}

const RowIds* TableCheck::idsOf(TableId id) {
  const Table& table = tableOf(id);
  const auto [at, isNew] = idsByTable.try_emplace(id);
  std::optional<RowIds>& ids = at->second;
  if (isNew && file.hasColumn(table, table.rowId)) {
    damageFoundBy([&] { ids.emplace(file, table); });  // reported when that table is checked
  }
  return ids ? &*ids : nullptr;
}

void TableCheck::checkLayout() {
  if (!file.hasColumn(checked, checked.rowId)) return;
  if (const std::string reason = file.reasonNotToWrite(checked); !reason.empty()) {
    remarks.push_back({/*isNote=*/false, std::nullopt, reason});
  }
}

/// Without indexes: what they hold may differ from the table in a damaged file.
void TableCheck::checkRows() {
  std::string sql = "SELECT " + rowIdColumn;
  std::vector<const Column*> columns;
  for (const Column& column : checked.columns) {
    if (!file.hasColumn(checked, column.name)) continue;
    sql = sql + ", " + column.name;
    columns.push_back(&column);
    const auto isKind = [&](const Column& other) { return other.kindColumn == column.name; };
    if (std::ranges::any_of(checked.columns, isKind)) kindCell = static_cast<int>(columns.size());
  }
  const Statement statement = file.prepare(sql + " FROM " + checked.name + " NOT INDEXED");
  cells = statement.get();
  while (file.step(statement)) {
    currentId = sqlite3_column_int64(cells, 0);
    if (currentId == 0) add(currentId, R"(row id 0 is reserved (it means "no row"))");
    int cell = 0;
    for (const Column* column : columns) checkCell(*column, ++cell);
  }
}

void TableCheck::checkCell(const Column& column, int cell) {
  const int type = sqlite3_column_type(cells, cell);
  const int expected = column.kind == ColumnKind::text ? SQLITE_TEXT : SQLITE_INTEGER;
  const bool mayBeNull =
      column.kind == ColumnKind::reference || column.presence == Presence::optional;
  if (type != expected && !(type == SQLITE_NULL && mayBeNull)) {
    static_assert(SQLITE_INTEGER == 1 && SQLITE_NULL == 5);
    constexpr const char* kTypes[] = {"", "an integer", "a real number", "text", "a blob", "NULL"};
    return add(currentId,
               std::string(column.name) + " is " + kTypes[type] + ", not " + kTypes[expected]);
  }
  if (column.kind == ColumnKind::entity) return checkEntity(column, cell);
  if (column.kind == ColumnKind::reference) {
    checkReference(column, cell, column.refersTo, column.presence == Presence::required);
  }
}

void TableCheck::checkEntity(const Column& column, int cell) {
  if (kindCell == 0 || sqlite3_column_type(cells, kindCell) != SQLITE_INTEGER) return;
  const sqlite3_int64 kind = sqlite3_column_int64(cells, kindCell);
  const auto entity = std::ranges::find(column.entities, kind, &EntityTable::kind);
  if (entity != column.entities.end()) {
    checkReference(column, cell, entity->table, /*required=*/true);
  } else if (column.presence == Presence::required) {
    add(currentId, std::string(column.kindColumn) + " " + std::to_string(kind) + " is of no table");
  } else if (kind != -1) {
    add(currentId, "Kind " + std::to_string(kind) + " is not -1, 0 or 1",
        /*isNote=*/true);
  }
}

void TableCheck::checkReference(const Column& column, int cell, TableId target, bool required) {
  const std::string_view table = tableOf(target).name;
  const sqlite3_int64 id = sqlite3_column_int64(cells, cell);
  if (id == 0) {
    if (!required) return;
    const bool isNull = sqlite3_column_type(cells, cell) == SQLITE_NULL;
    return add(currentId, std::string(column.name) + (isNull ? " is NULL" : " is 0") +
                              " but must reference a row of " + table);
  }
  const RowIds* ids = idsOf(target);
  if (ids == nullptr || ids->find(id)) return;
  if (isMacroUse(checked) && file.isCompilationDatabase())
    return static_cast<void>(++danglingAfterMerge);
  add(currentId, std::string(column.name) + " references " + std::string(table) + " row " +
                     std::to_string(id) + ", which does not exist");
}

void TableCheck::checkKeys() {
  // Uses of one macro may begin at the same place, ID(ID(x)) or several that expand to nothing, and
  // a preprocessing file has a row for each.
  if (checked.id == TableId::macroInvocation && !file.isCompilationDatabase()) return;
  std::string names, columns, condition;
  for (std::size_t part = 0; part < checked.key.size(); ++part) {
    if (!file.hasColumn(checked, checked.key[part])) return;
    const std::string comma = columns.empty() ? "" : ", ", value = keyExpression(checked, part);
    names += comma + std::string(checked.key[part]);
    columns += comma + value;
    condition += (part == 0 ? " WHERE (" : " AND (") + value + ") NOT NULL";
  }
  if (columns.empty()) return;
  const std::string rows = std::string(checked.name) + " NOT INDEXED" + condition;
  // Finding the rows costs three times as much as finding that there are none.
  if (!file.step(file.prepare("SELECT 1 FROM " + rows + " GROUP BY " + columns +
                              " HAVING count(*)>1 LIMIT 1"))) {
    return;
  }
  const Statement equal =
      file.prepare("SELECT id, firstId FROM (SELECT " + rowIdColumn + " AS id, first_value(" +
                   rowIdColumn + ") OVER (PARTITION BY " + columns + " ORDER BY " + rowIdColumn +
                   ") AS firstId FROM " + rows + ") WHERE id<>firstId");
  while (file.step(equal)) {
    const std::string first = std::to_string(sqlite3_column_int64(equal.get(), 1));
    add(sqlite3_column_int64(equal.get(), 0), "the same " + names + " as row " + first);
  }
}

void TableCheck::checkNameBits() {
  if (checked.id != TableId::identifier || !file.hasColumn(checked, "Kind")) return;
  const RowIds* names = idsOf(TableId::identifier);
  if (names == nullptr) return;
  std::vector<std::uint8_t> expected(names->getCount());
  int checked = 0, bit = 1;
  for (const TableId owner : kNameTables) {
    bool isChecked = false;
    damageFoundBy([&] {  // reported when that table is checked
      isChecked = eachName(tableOf(owner), [&](sqlite3_int64 id) {
        if (const auto name = names->find(id)) expected[*name] |= bit;
      });
    });
    if (isChecked) checked |= bit;
    bit *= 2;
  }
  const Statement stored = file.prepare(
      "SELECT " + rowIdColumn + ", Kind FROM Identifier NOT INDEXED WHERE typeof(Kind)='integer'");
  while (file.step(stored)) {
    const sqlite3_int64 id = sqlite3_column_int64(stored.get(), 0);
    const int kind = sqlite3_column_int(stored.get(), 1);
    if (const auto name = names->find(id))
      addNameBits(id, kind, (kind ^ expected[*name]) & checked);
  }
}

/// Calls visit(id) for each reference to a name. False if the file lacks the table.
template <class Visit>
bool TableCheck::eachName(const Table& table, Visit&& visit) const {
  bool isThere = false;
  for (const Column& column : table.columns) {
    if (column.refersTo != TableId::identifier || !file.hasColumn(table, column.name)) continue;
    isThere = true;
    const Statement ids =
        file.prepare(std::string("SELECT ") + column.name + " FROM " + table.name);
    while (file.step(ids)) visit(sqlite3_column_int64(ids.get(), 0));
  }
  return isThere;
}

void TableCheck::addNameBits(sqlite3_int64 id, int stored, int wrong) {
  int bit = 1;
  for (const TableId owner : kNameTables) {
    const char* found =
        (stored & bit) != 0 ? " is set, but no row of " : " is not set, but a row of ";
    if ((wrong & bit) != 0) {
      add(id,
          "bit " + std::to_string(bit) + " of Kind" + found + tableOf(owner).name + " has the name",
          /*isNote=*/true);
    }
    bit *= 2;
  }
}

/// One row of the integrity check may be several lines, of any bytes.
void addLines(std::vector<Remark>& remarks, const std::string& text) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line == "ok" || line.rfind("*** in database", 0) == 0) continue;
    remarks.push_back({/*isNote=*/false, std::nullopt, ""});
    appendEscaped(remarks.back().reason, line, Colons::plain);
  }
}

std::vector<Remark> checkWhole(const ReadOnlyFile& file) {
  std::vector<Remark> remarks;
  const auto damage = damageFoundBy([&] {
    const Statement integrity = file.prepare("PRAGMA integrity_check");
    while (file.step(integrity)) {
      const auto* text = sqlite3_column_text(integrity.get(), 0);
      addLines(remarks, text != nullptr ? reinterpret_cast<const char*>(text) : "");
    }
  });
  if (damage) remarks.push_back(*damage);
  if (const sqlite3_int64 size = file.number("PRAGMA page_size"); size != 32768) {
    addLines(remarks, "the page size is " + std::to_string(size) + " bytes, not 32768");
  }
  for (const std::string& missing : file.findMissingSchema()) addLines(remarks, missing);
  return remarks;
}

}  // namespace

void checkFile(const ReadOnlyFile& file, const Reporter& report) {
  report(nullptr, checkWhole(file));
  IdsOfTables ids;
  for (const Table& table : kTables) {
    if (file.has(table)) report(&table, TableCheck(file, table, ids).run());
  }
}

}  // namespace fe_db_tools
