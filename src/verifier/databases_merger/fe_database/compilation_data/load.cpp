#include "fe_database/compilation_data/load_table.h"
#include "fe_database/compilation_database/rollback_guard.h"
#include "fe_database/compilation_database/row_validity.h"
#include "fe_db/compilation_database.h"
#include "persistence/sqlite_report.h"

namespace orvalesca::databases_merger {

FrontendDatabase* CompilationData::selectDb(bool fromCompDb, const char* operation) const {
  FrontendDatabase* db = fromCompDb ? static_cast<FrontendDatabase*>(compDb.get()) : ppDb.get();
  if (db == nullptr) {
    persistence::reportMessage("CompilationData::%s: no %s database", operation,
                               fromCompDb ? "compilation" : "preprocessing");
  }
  return db;
}

bool CompilationData::preLoadFromDB(bool fromCompDb) {
  FrontendDatabase* db = selectDb(fromCompDb, "preLoadFromDB");
  if (db == nullptr || !db->beginReading()) return false;
  {
    RollbackOnException guard(*db);
    loadTable<File>(*db);
  }
  return db->commitTransaction();
}

bool CompilationData::loadFromDB(bool fromCompDb) {
  FrontendDatabase* db = selectDb(fromCompDb, "loadFromDB");
  if (db == nullptr || !db->beginReading()) return false;
  loadTable<File>(*db);
  loadTable<Identifier>(*db);
  loadTable<Macro>(*db);
  loadTable<MacroInvocation>(*db);
  if (!fromCompDb) loadCodeOrigins(*db);
  if (fromCompDb && dataNeededForDbLink) {
    loadTable<Type>(*db);
    loadTable<Variable>(*db);
    loadTable<Function>(*db);
    loadTable<ExternalIdentifier>(*db);
    loadTable<Field>(*db);
    loadTable<EnumConstant>(*db);
    loadTable<Label>(*db);
    loadTable<CallPoint>(*db);
    ExtensionElements::each([this, db]<class T>() { loadTable<T>(*db); });
  }
  loadMacroInfoFromDB(*db);
  return db->commitTransaction();
}

bool CompilationData::loadMacroExpansionFromPbDB(PreprocessingDatabase& db) {
  if (isMacroExpansionLoaded()) return true;
  if (!db.beginReading()) return false;
  {
    RollbackOnException guard(db);
    loadTable<File>(db);
    loadTable<Identifier>(db);
    loadTable<Macro>(db);
    loadMacroInfoFromDB(db);
  }
  return db.commitTransaction();
}

/// Each call appends again. The elements keep no id: no table refers to their rows.
void CompilationData::loadCodeOrigins(FrontendDatabase& db) {
  MacroInvocationCodeOrigin row;
  bool first = true;
  while (db.listALL(first, row) != 0) {
    MacroInvocationCodeOrigin* origin = emplaceFromDB(row, /*accumulate=*/true);
    // A row of a damaged file may have lost its invocation; the token itself is kept.
    if (origin->getInvocation() != nullptr) origin->getInvocation()->insertCodeOrigin(origin);
  }
}

void CompilationData::loadMacroInfoFromDB(FrontendDatabase& db) {
  if (isMacroExpansionLoaded() || db.getKind() != DatabaseKind::Preprocessing) return;
  MacroExpansion row;
  bool first = true;
  while (db.listALL(first, row) != 0) {
    macroExpansionsByLine.emplace(row.getLocalization(), row.getExpandedCode(), row.getMacroCall(),
                                  row.getPpLine(), row.getPpColumn());
  }
  macroExpansionState = MacroExpansionState::Loaded;
}

}  // namespace orvalesca::databases_merger
