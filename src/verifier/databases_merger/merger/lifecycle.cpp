#include <stdexcept>

#include "fe_db/compilation_data_merger.h"
#include "merger/merger_impl.h"
#include "persistence/sqlite_report.h"

namespace orvalesca::databases_merger {

using persistence::reportMessage;

mergerImpl::mergerImpl(std::string_view path) {
  if (path.empty()) throw std::invalid_argument("CompilationDataMerger: the path is empty");
  dataset = CompilationData::newInstance(path, "");
  database = &dataset->getCompDb();
  // Tables and statements are those of a compilation database; only its named searches are not.
  database->kind = DatabaseKind::Merge;
  database->allOrNothing = true;
  dataset->setDataNeededForDbLink();
}

CompilationDatabase& mergerImpl::openDB() {
  (void)database->quick_connect(/*readOnly=*/false);  // the caller asks isConnected()
  return *database;
}

void mergerImpl::closeDB() { database->disconnect(); }

void mergerImpl::beginTransaction() { lockFailed = !database->beginTransaction(); }

/// Who wants the answer commits through the database that openDB() gives.
void mergerImpl::commitTransaction() { (void)database->commitTransaction(); }

/// The tables are emptied before they are written, so whatever is not in memory by then is lost.
/// Says once why not, and fails the transaction that the caller may have begun.
bool mergerImpl::mayRewrite(const char* operation) {
  const char* reason = nullptr;
  if (!database->isConnected()) {
    reason = "the database is not connected";
  } else if (database->hasFailed() || isIncomplete) {
    reason = "rows of it or of a source could not be read";
  } else if (!database->leftOutRows().empty()) {
    reason = "it has rows that cannot be merged and would be lost";
  } else if (isConsumed) {
    reason = "it was merged into another one";
  } else if (lockFailed) {
    reason = "its transaction could not be begun";
  }
  if (reason == nullptr) return true;
  if (!refusalReported) {
    reportMessage("%s: %s: not done: %s", database->getPath().c_str(), operation, reason);
  }
  refusalReported = true;
  database->failTransaction();
  return false;
}

void mergerImpl::truncateDataFromDB() {
  if (!mayRewrite("truncateDataFromDB")) return;
  database->findExtensions();  // a program may have made some in its transaction
  MergedElements::each([this]<class T>() {
    if (database->has<T>()) database->truncate<T>();
  });
}

// --- The exported class.

CompilationDataMerger::CompilationDataMerger(std::string_view path)
    : impl(std::make_unique<mergerImpl>(path)) {}

CompilationDataMerger::~CompilationDataMerger() = default;

CompilationDatabase& CompilationDataMerger::openDB() { return impl->openDB(); }
void CompilationDataMerger::closeDB() { impl->closeDB(); }
void CompilationDataMerger::beginTransaction() { impl->beginTransaction(); }
void CompilationDataMerger::commitTransaction() { impl->commitTransaction(); }
void CompilationDataMerger::setDebug() { impl->setDebug(); }
void CompilationDataMerger::truncateDataFromDB() { impl->truncateDataFromDB(); }
void CompilationDataMerger::loadDataFromDB() { impl->loadDataFromDB(); }
void CompilationDataMerger::saveToDB() { impl->saveToDB(); }
const UnitSet& CompilationDataMerger::getUnits() const { return impl->getUnits(); }
std::vector<std::string> CompilationDataMerger::tablesNotInFile() const {
  return impl->tablesNotInFile();
}

void CompilationDataMerger::mergeCompilationTables(CompilationDataMerger const& other) {
  impl->mergeCompilationTables(*other.impl);
}

}  // namespace orvalesca::databases_merger
