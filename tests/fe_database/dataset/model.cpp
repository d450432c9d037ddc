#include "model.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <tuple>

namespace fe_db_tests::model {
namespace {

bool samePlace(const Fact& a, const Fact& b) {
  return a.file == b.file && a.line == b.line && a.column == b.column;
}

bool isNamed(int cls) {
  return cls == kMacro || cls == kType || cls == kVariable || cls == kFunction || cls == kField ||
         cls == kEnumConstant || cls == kLabel;
}

bool isSame(const Fact& a, const Fact& b) {
  switch (a.cls) {
    case kFile:
    case kIdentifier:
      return a.text == b.text;
    case kTypeReference:
      return a.subject == b.subject;
    case kExternalIdentifier:
      return a.name == b.name &&
             (a.kind > 1 ? Ref() : a.subject) == (b.kind > 1 ? Ref() : b.subject);
    case kCallPoint:
      return a.subject == b.subject && samePlace(a, b);
    default:
      return isNamed(a.cls) && a.name == b.name && samePlace(a, b);
  }
}

/// Merges a new sight (id 0) or a row into an element: has the row to be written?
bool merge(Fact& e, const Fact& other) {
  e.id = other.id;
  if (!isNamed(e.cls)) return false;
  bool changed = e.count != 0;
  e.count += other.count;
  if (e.cls == kType) {
    e.tagCount += other.tagCount;
    changed |= e.tagCount != 0;
    for (const auto flag : {&Fact::unnamed, &Fact::local, &Fact::incomplete}) {
      changed |= e.*flag && !(other.*flag);
      e.*flag |= other.*flag;
    }
  }
  if (e.cls == kMacro && !e.value && other.value) {
    e.value = other.value;
    e.isSigned = other.isSigned;
    changed = true;
  }
  if (e.cls == kMacro && e.defined && !other.defined) {
    e.defined = false;
    changed = true;
  }
  e.dirty |= changed;
  return changed;
}

}  // namespace

void Model::newDataset() {
  facts = {};
  expansionsByLine.clear();
  expansions = Pending;
  dbLink = propagate = false;
  pp.idCache = comp.idCache = {};
}

// --- Looking up.

std::vector<Ref> Model::macros(Ref name) const {
  std::vector<Ref> group;
  for (int i = 0; i < static_cast<int>(facts[kMacro].size()); ++i) {
    if (facts[kMacro][i].name == name) {
      group.insert(group.begin() + (group.empty() ? 0 : 1), {kMacro, i});
    }
  }
  return group;
}

Ref Model::find(const Fact& sought) const {
  if (sought.cls == kMacro) {
    for (const Ref ref : macros(sought.name)) {
      if (isSame(at(ref), sought) || sought.wildcard || at(ref).wildcard) return ref;
    }
    return {};
  }
  for (int i = 0; i < static_cast<int>(facts[sought.cls].size()); ++i) {
    if (isSame(facts[sought.cls][i], sought)) return {sought.cls, i};
  }
  return {};
}

Ref Model::findText(int cls, const std::string& text) const {
  Fact sought;
  sought.cls = cls;
  sought.text = text;
  return find(sought);
}

Ref Model::macroWithValue(Ref name) const {
  Ref last;
  for (const Ref ref : macros(name)) {
    last = ref;
    if (at(ref).value) break;
  }
  return last;
}

// --- Emplacing.

Ref Model::sight(const Fact& seen, bool accumulate) {
  const Ref known = find(seen);
  if (!known) {
    facts[seen.cls].push_back(seen);
    return {seen.cls, static_cast<int>(facts[seen.cls].size()) - 1};
  }
  if (accumulate) merge(at(known), seen);
  return known;
}

Ref Model::emplaceIdentifier(const std::string& name, std::uint32_t kind, bool accumulate,
                             std::uint32_t count) {
  Fact seen;
  seen.cls = kIdentifier;
  seen.text = name;
  seen.kind = kind;
  seen.count = count;
  const Ref known = find(seen);
  if (!known) return sight(seen, false);
  if (accumulate) {
    Fact& e = at(known);
    e.id = 0;
    e.dirty |= e.count != 0 || (e.kind & ~kind) != 0;
    e.count += count;
    e.kind |= kind;
  }
  return known;
}

Ref Model::emplace(Fact seen, bool accumulate) {
  if (seen.cls == kIdentifier) {
    return emplaceIdentifier(seen.text, seen.kind, accumulate, seen.count);
  }
  if (seen.cls == kFile) {
    seen.huge = false;
    const Ref file = sight(seen, /*accumulate=*/false);
    at(file).kind = seen.kind;
    at(file).language = seen.language;
    return file;
  }
  if (seen.cls == kExternalIdentifier) at(seen.name).kind |= 16;
  if (seen.cls == kFunction || seen.cls == kEnumConstant || seen.cls == kLabel) seen.count = 0;
  return sight(seen, accumulate);
}

Ref Model::emplaceByName(Fact seen, const std::string& name, const std::string& sourceName,
                         bool accumulate) {
  static const std::map<int, std::uint32_t> bits = {{kType, 1},          {kFunction, 2},
                                                    {kVariable, 4},      {kMacro, 8},
                                                    {kField, 64},        {kExternalIdentifier, 16},
                                                    {kEnumConstant, 32}, {kLabel, 128}};
  const bool mustHaveName =
      seen.cls == kType || seen.cls == kFunction || seen.cls == kEnumConstant || seen.cls == kLabel;
  if (mustHaveName && name.empty()) return {};
  if (seen.cls == kFunction && sourceName.empty()) return {};
  const std::uint32_t bit = bits.at(seen.cls);
  seen.name = emplaceIdentifier(name, bit, accumulate, 1);
  if (seen.cls == kFunction) seen.subject = emplaceIdentifier(sourceName, bit, accumulate, 1);
  if (seen.cls == kType) seen.local = seen.incomplete = false;
  if (seen.cls == kVariable) seen.count = 0;
  if (seen.cls == kMacro) {
    seen.value.reset();
    seen.text.clear();
    seen.defined = seen.objectLike = true;
    seen.isSigned = seen.variadic = seen.commandLine = seen.predefined = false;
  }
  return emplace(seen, accumulate);
}

Ref Model::emplaceFromDb(Fact row, bool accumulate) {
  row.id = 0;
  row.dirty = false;
  switch (row.cls) {
    case kFile:
      return sight(row, /*accumulate=*/false);
    case kIdentifier:
      return emplaceIdentifier(row.text, row.kind, accumulate, row.count);
    case kMacroInvocation:
      row.ppFile = row.file;
      break;
    case kField:
    case kEnumConstant:
    case kLabel:
      return emplaceByName(row, at(row.name).text, "", accumulate);
  }
  return emplace(row, accumulate);
}

// --- Rows.

Cell Model::cell(const Fact& fact, const Column& column) const {
  struct Visitor {
    const Model& model;
    const Fact& fact;
    const Column& column;
    // 32 bits as they are, in a signed column.
    Cell operator()(std::uint32_t Fact::*m) {
      return (long long){static_cast<std::int32_t>(fact.*m)};
    }
    Cell operator()(bool Fact::*m) { return (long long){fact.*m}; }
    Cell operator()(std::string Fact::*m) { return fact.*m; }
    Cell operator()(std::optional<long long> Fact::*m) {
      return fact.*m ? Cell(*(fact.*m)) : Cell();
    }
    Cell operator()(Ref Fact::*m) {
      if (column.target == kEntity && fact.kind > 1) return 0LL;
      return fact.*m ? Cell(model.at(fact.*m).id) : Cell();
    }
  };
  return std::visit(Visitor{*this, fact, column}, column.member);
}

void Model::fill(Store& db, Fact& fact, const Row& row, bool withKey) {
  const auto& columns = table(fact.cls).columns;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].key && !withKey) continue;
    const auto* number = std::get_if<long long>(&row[i]);
    const auto& member = columns[i].member;
    if (const auto* bits = std::get_if<std::uint32_t Fact::*>(&member)) {
      fact.** bits = static_cast<std::uint32_t>(*number);
    } else if (const auto* flag = std::get_if<bool Fact::*>(&member)) {
      fact.** flag = *number != 0;
    } else if (const auto* bytes = std::get_if<std::string Fact::*>(&member)) {
      fact.** bytes = std::get<std::string>(row[i]);
    } else if (const auto* value = std::get_if<std::optional<long long> Fact::*>(&member)) {
      fact.** value = number != nullptr ? std::optional(*number) : std::nullopt;
    } else {
      const int target = columns[i].target != kEntity ? columns[i].target
                         : fact.kind == 0             ? kVariable
                         : fact.kind == 1             ? kFunction
                                                      : kNoReference;
      if (target == kNoReference) continue;
      fact.*std::get<Ref Fact::*>(columns[i].member) = get(db, target, number ? *number : 0);
    }
  }
}

Ref Model::get(Store& db, int cls, long long id) {
  if (id == 0) return {};
  if (const auto hit = db.idCache[cls].find(id); hit != db.idCache[cls].end()) return hit->second;
  Fact row;
  row.cls = cls;
  row.defined = cls == kMacro;
  fill(db, row, db.content[cls].at(id), /*withKey=*/true);
  const Ref element = emplaceFromDb(row, /*accumulate=*/true);
  if (element) at(element).id = id;
  return db.idCache[cls][id] = element;
}

// --- Loading.

void Model::load(Store& db, int cls) {
  if (isLoaded[cls]) return;
  for (const auto& [id, cells] : db.content[cls]) {
    Fact row;
    row.cls = cls;
    row.defined = cls == kMacro;
    fill(db, row, cells, /*withKey=*/true);
    const Ref element = emplaceFromDb(row, /*accumulate=*/true);
    if (!element) continue;
    at(element).id = id;
    db.idCache[cls][id] = element;
  }
  isLoaded[cls] = true;
}

void Model::readExpansions(Store& db) {
  if (expansions == Loaded || db.isCompilation) return;
  for (const auto& [id, cells] : db.content[kExpansion]) {
    Fact row;
    row.cls = kExpansion;
    fill(db, row, cells, /*withKey=*/true);
    expansionsByLine.push_back(row);
  }
  expansions = Loaded;
}

void Model::loadExpansions(Store& db) {
  if (expansions == Loaded) return;
  for (const int cls : {kFile, kIdentifier, kMacro}) load(db, cls);
  readExpansions(db);
}

void Model::load(Store& db) {
  for (const int cls : {kFile, kIdentifier, kMacro, kMacroInvocation}) load(db, cls);
  if (!db.isCompilation) {
    for (const auto& [id, cells] : db.content[kCodeOrigin]) {
      Fact row;
      row.cls = kCodeOrigin;
      fill(db, row, cells, /*withKey=*/true);
      facts[kCodeOrigin].push_back(row);
      if (!row.subject) continue;
      auto& origins = at(row.subject).origins;
      const auto place = std::find_if(origins.begin(), origins.end(), [&](int other) {
        return facts[kCodeOrigin][other].offset >= row.offset;
      });
      origins.insert(place, static_cast<int>(facts[kCodeOrigin].size()) - 1);
    }
  } else if (dbLink) {
    for (const int cls : {kType, kVariable, kFunction, kExternalIdentifier, kField, kEnumConstant,
                          kLabel, kCallPoint}) {
      load(db, cls);
    }
  }
  readExpansions(db);
}

// --- Saving.

void Model::add(Store& db, Fact& fact) {
  Row row;
  for (const Column& column : table(fact.cls).columns) row.push_back(cell(fact, column));
  auto& rows = db.content[fact.cls];
  fact.id = rows.empty() ? 1 : rows.rbegin()->first + 1;
  if (fact.cls == kFile || fact.cls == kIdentifier) {  // unique by their text
    for (const auto& [id, other] : rows) {
      if (other[0] == row[0]) fact.id = id;
    }
  }
  rows[fact.id] = row;
}

void Model::update(Store& db, const Fact& fact) {
  const auto row = db.content[fact.cls].find(fact.id);
  if (row == db.content[fact.cls].end()) return;
  const auto& columns = table(fact.cls).columns;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (!columns[i].key) row->second[i] = cell(fact, columns[i]);
  }
}

/// NULL equals nothing.
bool Model::hasKey(const Fact& fact, const Row& row) const {
  const auto& columns = table(fact.cls).columns;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (!columns[i].key) continue;
    const Cell sought = cell(fact, columns[i]);
    if (sought != row[i] || std::holds_alternative<std::monostate>(sought)) return false;
  }
  return true;
}

/// Not reached by a type: the rows of types have been loaded before.
void Model::addOrUpdate(Store& db, Fact& fact) {
  for (const auto& [id, row] : db.content[fact.cls]) {
    if (!hasKey(fact, row)) continue;
    Fact copy = fact;
    fill(db, copy, row, /*withKey=*/false);
    copy.id = id;
    if (merge(fact, copy)) update(db, fact);
    return;
  }
  add(db, fact);
}

void Model::save(Store& db, Fact& fact) {
  const int cls = fact.cls;
  if (cls == kExpansion || cls == kCodeOrigin) {
    if (fact.id == 0) add(db, fact);
    if (cls == kCodeOrigin) fact.id = 0;
    return;
  }
  const bool updates = cls == kFile || cls == kIdentifier || cls == kMacro ||
                       cls == kMacroInvocation || cls == kType || cls == kVariable ||
                       cls == kFunction;
  if (fact.id != 0 || (cls == kMacro && fact.wildcard)) {
    if (fact.dirty && updates) update(db, fact);
  } else if (optimistic || (updates && (isPreLoaded[cls] || !db.isCompilation))) {
    add(db, fact);
  } else if (cls == kFile) {
    add(db, fact);  // its row would have been loaded
  } else {
    addOrUpdate(db, fact);
  }
}

void Model::saveTable(Store& db, int cls) {
  std::vector<int> order(facts[cls].size());
  std::iota(order.begin(), order.end(), 0);
  if (shuffle != 0) std::shuffle(order.begin(), order.end(), std::mt19937(shuffle));
  if (cls == kVariable) {
    const auto place = [this](int i) {
      const Fact& fact = facts[kVariable][i];
      return std::tie(at(fact.file).text, fact.line, fact.column);
    };
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return place(a) < place(b); });
  }
  for (const int i : order) save(db, facts[cls][i]);
}

void Model::savePp() {
  for (const int cls : {kFile, kIdentifier, kMacro, kExpansion, kMacroInvocation, kCodeOrigin}) {
    if (expansions == Saved && (cls == kExpansion || cls == kCodeOrigin)) continue;
    saveTable(pp, cls);
  }
  expansions = Saved;
}

void Model::saveComp() {
  if (!propagate && !dbLink) return;
  for (const int cls : {kFile, kIdentifier}) {
    isLoaded[cls] = isPreLoaded[cls] = false;
    load(comp, cls);
  }
  isPreLoaded[kIdentifier] = true;
  if (!isPreLoaded[kType]) load(comp, kType);
  isPreLoaded[kType] = true;
  for (const int cls : {kFile, kIdentifier, kMacro}) saveTable(comp, cls);
  if (!dbLink) return;
  for (int cls = kType; cls < kClasses; ++cls) saveTable(comp, cls);
}

void Model::resetIds(Store& db) {
  db.idCache = {};
  for (auto& elements : facts) {
    for (Fact& fact : elements) fact.id = 0;
  }
}

// --- As text.

std::string Model::text(const Fact& fact, const Content* ids) const {
  std::string line = table(fact.cls).name;
  for (const Column& column : table(fact.cls).columns) {
    if (ids == nullptr && !column.key) continue;
    line += std::string(" ") + column.name + "=";
    if (const auto* m = std::get_if<Ref Fact::*>(&column.member)) {
      const bool none = !(fact.*(*m)) || (column.target == kEntity && fact.kind > 1);
      line += none ? "null" : "<" + text(at(fact.*(*m)), nullptr) + ">";
    } else {
      line += model::text(cell(fact, column));
    }
  }
  if (ids == nullptr) return line;
  for (const int origin : fact.origins) line += " [" + facts[kCodeOrigin][origin].text + "]";
  line += fact.dirty ? " dirty" : "";
  line += fact.wildcard ? " wildcard" : "";
  line += fact.cls == kMacro && !fact.defined ? " undefined" : "";
  return line + (fact.id == 0 ? "" : " row " + keyText(*ids, fact.cls, fact.id));
}

std::string Model::text(const Content& ids) const {
  std::vector<std::string> lines;
  for (const auto& elements : facts) {
    for (const Fact& fact : elements) lines.push_back(text(fact, &ids));
  }
  std::sort(lines.begin(), lines.end());
  std::string all;
  for (const std::string& line : lines) all += line + "\n";
  return all + model::text(pp.content) + model::text(comp.content);
}

}  // namespace fe_db_tests::model
