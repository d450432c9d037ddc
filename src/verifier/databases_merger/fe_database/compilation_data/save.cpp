#include "fe_database/compilation_data/elements_of.h"
#include "fe_database/compilation_data/load_table.h"
#include "fe_database/compilation_data/saved_rows.h"
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
using SavedElements = ArrivingElements;

/// Writes an element into a row that it had at an earlier save. Classes that are not here have no
/// column that a further sight could change.
template <class T>
void rewrite(T& element, FrontendDatabase& db) {
  constexpr bool hasOnlyKeys = std::is_same_v<T, EnumConstant> || std::is_same_v<T, Label>;
  constexpr bool isCounted = std::is_base_of_v<NamedElement, T> || std::is_same_v<T, Identifier>;
  if constexpr (isCounted && !hasOnlyKeys) db.update(element);
}

}  // namespace

template <class T>
void CompilationData::saveTable(FrontendDatabase& db) {
  eachElement<T>([&db](T& element) { element.saveToDB(db); });
}

void CompilationData::saveFilesToDB(FrontendDatabase& db) { saveTable<File>(db); }

// --- The compilation database.

bool CompilationData::saveToCompDB() {
  if (!propagateMacroInfo && !dataNeededForDbLink) return true;
  FrontendDatabase* db = selectDb(/*fromCompDb=*/true, "saveToCompDB");
  if (db == nullptr || !db->beginTransaction()) return false;
  if (savedRows == nullptr) {
    foldStoredRows();
  } else {
    foldUnknownRows();
  }
  auto saved = std::make_unique<SavedRows>();
  const auto save = [&]<class T>() { saveTableAndRemember<T>(*db, *saved); };
  PropagatedElements::each(save);
  if (dataNeededForDbLink) CompilationOnlyElements::each(save);
  if (!db->commitTransaction()) return false;
  SavedElements::each(
      [&]<class T>() { eachElement<T>([&](T& element) { saved->remember(element); }); });
  savedRows = std::move(saved);
  return true;
}

template <class T>
void CompilationData::saveTableAndRemember(FrontendDatabase& db, SavedRows& saved) {
  eachElement<T>([&](T& element) {
    if (savedRows != nullptr && savedRows->leavesRowAlone(element)) {
      saved.leaveRowAlone(element);
      return;
    }
    const bool looksForItsRow = element.dirty && element.getId() == 0;
    const int changesBefore = looksForItsRow ? db.countChanges() : 0;
    element.saveToDB(db);
    const bool isFound = looksForItsRow && element.getId() != 0;
    if (isFound && db.countChanges() == changesBefore) saved.leaveRowAlone(element);
  });
  if (savedRows == nullptr) return;
  for (T* element : savedRows->returned<T>()) {
    if (!savedRows->leavesRowAlone(*element)) rewrite(*element, db);
  }
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
}

/// At a further save of this dataset the counts of most rows are in memory: those of the rows that
/// it has read or written itself. Only the others are merged.
void CompilationData::foldUnknownRows() {
  FrontendDatabase& db = *compDb;
  SavedElements::each([this, &db]<class T>() { savedRows->giveBack<T>(db); });
  const auto fold = [this, &db]<class T>() {
    T::isLoaded = false;
    loadTable<T>(db, [&db](T& row) { return !db.isInIdCache<T>(row.getId()); });
    T::isPreLoaded = !std::is_same_v<T, File>;
  };
  TypeList<File, Identifier, Type>::each(fold);
}

// --- The preprocessing database.

bool CompilationData::saveToPpDB() {
  Debug debug(2, "CompilationData::saveToPpDB");
  DebugTimer timer(2, "CompilationData::saveToPpDB");
  FrontendDatabase* db = selectDb(/*fromCompDb=*/false, "saveToPpDB");
  if (db == nullptr || !db->beginTransaction()) return false;
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
  macroExpansionState = MacroExpansionState::Saved;
  return db->commitTransaction();
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
}

}  // namespace orvalesca::databases_merger
