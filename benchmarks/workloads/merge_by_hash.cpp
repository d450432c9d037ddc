// The ideal. A fact is a row of a flat array; its id in the result is its place there. Each array
// has one table of slots, by which a row is found again by its key, which is in the terms of the
// result. A row of a source is read whole, its references are replaced by those of the result, and
// it is looked for: one array access for each reference, one search for the row.
//
// Not handled: a source that has two rows of one key. They would count twice, where a merge counts
// them once. Files of one unit have none.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "alternatives.h"
#include "raw_sqlite.h"

namespace fe_db_benchmarks {
namespace {

/// The texts of the result, in large pieces.
class Texts {
 public:
  void keep(std::string_view& text) {
    if (text.size() > left_) {
      left_ = std::max(std::size_t{1} << 20, text.size());
      next_ = pieces_.emplace_back(std::make_unique_for_overwrite<char[]>(left_)).get();
    }
    std::copy(text.begin(), text.end(), next_);
    text = {next_, text.size()};
    next_ += text.size();
    left_ -= text.size();
  }

 private:
  std::vector<std::unique_ptr<char[]>> pieces_;
  char* next_ = nullptr;
  std::size_t left_ = 0;
};

// --- Rows. Each says what is selected and inserted and where that goes, what a repeat adds
// to the first, and which texts have to outlive the source. Numbers keep their 32 bits.
// They list their columns themselves on purpose: a comparison shares nothing with the library.

struct Stored {
  const char* table;
  const char* id;  ///< where other tables refer to it
  const char* columns;
};

/// The id of a row; 0 for none, which is stored as NULL.
template <class Row>
struct Ref {
  using Referred = Row;
  std::uint32_t id;

  bool operator==(const Ref&) const = default;
};

struct File {
  static constexpr Stored kStored{"File", "FileId", "Path, Kind, Lang, Huge"};
  std::string_view key;
  std::uint32_t kind, language, huge;
  auto columns() { return std::tie(key, kind, language, huge); }
  void keepTexts(Texts& texts) { texts.keep(key); }
};

struct Name {
  static constexpr Stored kStored{"Identifier", "IdentifierId", "Name, Count, Kind"};
  std::string_view key;
  std::uint32_t count, kind;
  auto columns() { return std::tie(key, count, kind); }
  void keepTexts(Texts& texts) { texts.keep(key); }
  void add(const Name& other) {
    count += other.count;
    kind |= other.kind;
  }
};

/// Of each row that has no text for a key. Parts that it does not use are 0.
template <class Owner>
struct Key {
  Ref<Owner> owner;
  Ref<File> file;
  std::uint32_t line, column;

  bool operator==(const Key&) const = default;
};

struct Function {
  static constexpr Stored kStored{"Function", "FunctionId",
                                  "IdentifierId, SourceNameId, DeclFileId, DeclLineNum, "
                                  "DeclColNum, isDefined, isSpecial, Effect, Linkage, RefCount"};
  Key<Name> key;
  Ref<Name> sourceName;
  std::uint32_t effect, linkage, refCount;
  bool isDefined, isSpecial;
  auto columns() {
    return std::tie(key.owner, sourceName, key.file, key.line, key.column, isDefined, isSpecial,
                    effect, linkage, refCount);
  }
};

struct CallPoint {
  static constexpr Stored kStored{"CallPoint", nullptr,
                                  "FileId, LineNum, ColNum, IsValueUsed, CallerId, CalleeId"};
  Key<Function> key;
  Ref<Function> callee;
  bool isValueUsed;
  auto columns() {
    return std::tie(key.file, key.line, key.column, isValueUsed, key.owner, callee);
  }
};

struct EnumConstant {
  static constexpr Stored kStored{"EnumConstant", nullptr,
                                  "IdentifierId, DeclFileId, DeclLineNum, DeclColNum"};
  static constexpr std::uint32_t kNameKind = 32;
  Key<Name> key;
  auto columns() { return std::tie(key.owner, key.file, key.line, key.column); }
};

struct Type {
  static constexpr Stored kStored{"Type", "TypeId",
                                  "IdentifierId, Unnamed, Local, Incomplete, DeclFileId, "
                                  "DeclLineNum, DeclColNum, Kind, RefCount, RefTagCount"};
  Key<Name> key;
  std::uint32_t kind, refCount, refTagCount;
  bool unnamed, local, incomplete;
  auto columns() {
    return std::tie(key.owner, unnamed, local, incomplete, key.file, key.line, key.column, kind,
                    refCount, refTagCount);
  }
  void add(const Type& other) {
    refCount += other.refCount;
    refTagCount += other.refTagCount;
    unnamed |= other.unnamed;
    local |= other.local;
    incomplete |= other.incomplete;
  }
};

struct Field {
  static constexpr Stored kStored{"Field", nullptr,
                                  "IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount"};
  static constexpr std::uint32_t kNameKind = 64;
  Key<Name> key;
  std::uint32_t refCount;
  auto columns() { return std::tie(key.owner, key.file, key.line, key.column, refCount); }
  void add(const Field& other) { refCount += other.refCount; }
};

struct Label {
  static constexpr Stored kStored{"Label", nullptr,
                                  "IdentifierId, DeclFileId, DeclLineNum, DeclColNum"};
  static constexpr std::uint32_t kNameKind = 128;
  Key<Name> key;
  auto columns() { return std::tie(key.owner, key.file, key.line, key.column); }
};

using MacroValue = std::optional<std::int64_t>;

struct Macro {
  static constexpr Stored kStored{"Macro", nullptr,
                                  "IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount, "
                                  "Value, ValueIsSigned, IsObjectLike, IsVariadic, "
                                  "IsCommandLineDefinition, IsPredefined, Text"};
  Key<Name> key;
  std::uint32_t refCount;
  bool isSigned, isObjectLike, isVariadic, isCommandLineDefinition, isPredefined;
  MacroValue value;
  std::string_view text;
  auto columns() {
    return std::tie(key.owner, key.file, key.line, key.column, refCount, value, isSigned,
                    isObjectLike, isVariadic, isCommandLineDefinition, isPredefined, text);
  }
  void keepTexts(Texts& texts) { texts.keep(text); }
  void add(const Macro& other) {
    refCount += other.refCount;
    if (value) return;
    value = other.value;
    isSigned = other.isSigned;
  }
};

struct TypeReference {
  static constexpr Stored kStored{"TypeReference", nullptr, "DeclaredType, ReferencedType"};
  Key<Type> key;
  Ref<Type> referenced;
  auto columns() { return std::tie(key.owner, referenced); }
};

struct Variable {
  static constexpr Stored kStored{"Variable", "VariableId",
                                  "IdentifierId, DeclFileId, DeclLineNum, DeclColNum, TypeId, "
                                  "isDefined, Linkage, RefCount"};
  Key<Name> key;
  Ref<Type> type;
  std::uint32_t linkage, refCount;
  bool isDefined;
  auto columns() {
    return std::tie(key.owner, key.file, key.line, key.column, type, isDefined, linkage, refCount);
  }
  void add(const Variable& other) { refCount += other.refCount; }
};

/// Its kind stands where others have their line; its entity, a number even for none, where they
/// have their column.
struct ExternalName {
  static constexpr Stored kStored{"ExternalIdentifier", nullptr, "IdentifierId, Kind, EntityId"};
  static constexpr std::uint32_t kNameKind = 16;
  Key<Name> key;
  auto columns() { return std::tie(key.owner, key.line, key.column); }
};

// --- Searching.

constexpr std::uint64_t mix(std::uint64_t bits) {
  bits *= 0x9E3779B97F4A7C15;  // the golden ratio: odd, and without a pattern
  return bits ^ bits >> 32;
}

template <class Owner>
std::uint32_t hashOf(const Key<Owner>& key) {
  const std::uint64_t first = std::uint64_t{key.owner.id} << 32 | key.file.id;
  const std::uint64_t second = std::uint64_t{key.line} << 32 | key.column;
  return static_cast<std::uint32_t>(mix(mix(first) ^ second));
}

std::uint32_t hashOf(std::string_view text) {
  std::uint64_t hash = text.size();
  for (; !text.empty(); text.remove_prefix(std::min(text.size(), sizeof hash))) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data(), std::min(text.size(), sizeof word));
    hash = mix(hash ^ word);
  }
  return static_cast<std::uint32_t>(hash);
}

template <class Row>
class Table {
 public:
  /// The row with the key of `row`, and whether it was put there as a copy now.
  std::pair<Ref<Row>, bool> see(const Row& row) {
    if (2 * rows_.size() >= slots_.size()) grow();
    const std::uint32_t hash = hashOf(row.key);
    std::size_t at = hash & (slots_.size() - 1);
    for (; slots_[at].row.id != 0; at = (at + 1) & (slots_.size() - 1)) {
      const Slot& slot = slots_[at];
      if (slot.hash == hash && (*this)[slot.row].key == row.key) return {slot.row, false};
    }
    rows_.push_back(row);
    slots_[at] = {hash, {static_cast<std::uint32_t>(rows_.size())}};
    return {slots_[at].row, true};
  }

  Row& operator[](Ref<Row> row) { return rows_[row.id - 1]; }
  std::vector<Row>& rows() { return rows_; }

  /// What the rows of the source that is being folded became. Ids of a file are dense.
  void forgetSource() { bySource_.clear(); }
  void remember(std::uint32_t sourceId, Ref<Row> row) {
    if (sourceId >= bySource_.size()) bySource_.resize(sourceId + 1);
    bySource_[sourceId] = row;
  }
  Ref<Row> translate(std::uint32_t sourceId) const {
    return sourceId < bySource_.size() ? bySource_[sourceId] : Ref<Row>{0};
  }

 private:
  /// With the hash, so that a search seldom reads the row of another key, and growth reads none.
  struct Slot {
    std::uint32_t hash;
    Ref<Row> row;
  };

  void grow() {
    std::vector<Slot> old(std::max<std::size_t>(1024, 2 * slots_.size()));
    old.swap(slots_);
    for (const Slot& slot : old) {
      if (slot.row.id == 0) continue;
      std::size_t at = slot.hash & (slots_.size() - 1);
      while (slots_[at].row.id != 0) at = (at + 1) & (slots_.size() - 1);
      slots_[at] = slot;
    }
  }

  std::vector<Row> rows_;
  std::vector<Slot> slots_;
  std::vector<Ref<Row>> bySource_;
};

/// Each after those that it references.
using Tables = std::tuple<Table<File>, Table<Name>, Table<Function>, Table<CallPoint>,
                          Table<EnumConstant>, Table<Type>, Table<Field>, Table<Label>,
                          Table<Macro>, Table<TypeReference>, Table<Variable>, Table<ExternalName>>;

// --- Folding.

template <class Value>
void take(const Statement& row, int at, const Tables& tables, Value& value) {
  if constexpr (std::is_same_v<Value, std::string_view>) {
    value = row.text(at);
  } else if constexpr (std::is_integral_v<Value>) {
    value = static_cast<Value>(row.number(at));
  } else if constexpr (std::is_same_v<Value, MacroValue>) {
    value = row.isNull(at) ? std::nullopt : MacroValue(row.number(at));
  } else {
    using Referred = Table<typename Value::Referred>;
    value = std::get<Referred>(tables).translate(static_cast<std::uint32_t>(row.number(at)));
  }
}

/// What does not follow from a column alone.
template <class Row>
void adjust(Row&, const Tables&) {}
void adjust(Function& function, const Tables&) { function.refCount = 0; }  // not merged
void adjust(ExternalName& name, const Tables& tables) {
  auto& [owner, file, kind, entity] = name.key;
  if (kind == 0) entity = std::get<Table<Variable>>(tables).translate(entity).id;
  if (kind == 1) entity = std::get<Table<Function>>(tables).translate(entity).id;
}

template <class Row>
void foldTable(Connection& source, Table<Row>& table, Tables& tables, Texts& texts) {
  constexpr bool isReferred = Row::kStored.id != nullptr;
  const std::string id = isReferred ? Row::kStored.id + std::string(", ") : "";
  Statement select(source, "SELECT " + id + Row::kStored.columns + " FROM " + Row::kStored.table);
  table.forgetSource();
  Row row{};
  while (select.step()) {
    int at = isReferred ? 1 : 0;
    std::apply([&](auto&... values) { (take(select, at++, tables, values), ...); }, row.columns());
    adjust(row, tables);
    const auto [known, isFirst] = table.see(row);
    if constexpr (isReferred) {
      table.remember(static_cast<std::uint32_t>(select.number(0)), known);
    }
    if constexpr (requires { row.keepTexts(texts); }) {
      if (isFirst) table[known].keepTexts(texts);
    }
    if constexpr (requires { row.add(row); }) {
      if (!isFirst) table[known].add(row);
    }
    if constexpr (requires { Row::kNameKind; }) {
      Name& name = std::get<Table<Name>>(tables)[row.key.owner];
      name.kind |= Row::kNameKind;
      if (!std::is_same_v<Row, ExternalName>) ++name.count;  // known or not
    }
  }
}

// --- Writing.

template <class Value>
void give(Statement& insert, int at, const Value& value) {
  if constexpr (std::is_same_v<Value, std::string_view>) {
    insert.bind(at, value);
  } else if constexpr (std::is_integral_v<Value>) {
    // 2^31 and more are stored as negative numbers.
    insert.bind(at, static_cast<long long>(static_cast<std::int32_t>(value)));
  } else if constexpr (std::is_same_v<Value, MacroValue>) {
    value ? insert.bind(at, static_cast<long long>(*value)) : insert.bindNull(at);
  } else {
    value.id != 0 ? insert.bind(at, static_cast<long long>(value.id)) : insert.bindNull(at);
  }
}

/// The target is empty, so SQLite gives the rows their places as ids.
template <class Row>
void writeTable(Connection& target, std::vector<Row>& rows) {
  const std::string_view columns = Row::kStored.columns;
  std::string marks = "?";
  for (const char c : columns) marks += c == ',' ? ",?" : "";
  Statement insert(target, std::string("INSERT INTO ") + Row::kStored.table + " (" +
                               Row::kStored.columns + ") VALUES (" + marks + ")");
  for (Row& row : rows) {
    int at = 0;
    std::apply([&](const auto&... values) { (give(insert, ++at, values), ...); }, row.columns());
    insert.run();
  }
}

}  // namespace

void mergeByHash(const std::vector<std::string>& sources, const std::string& target) {
  Tables tables;
  Texts texts;
  for (const std::string& path : sources) {
    Connection source(path, SQLITE_OPEN_READONLY);
    source.execute("BEGIN");
    std::apply([&](auto&... table) { (foldTable(source, table, tables, texts), ...); }, tables);
  }
  Connection file(target);
  file.execute("PRAGMA cache_size=-65536; BEGIN IMMEDIATE");
  std::apply([&](auto&... table) { (writeTable(file, table.rows()), ...); }, tables);
  file.execute("COMMIT");
}

}  // namespace fe_db_benchmarks
