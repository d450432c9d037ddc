#include <random>
#include <set>

#include "fe_db/compilation_database.h"
#include "library_side.h"
#include "tests/support/test_dataset.h"
#include "tools/common/compilation_schema.h"

namespace fe_db_tests::model {
namespace {

/// Plays one seed against the library and the model.
class Play {
 public:
  Play(unsigned seed, const std::string& directory)
      : random(seed), compPath(directory + "/comp.db"), ppPath(directory + "/pp.db") {
    std::filesystem::remove(compPath);
    std::filesystem::remove(ppPath);
    using fe_db_tools::KeyIndexes;
    fe_db_tools::createCompilationDatabase(compPath, one(2) ? KeyIndexes::yes : KeyIndexes::no);
    hasLargeGroups = one(5);
    newProcess();
  }
  ~Play() { resetProcessFlags(); }

  /// False when it ended early: a save whose result depends on the order of a container, which is
  /// open.
  bool run(int steps) {
    for (int n = 0; n < steps && !isAmbiguous && !testing::Test::HasFailure(); ++n) {
      step();
      SCOPED_TRACE("step " + std::to_string(n) + ": " + what);
      if (!isAmbiguous) compare();
    }
    return !isAmbiguous;
  }

 private:
  // --- Chance. The world is small, so that most sights meet something.

  unsigned below(unsigned n) { return static_cast<unsigned>(random() % n); }
  bool one(unsigned in) { return below(in) == 0; }
  template <class T>
  T any(std::initializer_list<T> of) {
    return of.begin()[below(static_cast<unsigned>(of.size()))];
  }
  int anyClass() { return hasLargeGroups && one(2) ? kMacro : static_cast<int>(below(kClasses)); }
  std::string anyName() { return any<const char*>({"", "x", "x", "x", "X", "main", "main"}); }
  std::uint32_t anyCount() { return any<std::uint32_t>({0, 0, 1, 2, 3, 0x80000000, 0xFFFFFFFF}); }
  Ref anyRef(int cls) {
    const int count = library.known.count(cls);
    if (count == 0) return {};
    const Ref ref{cls, static_cast<int>(below(count))};
    return library.known.get(ref) != nullptr ? ref : Ref();
  }

  void fillValues(Fact& f) {
    struct Filler {
      Play& play;
      Fact& f;
      void operator()(std::uint32_t Fact::*m) const { f.*m = play.below(3); }
      void operator()(bool Fact::*m) const { f.*m = play.one(3); }
      void operator()(std::string Fact::*m) const { f.*m = play.anyName(); }
      void operator()(Ref Fact::*) const {}
      void operator()(std::optional<long long> Fact::*m) const {
        if (play.one(2)) f.*m = play.any<long long>({0, 1, -1, INT64_MIN});
      }
    };
    for (const Column& column : table(f.cls).columns) std::visit(Filler{*this, f}, column.member);
    if (f.cls == kMacro && hasLargeGroups) f.line = below(100);
    if (f.cls == kFile) f.text = any<const char*>({"", "a.c", "a.c", "b.h"});
    if (f.cls == kIdentifier) f.kind = below(256);
    if (f.cls == kType) f.kind = any<std::uint32_t>({4, 512});
    if (f.cls == kType) f.tagCount = anyCount();
    if (f.cls == kExternalIdentifier) f.kind = any<std::uint32_t>({0, 1, 7, 0xFFFFFFFF});
    if (isCounted(f.cls)) f.count = anyCount();
    if (f.cls == kMacro) f.defined = !one(4);
    if (f.cls >= kMacro && !isUnplaced(f.cls)) f.wildcard = one(20);
    f.isSigned = f.isSigned && f.value;
  }
  static bool isUnplaced(int cls) { return cls == kTypeReference || cls == kExternalIdentifier; }
  static bool isCounted(int cls) {
    return cls == kIdentifier || cls == kMacro || cls == kType || cls == kVariable ||
           cls == kFunction || cls == kField;
  }

  /// False when there is nothing yet that the fact could refer to.
  bool fillReferences(Fact& f) {
    const Ref known = one(2) ? anyRef(f.cls) : Ref();  // for a second sight, take its key
    for (const Column& column : table(f.cls).columns) {
      const auto* member = std::get_if<Ref Fact::*>(&column.member);
      if (member == nullptr || (column.target == kEntity && f.kind > 1)) continue;
      const int target = column.target != kEntity ? column.target
                         : f.kind == 0            ? kVariable
                                                  : kFunction;
      const bool isFile = target == kFile;
      const bool mayLackSubject =
          f.cls == kMacroInvocation || f.cls == kCodeOrigin || f.cls == kVariable;
      const bool mayBeNull =
          isFile ? f.cls != kVariable : mayLackSubject && *member == &Fact::subject;
      f.*(*member) = known && column.key && column.target != kEntity ? model.at(known).*(*member)
                     : mayBeNull && one(8)                           ? Ref()
                                                                     : anyRef(target);
      if (!(f.*(*member)) && !mayBeNull) return false;
    }
    if (known && !isUnplaced(f.cls)) f.line = model.at(known).line;
    if (known && !isUnplaced(f.cls)) f.column = model.at(known).column;
    if (f.cls == kMacroInvocation) f.ppFile = anyRef(kFile);
    return true;
  }

  std::optional<Fact> anyFact(int cls) {
    Fact fact;
    fact.cls = cls;
    fillValues(fact);
    return fillReferences(fact) ? std::optional(fact) : std::nullopt;
  }

  // --- Steps.

  template <class Do>
  void repeat(unsigned times, Do&& once) {
    for (; times > 0 && !testing::Test::HasFailure(); --times) once();
  }

  void step() {
    const unsigned n = below(100);
    const unsigned times = 1 + below(24);
    if (n < 60) return repeat(times, [this] { emplace(anyClass()); });
    if (n < 66) return repeat(1 + times / 4, [this] { emplaceFromDb(anyClass()); });
    if (n < 78) return repeat(1 + times / 2, [this] { change(); });
    if (n < 82) return save(/*isCompilation=*/false);
    if (n < 89) return save(/*isCompilation=*/true);
    if (n < 95) return load();
    if (n < 97) return reset();
    one(2) ? newProcess() : newDataset();
  }

  void emplace(int cls) {
    const auto fact = anyFact(cls);
    if (!fact) return;
    const bool accumulate = one(2);
    const bool mustBeByName = cls == kField || cls == kEnumConstant || cls == kLabel;
    if (fact->name && (mustBeByName || one(2))) {
      const std::string name = one(2) ? model.at(fact->name).text : anyName();
      const std::string sourceName = anyName();
      what = std::string("emplace ") + table(cls).name + " by name '" + name + "'";
      const Ref expected = model.emplaceByName(*fact, name, sourceName, accumulate);
      return check(expected, library.emplaceByName(*fact, name, sourceName, accumulate));
    }
    what = "emplace " + model.text(*fact, &kNoRows) + (accumulate ? " accumulate" : "");
    check(model.emplace(*fact, accumulate), library.emplace(*fact, accumulate));
  }

  void emplaceFromDb(int cls) {
    const auto fact = anyFact(cls);
    if (!fact) return;
    const bool accumulate = one(2);
    what = "emplaceFromDB " + model.text(*fact, &kNoRows) + (accumulate ? " accumulate" : "");
    check(model.emplaceFromDb(*fact, accumulate), library.emplaceFromDb(*fact, accumulate));
  }

  /// What a front end does to an element through its setters.
  void change() {
    const int cls = anyClass();
    const Ref ref = anyRef(cls);
    if (!ref) return;
    Fact& fact = model.at(ref);
    what = "change " + model.text(fact, nullptr);
    if (one(4)) {
      fact.dirty = library.known.get(ref)->dirty = true;
    } else if (cls == kFile) {
      library.data->setHugeFile(fact.text);
      fact.huge = true;
    } else if (cls == kIdentifier) {
      library.known.get<Identifier>(ref)->setCount(fact.count = anyCount());
    } else if (cls == kMacro && one(2)) {
      move(fact, *library.known.get<Macro>(ref));
    } else if (cls == kType && one(2)) {
      library.known.get<Type>(ref)->setRefTagCount(fact.tagCount = anyCount());
    } else if (isCounted(cls)) {
      library.known.get<NamedElement>(ref)->setRefCount(fact.count = anyCount());
    }
  }

  /// Large groups are searched by an index of positions, and a position can be set in many ways.
  void move(Fact& fact, Macro& macro) {
    const bool isMoved = hasLargeGroups && one(2);
    fact.wildcard = !isMoved && one(3);
    if (isMoved) fact.line = 100 + below(1000);
    Macro moved = macro;
    moved.setLocalization(library.place(fact));
    if (one(2)) return static_cast<LocatedElement&>(macro).setLocalization(library.place(fact));
    macro = moved;
  }

  Store& store(bool isCompilation) { return isCompilation ? model.comp : model.pp; }
  FrontendDatabase& database(bool isCompilation) {
    if (isCompilation) return library.data->getCompDb();
    return library.data->getPpDb();
  }

  void reset() {
    if (!owner) return;
    what = "reset ids";
    library.data->resetIds(database(*owner));
    model.resetIds(store(*owner));
    owner.reset();
  }

  /// Ids belong to one database at a time.
  void use(bool isCompilation) {
    if (owner.has_value() && *owner != isCompilation) reset();
    owner = isCompilation;
  }

  void load() {
    const bool isCompilation = one(2);
    const unsigned which = below(4);
    use(isCompilation);
    what = std::string("load ") + (isCompilation ? "comp " : "pp ") + std::to_string(which);
    if (which == 0) {
      EXPECT_TRUE(library.data->preLoadFromDB(isCompilation));
      model.preLoad(store(isCompilation));
    } else if (which == 1 && !isCompilation) {
      EXPECT_TRUE(library.data->loadMacroExpansionFromPbDB(library.data->getPpDb()));
      model.loadExpansions(model.pp);
    } else {
      EXPECT_TRUE(library.data->loadFromDB(isCompilation));
      model.load(store(isCompilation));
    }
    adopt();
  }

  void save(bool isCompilation) {
    if (isCompilation && hasSavedComp) newDataset();
    if (isCompilation && !one(4)) setDbLink();
    use(isCompilation);
    what = isCompilation ? "save comp" : "save pp";
    const Model before = model;
    const auto saved = [&](unsigned shuffle) {
      model = before;
      model.shuffle = shuffle;
      isCompilation ? model.saveComp() : model.savePp();
      return model.text(store(isCompilation).content);
    };
    const std::string expected = saved(0);
    const auto dependsOnOrder = [&](unsigned from, unsigned to) {
      while (from != to && saved(from) == expected) ++from;
      saved(0);
      return from != to;
    };
    isAmbiguous = dependsOnOrder(1, 5);
    if (isAmbiguous) return;
    EXPECT_TRUE(isCompilation ? library.data->saveToCompDB() : library.data->saveToPpDB());
    Store& db = store(isCompilation);
    const Content content = readFile(isCompilation ? compPath : ppPath, isCompilation);
    if (text(content) != text(db.content)) isAmbiguous = dependsOnOrder(5, 300);
    if (isAmbiguous) return;
    adopt();
    takeIds(db, content);
    if (!isCompilation || !(model.dbLink || model.propagate)) return;
    hasSavedComp = true;
    if (one(2) && ownsItsRows()) saveAgain();
  }

  /// An unchanged dataset that is saved again changes nothing in the file. In memory it may take in
  /// rows that it has not seen, so it ends here.
  void saveAgain() {
    EXPECT_TRUE(library.data->saveToCompDB());
    EXPECT_EQ(text(readFile(compPath, true)), text(model.comp.content)) << "saved again";
    newDataset();
  }

  /// Types of an earlier dataset have not been read, and a wildcard may have taken the row of
  /// another macro: a further save then has something to write.
  bool ownsItsRows() const {
    std::set<long long> types, macros;
    std::size_t macrosWithRow = 0;
    for (const Fact& fact : model.facts[kType]) types.insert(fact.id);
    for (const Fact& fact : model.facts[kMacro]) {
      macrosWithRow += fact.id != 0;
      if (fact.id != 0) macros.insert(fact.id);
    }
    for (const auto& [id, row] : model.comp.content[kType]) {
      if (types.count(id) == 0) return false;
    }
    return macros.size() == macrosWithRow;
  }

  /// The order in which rows got their ids is open: the model takes them from the library, once
  /// content and keys agree.
  void takeIds(Store& db, const Content& content) {
    EXPECT_EQ(text(content), text(db.content));
    for (int cls = 0; cls < kClasses; ++cls) {
      for (int i = 0; i < library.known.count(cls); ++i) {
        const Element* const element = library.known.get({cls, i});
        if (element == nullptr) continue;
        Fact& fact = model.facts[cls][i];
        EXPECT_EQ(keyText(content, cls, element->getId()), keyText(db.content, cls, fact.id))
            << model.text(fact, nullptr);
        fact.id = element->getId();
      }
    }
    db.content = content;
  }

  void setDbLink() {
    library.data->setDataNeededForDbLink();
    model.dbLink = true;
  }

  void newDataset() {
    what = "new dataset";
    library = {};
    model.newDataset();
    owner.reset();
    hasSavedComp = false;
    library.data = CompilationData::newInstance(compPath, ppPath);
    for (const bool isCompilation : {false, true}) {
      EXPECT_TRUE(database(isCompilation).quick_connect(/*readOnly=*/false));
      EXPECT_TRUE(database(isCompilation).execute("PRAGMA synchronous=OFF"));
    }
    EXPECT_TRUE(library.data->getPpDb().addTables());
    if (one(2)) setDbLink();
    model.propagate = one(2);
    if (model.propagate) library.data->setPropagateMacroInfo();
  }

  void newProcess() {
    resetProcessFlags();
    model.isLoaded = model.isPreLoaded = {};
    model.optimistic = one(6);
    Element::setOptimisticInsert(model.optimistic);
    newDataset();
    what = "new process";
  }

  // --- Comparing.

  void check(Ref expected, Element* actual) {
    adopt();  // an identifier may have come with it
    SCOPED_TRACE(what);
    ASSERT_EQ(static_cast<bool>(expected), actual != nullptr);
    if (!expected) return;
    if (library.known.get(expected) == nullptr) library.known.set(expected, actual);
    EXPECT_EQ(library.known.get(expected), actual) << "another element than the model's";
  }

  /// Finds the elements that the model has and that no operation has handed out.
  void adopt() {
    for (int cls = 0; cls < kClasses; ++cls) {
      for (int i = library.known.count(cls); i < static_cast<int>(model.facts[cls].size()); ++i) {
        library.known.expect(cls);
        Element* const element = library.locate(model.facts[cls][i]);
        if (element != nullptr && !library.known.ref(element)) library.known.set({cls, i}, element);
      }
    }
  }

  void compare() {
    for (int cls = 0; cls < kClasses; ++cls) {
      visitClass(cls, [&]<class T>() {
        EXPECT_EQ(T::isLoaded, model.isLoaded[cls]) << table(cls).name;
        EXPECT_EQ(T::isPreLoaded, model.isPreLoaded[cls]) << table(cls).name;
        for (int i = 0; i < library.known.count(cls); ++i) {
          const Fact& expected = model.facts[cls][i];
          const T* const element = library.known.get<T>({cls, i});
          // Loaded code origins are seen through their invocations only.
          EXPECT_TRUE(element != nullptr || cls == kCodeOrigin)
              << "lost: " << model.text(expected, nullptr);
          if (element != nullptr) compare(*element, expected);
        }
      });
    }
    compareSizes();
    compareMacros();
    compareLines();
    repeat(10, [this] { compareLookup(); });
  }

  template <class T>
  void compare(const T& element, Fact expected) {
    Fact actual = factOf(library.known, element);
    if constexpr (std::is_same_v<T, MacroInvocation>) {
      ASSERT_EQ(element.getCodeOrigins().size(), expected.origins.size());
      for (std::size_t i = 0; i < expected.origins.size(); ++i) {
        compare(*element.getCodeOrigins()[i], model.facts[kCodeOrigin][expected.origins[i]]);
      }
      expected.origins.clear();
    }
    EXPECT_TRUE(actual == expected)
        << "library: " << model.text(actual, &kNoRows) << " id " << actual.id
        << "\n  model: " << model.text(expected, &kNoRows) << " id " << expected.id;
  }

  void compareSizes() {
    const CompilationData& data = *library.data;
    EXPECT_EQ(data.getTypes().size(), model.facts[kType].size());
    EXPECT_EQ(data.getVariables().size(), model.facts[kVariable].size());
    EXPECT_EQ(data.getFunctions().size(), model.facts[kFunction].size());
    EXPECT_EQ(data.getFields().size(), model.facts[kField].size());
    EXPECT_EQ(data.getEnumConstants().size(), model.facts[kEnumConstant].size());
    EXPECT_EQ(data.getLabels().size(), model.facts[kLabel].size());
    EXPECT_EQ(data.isMacroExpansionLoaded(), model.expansions == Model::Loaded);
    int expansions = 0;
    data.eachMacroExpansion([&](const MacroExpansion& e) {
      EXPECT_EQ(library.known.ref(&e).index, expansions++) << "order of expansions";
    });
    EXPECT_EQ(expansions, static_cast<int>(model.facts[kExpansion].size()));
  }

  void compareMacros() {
    std::size_t count = 0;
    for (int i = 0; i < library.known.count(kIdentifier); ++i) {
      const Ref name{kIdentifier, i};
      auto* const identifier = library.known.get<Identifier>(name);
      std::vector<Ref> actual;
      for (const Macro* macro : library.group(identifier)) {
        actual.push_back(library.known.ref(macro));
      }
      const std::string& named = model.at(name).text;
      const std::vector<Ref> expected = model.macros(name);
      EXPECT_EQ(actual, expected) << "group of " << named;
      EXPECT_EQ(library.data->getaMacroWithValue(named),
                library.known.get(model.macroWithValue(name)));
      EXPECT_EQ(library.data->getMacro(identifier),
                library.known.get(expected.empty() ? Ref() : expected[0]));
      count += actual.size();
    }
    EXPECT_EQ(count, model.facts[kMacro].size());
    std::set<const Macro*> listed, expected;
    bool first = true;
    while (const Macro* const m = library.data->listTranslationUnitMacro(first)) listed.insert(m);
    library.data->eachMacro([&](const Macro& m) {
      if (m.getFile() != nullptr) expected.insert(&m);
    });
    EXPECT_EQ(listed, expected) << "macros of the unit";
  }

  void compareLines() {
    for (std::uint32_t line = 0; line < 4; ++line) {
      const auto isOnLine = [line](const Fact& f) { return f.ppLine == line; };
      const auto uses = library.data->getMacroInvocationForLine(line);
      const auto& invocations = model.facts[kMacroInvocation];
      EXPECT_EQ(std::distance(uses.first, uses.second),
                std::count_if(invocations.begin(), invocations.end(), isOnLine));
      std::multiset<std::string> actual, expected;
      for (auto [it, end] = library.data->getMacroExpansionForLine(line); it != end; ++it) {
        actual.insert(model.text(factOf(library.known, *it), &kNoRows));
      }
      for (const Fact& f : model.expansionsByLine) {
        if (isOnLine(f)) expected.insert(model.text(f, &kNoRows));
      }
      EXPECT_EQ(actual, expected) << "expansions of line " << line;
    }
  }

  /// A look-up of what may be there or not.
  void compareLookup() {
    const int cls = any<int>({kFile, kIdentifier, kMacro, kMacro, kType, kTypeReference, kVariable,
                              kFunction, kField, kEnumConstant, kLabel, kCallPoint});
    const auto sought = anyFact(cls);
    if (!sought) return;
    const Element* const actual =
        cls == kMacro ? library.data->getMacro(library.name(*sought), library.place(*sought))
                      : library.locate(*sought);
    EXPECT_EQ(library.known.ref(actual), model.find(*sought)) << model.text(*sought, nullptr);
  }

  inline static const Content kNoRows;

  Model model;
  LibrarySide library;
  std::mt19937 random;
  std::string compPath, ppPath;
  std::string what;           ///< the latest step
  std::optional<bool> owner;  ///< which database ids belong to; true: the compilation database
  bool hasSavedComp = false;
  bool hasLargeGroups = false;  ///< of macros of a name
  bool isAmbiguous = false;
};

using DatasetModel = QuietTest;

// FE_DB_MODEL_SEED is the first seed, FE_DB_MODEL_SEEDS how many run.
TEST_F(DatasetModel, RandomSightings) {
  const unsigned first = fromEnvironment("FE_DB_MODEL_SEED", 1);
  const unsigned seeds = fromEnvironment("FE_DB_MODEL_SEEDS", 60);
  unsigned completed = 0;
  for (unsigned seed = first; seed < first + seeds; ++seed) {
    SCOPED_TRACE("to repeat: FE_DB_MODEL_SEEDS=1 FE_DB_MODEL_SEED=" + std::to_string(seed));
    completed += Play(seed, path("")).run(/*steps=*/60);
    EXPECT_EQ(takeReports(), "") << "nothing goes wrong here";
    if (HasFailure()) return;
  }
  EXPECT_GE(completed * 10, seeds * 8) << "too many seeds ended early, their order being open";
}

}  // namespace
}  // namespace fe_db_tests::model
