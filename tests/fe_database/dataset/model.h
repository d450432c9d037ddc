#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// A naive model of a process that keeps facts: one dataset, two files, the process-wide flags.
/// Written from the rules alone, with linear searches over plain structures.
namespace fe_db_tests::model {

/// The element classes, in table order.
enum Class : int {
  kFile,
  kIdentifier,
  kMacro,
  kMacroInvocation,
  kCodeOrigin,
  kExpansion,
  kType,
  kTypeReference,
  kVariable,
  kFunction,
  kExternalIdentifier,
  kField,
  kEnumConstant,
  kLabel,
  kCallPoint,
  kClasses
};

/// An element of the dataset, by class and order of insertion.
struct Ref {
  int cls = -1;
  int index = -1;
  explicit operator bool() const { return index >= 0; }
  friend bool operator==(const Ref&, const Ref&) = default;
};

/// One element of any class; fields that its class lacks keep their defaults.
struct Fact {
  int cls = kFile;
  long long id = 0;
  bool dirty = false;
  bool wildcard = false;
  std::string text, call;  ///< path, name, replacement text, expanded code, token
  Ref file, name, ppFile;
  Ref subject;  ///< source name, type of a variable, declared type, macro, invocation, entity,
                ///< caller
  Ref object;   ///< referenced type, callee
  std::uint32_t line = 0, column = 0, ppLine = 0, ppColumn = 0, ppEnd = 0, offset = 0,
                endOffset = 0;
  std::uint32_t kind = 0, language = 0, effect = 0, linkage = 0, count = 0, tagCount = 0;
  bool huge = false, unnamed = false, local = false, incomplete = false, defined = false;
  bool special = false, used = false, parameter = false, objectLike = false, variadic = false;
  bool commandLine = false, predefined = false, isSigned = false;
  std::optional<long long> value;
  std::vector<int> origins;  ///< of an invocation, once loaded

  friend bool operator==(const Fact&, const Fact&) = default;
};

// --- What a file holds.

using Cell = std::variant<std::monostate, long long, std::string>;
using Row = std::vector<Cell>;
using Content = std::array<std::map<long long, Row>, kClasses>;

inline constexpr int kNoReference = -1;
inline constexpr int kEntity = -2;  ///< Variable or Function, as the column Kind says

struct Column {
  const char* name;
  bool key;
  std::variant<std::uint32_t Fact::*, bool Fact::*, std::string Fact::*, Ref Fact::*,
               std::optional<long long> Fact::*>
      member;
  int target = kNoReference;
};
struct Table {
  const char* name;
  const char* id;
  std::vector<Column> columns;
};
const Table& table(int cls);

std::string text(const Cell& cell);
/// A row, or only its key; each reference as the key that it leads to.
std::string text(const Content& content, int cls, const Row& row, bool keyOnly = false);
std::string keyText(const Content& content, int cls, long long id);
/// All rows of both content and order that do not depend on ids.
std::string text(const Content& content);
Content readFile(const std::string& path, bool isCompilation);

/// A file, and which of its rows are which elements of the dataset.
struct Store {
  bool isCompilation = false;
  Content content;
  std::array<std::map<long long, Ref>, kClasses> idCache;
};

struct Model {
  // The process and its files.
  std::array<bool, kClasses> isLoaded{}, isPreLoaded{};
  bool optimistic = false;
  Store pp{false, {}, {}}, comp{true, {}, {}};
  // The dataset. Deques: a load inserts while an element is being read.
  std::array<std::deque<Fact>, kClasses> facts;
  std::deque<Fact> expansionsByLine;
  enum { Pending, Loaded, Saved } expansions = Pending;
  bool dbLink = false, propagate = false;
  unsigned shuffle = 0;  ///< how a save walks the containers whose order is open

  void newDataset();
  Fact& at(Ref ref) { return facts[ref.cls][ref.index]; }
  const Fact& at(Ref ref) const { return facts[ref.cls][ref.index]; }
  /// All fields, the row id replaced by the key of its row in `ids`; without `ids` only the key.
  std::string text(const Fact& fact, const Content* ids) const;
  /// Dataset and files, in an order that does not depend on ids or insertion.
  std::string text(const Content& ids) const;

  Ref find(const Fact& sought) const;
  Ref findText(int cls, const std::string& text) const;
  /// All macros of a name in the order of their group.
  std::vector<Ref> macros(Ref name) const;
  Ref macroWithValue(Ref name) const;

  Ref emplace(Fact seen, bool accumulate);
  Ref emplaceByName(Fact seen, const std::string& name, const std::string& sourceName,
                    bool accumulate);
  Ref emplaceFromDb(Fact row, bool accumulate);

  void preLoad(Store& db) { load(db, kFile); }
  void loadExpansions(Store& db);
  void load(Store& db);
  void savePp();
  void saveComp();
  void resetIds(Store& db);

 private:
  Ref emplaceIdentifier(const std::string& name, std::uint32_t kind, bool accumulate,
                        std::uint32_t count);
  Ref sight(const Fact& seen, bool accumulate);
  Cell cell(const Fact& fact, const Column& column) const;
  Ref get(Store& db, int cls, long long id);
  void fill(Store& db, Fact& fact, const Row& row, bool withKey);
  void load(Store& db, int cls);
  void readExpansions(Store& db);
  bool hasKey(const Fact& fact, const Row& row) const;
  void add(Store& db, Fact& fact);
  void update(Store& db, const Fact& fact);
  void addOrUpdate(Store& db, Fact& fact);
  void save(Store& db, Fact& fact);
  void saveTable(Store& db, int cls);
};

}  // namespace fe_db_tests::model
