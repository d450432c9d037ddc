#include "fe_database/compilation_data/element_store.h"
#include "fe_database/compilation_data/last_save.h"
#include "fe_database/compilation_data/load_table.h"
#include "fe_database/compilation_database/columns.h"
#include "fe_database/compilation_database/rollback_guard.h"
#include "fe_db/compilation_data.h"
#include "fe_db/compilation_database.h"
#include "persistence/debug.h"

namespace orvalesca::databases_merger {

using persistence::Debug;
using persistence::DebugTimer;

namespace {

/// What a compilation database gets, in the order that makes referred rows first.
using PropagatedElements = TypeList<File, Identifier, Macro>;
using SavedElements = OrderedElements;

}  // namespace

/// The row ids that elements have before a save, given back to them unless the save is kept: the id
/// of a row that was rolled back may be that of another row tomorrow.
class CompilationData::RestoredIds {
 public:
  explicit RestoredIds(CompilationData& data) : data(data) {
    AllElements::each([&]<class T>() {
      data.eachElement<T>([this](T& element) {
        if (element.getId() != 0) ids.emplace_back(&element, element.getId());
      });
    });
  }
  RestoredIds(const RestoredIds&) = delete;
  RestoredIds& operator=(const RestoredIds&) = delete;
  ~RestoredIds() {
    if (isKept) return;
    AllElements::each(
        [this]<class T>() { data.eachElement<T>([](T& element) { element.setId(0); }); });
    for (const auto& [element, id] : ids) element->setId(id);
  }

  void keep() { isKept = true; }

 private:
  CompilationData& data;
  std::vector<std::pair<persistence::GenericElement*, long long>> ids;
  bool isKept = false;
};

/// The process-wide flags of the tables that a save folds, as they are before it.
class CompilationData::FlagsBefore {
 public:
  void restore() const {
    std::size_t i = 0;
    FoldedElements::each([&]<class T>() {
      T::isLoaded = flags[i++];
      T::isPreLoaded = flags[i++];
    });
  }

 private:
  std::vector<bool> flags = [] {
    std::vector<bool> all;
    FoldedElements::each([&]<class T>() { all.insert(all.end(), {T::isLoaded, T::isPreLoaded}); });
    return all;
  }();
};

template <class T>
void CompilationData::saveTable(FrontendDatabase& db) {
  eachElement<T>([&db](T& element) { element.saveToDB(db); });
}

void CompilationData::saveFilesToDB(FrontendDatabase& db) { saveTable<File>(db); }

// --- The compilation database.

bool CompilationData::saveToCompDB() {
  if (!propagateMacroInfo && !dataNeededForDbLink) return true;
  FrontendDatabase* db = selectDb(/*fromCompDb=*/true, "saveToCompDB");
  if (db == nullptr || isRefusedAfterFailure(*db) || !db->beginTransaction()) return false;
  RestoredIds ids(*this);
  const FlagsBefore flags;
  const unsigned long long rowsReadBefore = db->countRowsRead();
  hasSaveToCompDbFailed = true;  // until the commit; an exception leaves it so
  auto saved = std::make_unique<LastSave>();
  if (!saveCompilationTables(*db, *saved)) {
    // What was read has joined the counts in memory, and a second try would add it once more.
    hasSaveToCompDbFailed = db->countRowsRead() != rowsReadBefore;
    flags.restore();
    return false;
  }
  ids.keep();
  lastSave = std::move(saved);
  hasSaveToCompDbFailed = false;
  return true;
}

bool CompilationData::isRefusedAfterFailure(const FrontendDatabase& db) const {
  if (hasSaveToCompDbFailed) {
    persistence::reportMessage(
        "%s: saveToCompDB: refused: an earlier save of this dataset failed when its counts had "
        "taken in stored ones; record the facts anew in a new dataset",
        db.getPath().c_str());
  }
  return hasSaveToCompDbFailed;
}

bool CompilationData::saveCompilationTables(FrontendDatabase& db, LastSave& saved) {
  const unsigned long failedReadsBefore = db.countFailedReads();
  if (lastSave == nullptr) {
    foldStoredRows();
  } else {
    foldUnknownRows();
  }
  failTransactionAfterFailedRead(db, failedReadsBefore);
  const auto save = [&]<class T>() { saveTableAndRemember<T>(db, saved); };
  PropagatedElements::each(save);
  if (dataNeededForDbLink) {
    CompilationOnlyElements::each(save);
    ExtensionElements::each(save);
  }
  failTransactionAfterFailedRead(db, failedReadsBefore);
  if (!db.commitTransaction()) return false;
  SavedElements::each([&]<class T>() {
    if constexpr (!std::is_same_v<T, Function>) {
      const bool isSaved = dataNeededForDbLink || PropagatedElements::has<T>;
      eachElement<T>([&](T& element) { saved.remember(element, isSaved); });
    }
  });
  FoldedElements::each([&]<class T>() { saved.rememberFolded<T>(db); });
  return true;
}

/// What was not read can be neither extended nor found again: the rows written would double it.
void CompilationData::failTransactionAfterFailedRead(FrontendDatabase& db,
                                                     unsigned long failedReadsBefore) {
  if (db.countFailedReads() != failedReadsBefore) db.failTransaction();
}

/// A row that this dataset has written or folded before is written again only if its element has
/// counted something since.
template <class T>
void CompilationData::saveTableAndRemember(FrontendDatabase& db, LastSave& saved) {
  if (!db.has<T>()) return;
  eachElement<T>([&](T& element) {
    if constexpr (ExtensionElements::has<T>) {
      // What has no row of its own has none about it either.
      const auto hasRow = [](const auto* referred) { return referred && referred->getId() != 0; };
      if (!everyRequired(element, hasRow)) return;
    }
    const RowState state = lastSave == nullptr ? RowState::unknown : lastSave->stateOf(element);
    // The count of a stored function is not loaded. It joins the element's own when a look-up
    // finds the row, or the row gets the element's.
    const bool isWhole = state != RowState::unknown || element.getId() == 0 || element.dirty;
    if (state == RowState::unknown) {
      element.saveToDB(db);
    } else if (state == RowState::outdated) {
      db.update(element);
    }
    if (std::is_same_v<T, Function> && isWhole) saved.remember(element, /*isWhole=*/true);
  });
}

template <class T>
void CompilationData::preLoadTable(FrontendDatabase& db) {
  if (T::isPreLoaded) return;
  loadTable<T>(db);
  T::isPreLoaded = true;
}

/// What the file holds of these tables is merged into memory first, so that rows of other
/// translation units are found and extended. Names and types need no look-up afterwards.
void CompilationData::foldStoredRows() {
  FrontendDatabase& db = *compDb;
  File::isLoaded = File::isPreLoaded = false;
  loadTable<File>(db);
  Identifier::isLoaded = Identifier::isPreLoaded = false;
  preLoadTable<Identifier>(db);
  preLoadTable<Type>(db);
  if (units.empty()) return;
  Unit::isLoaded = Unit::isPreLoaded = false;
  preLoadTable<Unit>(db);
}

/// At a further save of this dataset the counts of most rows are in memory: those of the rows that
/// it has read or written itself. Only the others are merged.
void CompilationData::foldUnknownRows() {
  FrontendDatabase& db = *compDb;
  SavedElements::each([this, &db]<class T>() { lastSave->restore<T>(db); });
  const auto fold = [this, &db]<class T>() {
    T::isLoaded = false;
    loadTable<T>(db, [&db](T& row) { return !db.isInIdCache<T>(row.getId()); });
    T::isPreLoaded = !std::is_same_v<T, File>;
  };
  FoldedElements::each(fold);
}

// --- The preprocessing database.

bool CompilationData::saveToPpDB() {
  Debug debug(2, "CompilationData::saveToPpDB");
  DebugTimer timer(2, "CompilationData::saveToPpDB");
  FrontendDatabase* db = selectDb(/*fromCompDb=*/false, "saveToPpDB");
  if (db == nullptr || !db->beginTransaction()) return false;
  RestoredIds ids(*this);
  const unsigned long failedReadsBefore = db->countFailedReads();
  {
    RollbackOnException guard(*db);
    const auto save = [&](const char* before, const auto& elements, const char* after,
                          auto&& work) {
      debug.print(before);
      timer.reset();
      work();
      timer.display(after, static_cast<unsigned long>(elements.size()));
    };
    save("saving files", files, "saving %lu files", [&] { saveFilesToDB(*db); });
    save("saving identifiers", identifiers, "saving %lu identifiers",
         [&] { saveTable<Identifier>(*db); });
    save("saving macros", macros, "saving %lu macros", [&] { saveTable<Macro>(*db); });
    save("saving macro expansions", macroExpansions, "saving %lu macroExpansions",
         [&] { saveMacroExpansionsToPpDB(); });
    save("saving macroInvocations", macroInvocations, "saving %lu macroInvocations",
         [&] { saveTable<MacroInvocation>(*db); });
    save("saving macro invocation code origins", macroInvocationCodeOrigins,
         "saving %lu macroInvocationCodeOrigins", [&] { saveMacroInvocationCodeOriginsToPpDB(); });
  }
  failTransactionAfterFailedRead(*db, failedReadsBefore);
  if (!db->commitTransaction()) return false;
  macroExpansionState = MacroExpansionState::Saved;
  ids.keep();
  return true;
}

void CompilationData::saveMacroExpansionsToPpDB() {
  if (macroExpansionState != MacroExpansionState::Saved) saveTable<MacroExpansion>(*ppDb);
}

/// No other table refers to these rows, so their ids are not kept.
void CompilationData::saveMacroInvocationCodeOriginsToPpDB() {
  if (macroExpansionState == MacroExpansionState::Saved) return;
  for (MacroInvocationCodeOrigin& origin : macroInvocationCodeOrigins) {
    ppDb->add(origin);
    origin.setId(0);
  }
}

// --- From one database to the other.

void CompilationData::resetIds(FrontendDatabase& db) {
  Debug debug(2, "CompilationData::resetIds");
  db.clearIdCaches();
  const auto reset = [&debug](const char* text, auto& elements) {
    debug.print(text);
    for (auto& element : elements) mutableElement(element).forgetRow();
  };
  reset("clearing files", files);
  reset("clearing identifiers", identifiers);
  reset("clearing macros", macros);
  reset("clearing macroInvocations", macroInvocations);
  debug.print("clearing macroInvocationCodeOrigins");  // their ids are 0 already
  reset("clearing macroExpansions", macroExpansions);
  reset("clearing types", types);
  reset("clearing type references", typeReferences);
  reset("clearing variables", variables);
  reset("clearing functions", functions);
  reset("clearing external identifiers", externalIdentifiers);
  reset("clearing fields", fields);
  reset("clearing enumConstants", enumConstants);
  reset("clearing labels", labels);
  reset("clearing callPoints", callPoints);
  ExtensionElements::each(
      [this]<class T>() { eachElement<T>([](T& element) { element.forgetRow(); }); });
}

}  // namespace orvalesca::databases_merger
