#include "check_rules.h"

#include <algorithm>
#include <map>
#include <sstream>

#include "canonical_text.h"

namespace fe_db_tools {
namespace {

/// The bits of Identifier.Kind, from the lowest on, tell which tables have a row of the name.
constexpr TableId kNameTables[] = {TableId::type,
                                   TableId::function,
                                   TableId::variable,
                                   TableId::macro,
                                   TableId::externalIdentifier,
                                   TableId::enumConstant,
                                   TableId::field,
                                   TableId::label};

/// A merge rewrites what the rows of these lead to, and leaves their ids as they are.
constexpr bool isMacroUse(const Table& table) {
  return table.id == TableId::macroInvocation || table.id == TableId::macroInvocationCodeOrigin ||
         table.id == TableId::macroExpansion;
}

std::string operator+(std::string left, std::string_view right) { return left.append(right); }

/// Calls read(); answers the damage that ended it. Any other failure goes on to the caller.
template <class Read>
std::optional<Remark> damageMetBy(Read&& read) {
  try {
    read();
    return std::nullopt;
  } catch (const ReadError& error) {
    const int code = error.code & 0xff;
    // A plain error is a table of another make, for instance without row ids.
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
    for (; file.step(ids); ++count_) {
      const sqlite3_int64 id = sqlite3_column_int64(ids.get(), 0);
      if (runs_.empty() || !isNext(id, runs_.back().last)) runs_.push_back({id, id, count_});
      runs_.back().last = id;
    }
  }

  std::size_t count() const { return count_; }
  /// How many rows stand before the one of this id; nothing when there is no such row.
  std::optional<std::size_t> find(sqlite3_int64 id) const {
    auto run = std::upper_bound(runs_.begin(), runs_.end(), id,
                                [](sqlite3_int64 one, const Run& r) { return one < r.first; });
    if (run == runs_.begin() || id > (--run)->last) return std::nullopt;
    return run->rowsBefore + static_cast<std::size_t>(id - run->first);
  }

 private:
  /// Ids that are no row ids may be there twice, the smallest and the largest number as well.
  static bool isNext(sqlite3_int64 id, sqlite3_int64 last) { return id > last && id - 1 == last; }

  struct Run {
    sqlite3_int64 first, last;
    std::size_t rowsBefore;
  };
  std::vector<Run> runs_;
  std::size_t count_ = 0;
};
/// Of the tables that references lead to, read when first needed; none of what cannot be read.
using IdsOfTables = std::map<TableId, std::optional<RowIds>>;

class TableCheck {
 public:
  TableCheck(const ReadOnlyFile& file, const Table& table, IdsOfTables& ids)
      : file_(file),
        table_(table),
        ids_(ids),
        rowId_(file.hasColumn(table, table.rowId) ? table.rowId : "rowid") {}

  std::vector<Remark> run();

 private:
  void add(sqlite3_int64 row, std::string reason, bool isNote = false) {
    remarks_.push_back({isNote, row, std::move(reason)});
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

  const ReadOnlyFile& file_;
  const Table& table_;
  IdsOfTables& ids_;
  const std::string rowId_;
  std::vector<Remark> remarks_;
  sqlite3_stmt* row_ = nullptr;  ///< its id in cell 0
  sqlite3_int64 id_ = 0;
  int kindCell_ = 0;
  sqlite3_int64 danglingAfterMerge_ = 0;
};

std::vector<Remark> TableCheck::run() {
  if (!file_.hasColumn(table_, rowId_)) return {};
  std::optional<Remark> damage = damageMetBy([&] { checkLayout(); });
  if (auto more = damageMetBy([&] { checkRows(); }); !damage) damage = std::move(more);
  if (auto more = damageMetBy([&] { checkKeys(); }); !damage) damage = std::move(more);
  if (auto more = damageMetBy([&] { checkNameBits(); }); !damage) damage = std::move(more);
  if (damage) remarks_.push_back(*damage);
  if (danglingAfterMerge_ > 0) {
    const bool isOne = danglingAfterMerge_ == 1;
    remarks_.push_back({/*isNote=*/true, std::nullopt,
                        std::to_string(danglingAfterMerge_) +
                            (isOne ? " macro-use id is stale since a merge renumbered its target"
                                   : " macro-use ids are stale since a merge renumbered their "
                                     "targets") +
                            " (expected)"});
  }
  std::stable_sort(remarks_.begin(), remarks_.end(),
                   [](const Remark& a, const Remark& b) { return a.row < b.row; });
  return std::move(remarks_);
}

const RowIds* TableCheck::idsOf(TableId id) {
  const Table& table = tableOf(id);
  const auto [at, isNew] = ids_.try_emplace(id);
  std::optional<RowIds>& ids = at->second;
  if (isNew && file_.hasColumn(table, table.rowId)) {
    damageMetBy([&] { ids.emplace(file_, table); });  // told when that table is checked
  }
  return ids ? &*ids : nullptr;
}

void TableCheck::checkLayout() {
  if (!file_.hasColumn(table_, table_.rowId)) return;
  if (const std::string reason = file_.reasonNotToWrite(table_); !reason.empty()) {
    remarks_.push_back({/*isNote=*/false, std::nullopt, reason});
  }
}

/// Without indexes: what they hold may differ from the table in a damaged file.
void TableCheck::checkRows() {
  std::string sql = "SELECT " + rowId_;
  std::vector<const Column*> columns;
  for (const Column& column : table_.columns) {
    if (!file_.hasColumn(table_, column.name)) continue;
    sql = sql + ", " + column.name;
    columns.push_back(&column);
    const auto isKind = [&](const Column& other) { return other.kindColumn == column.name; };
    if (std::ranges::any_of(table_.columns, isKind)) kindCell_ = static_cast<int>(columns.size());
  }
  const Statement statement = file_.prepare(sql + " FROM " + table_.name + " NOT INDEXED");
  row_ = statement.get();
  while (file_.step(statement)) {
    id_ = sqlite3_column_int64(row_, 0);
    if (id_ == 0) add(id_, R"(row id 0 is reserved (it means "no row"))");
    int cell = 0;
    for (const Column* column : columns) checkCell(*column, ++cell);
  }
}

void TableCheck::checkCell(const Column& column, int cell) {
  const int type = sqlite3_column_type(row_, cell);
  const int expected = column.kind == ColumnKind::text ? SQLITE_TEXT : SQLITE_INTEGER;
  const bool mayBeNull =
      column.kind == ColumnKind::reference || column.presence == Presence::optional;
  if (type != expected && !(type == SQLITE_NULL && mayBeNull)) {
    static_assert(SQLITE_INTEGER == 1 && SQLITE_NULL == 5);
    constexpr const char* kTypes[] = {"", "an integer", "a real number", "text", "a blob", "NULL"};
    return add(id_, std::string(column.name) + " is " + kTypes[type] + ", not " + kTypes[expected]);
  }
  if (column.kind == ColumnKind::entity) return checkEntity(column, cell);
  if (column.kind == ColumnKind::reference) {
    checkReference(column, cell, column.refersTo, column.presence == Presence::required);
  }
}

void TableCheck::checkEntity(const Column& column, int cell) {
  if (kindCell_ == 0 || sqlite3_column_type(row_, kindCell_) != SQLITE_INTEGER) return;
  const sqlite3_int64 kind = sqlite3_column_int64(row_, kindCell_);
  const auto entity = std::ranges::find(column.entities, kind, &EntityTable::kind);
  if (entity != column.entities.end()) {
    checkReference(column, cell, entity->table, /*required=*/true);
  } else if (column.presence == Presence::required) {
    add(id_, std::string(column.kindColumn) + " " + std::to_string(kind) + " stands for no table");
  } else if (kind != -1) {
    add(id_, "Kind " + std::to_string(kind) + " is not -1, 0 or 1",
        /*isNote=*/true);
  }
}

void TableCheck::checkReference(const Column& column, int cell, TableId target, bool required) {
  const std::string_view table = tableOf(target).name;
  const sqlite3_int64 id = sqlite3_column_int64(row_, cell);
  if (id == 0) {
    if (!required) return;
    const bool isNull = sqlite3_column_type(row_, cell) == SQLITE_NULL;
    return add(id_, std::string(column.name) + (isNull ? " is NULL" : " is 0") +
                        " but must reference a row of " + table);
  }
  const RowIds* ids = idsOf(target);
  if (ids == nullptr || ids->find(id)) return;
  if (isMacroUse(table_) && file_.isCompilation()) return static_cast<void>(++danglingAfterMerge_);
  add(id_, std::string(column.name) + " references " + std::string(table) + " row " +
               std::to_string(id) + ", which does not exist");
}

void TableCheck::checkKeys() {
  // Uses of one macro may begin at the same place, ID(ID(x)) or several that expand to nothing, and
  // a preprocessing file has a row for each.
  if (table_.id == TableId::macroInvocation && !file_.isCompilation()) return;
  std::string names, columns, condition;
  for (std::size_t part = 0; part < table_.key.size(); ++part) {
    if (!file_.hasColumn(table_, table_.key[part])) return;
    const std::string comma = columns.empty() ? "" : ", ", value = keyExpression(table_, part);
    names += comma + std::string(table_.key[part]);
    columns += comma + value;
    condition += (part == 0 ? " WHERE (" : " AND (") + value + ") NOT NULL";
  }
  if (columns.empty()) return;
  const std::string rows = std::string(table_.name) + " NOT INDEXED" + condition;
  // Which rows they are costs three times as much as that there are none.
  if (!file_.step(file_.prepare("SELECT 1 FROM " + rows + " GROUP BY " + columns +
                                " HAVING count(*)>1 LIMIT 1"))) {
    return;
  }
  const Statement equal =
      file_.prepare("SELECT id, firstId FROM (SELECT " + rowId_ + " AS id, first_value(" + rowId_ +
                    ") OVER (PARTITION BY " + columns + " ORDER BY " + rowId_ +
                    ") AS firstId FROM " + rows + ") WHERE id<>firstId");
  while (file_.step(equal)) {
    const std::string first = std::to_string(sqlite3_column_int64(equal.get(), 1));
    add(sqlite3_column_int64(equal.get(), 0), "the same " + names + " as row " + first);
  }
}

void TableCheck::checkNameBits() {
  if (table_.id != TableId::identifier || !file_.hasColumn(table_, "Kind")) return;
  const RowIds* names = idsOf(TableId::identifier);
  if (names == nullptr) return;
  std::vector<std::uint8_t> borne(names->count());
  int judged = 0, bit = 1;
  for (const TableId bearer : kNameTables) {
    bool isJudged = false;
    damageMetBy([&] {  // told when that table is checked
      isJudged = eachName(tableOf(bearer), [&](sqlite3_int64 id) {
        if (const auto name = names->find(id)) borne[*name] |= bit;
      });
    });
    if (isJudged) judged |= bit;
    bit *= 2;
  }
  const Statement stored = file_.prepare(
      "SELECT " + rowId_ + ", Kind FROM Identifier NOT INDEXED WHERE typeof(Kind)='integer'");
  while (file_.step(stored)) {
    const sqlite3_int64 id = sqlite3_column_int64(stored.get(), 0);
    const int kind = sqlite3_column_int(stored.get(), 1);
    if (const auto name = names->find(id)) addNameBits(id, kind, (kind ^ borne[*name]) & judged);
  }
}

/// Calls visit(id) for each reference to a name. False when the file lacks the table.
template <class Visit>
bool TableCheck::eachName(const Table& table, Visit&& visit) const {
  bool isThere = false;
  for (const Column& column : table.columns) {
    if (column.refersTo != TableId::identifier || !file_.hasColumn(table, column.name)) continue;
    isThere = true;
    const Statement ids =
        file_.prepare(std::string("SELECT ") + column.name + " FROM " + table.name);
    while (file_.step(ids)) visit(sqlite3_column_int64(ids.get(), 0));
  }
  return isThere;
}

void TableCheck::addNameBits(sqlite3_int64 id, int stored, int wrong) {
  int bit = 1;
  for (const TableId bearer : kNameTables) {
    const char* said =
        (stored & bit) != 0 ? " is set, but no row of " : " is not set, but a row of ";
    if ((wrong & bit) != 0) {
      add(id,
          "bit " + std::to_string(bit) + " of Kind" + said + tableOf(bearer).name + " has the name",
          /*isNote=*/true);
    }
    bit *= 2;
  }
}

/// What the integrity check says in one row may be several lines, of any bytes.
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
  const auto damage = damageMetBy([&] {
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
  for (const std::string& gap : file.findGaps()) addLines(remarks, gap);
  return remarks;
}

}  // namespace

void checkFile(const ReadOnlyFile& file, const Tell& tell) {
  tell(nullptr, checkWhole(file));
  IdsOfTables ids;
  for (const Table& table : kTables) {
    if (file.has(table)) tell(&table, TableCheck(file, table, ids).run());
  }
}

}  // namespace fe_db_tools
