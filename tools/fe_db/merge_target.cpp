#include "merge_target.h"

#include <stdexcept>

#include "compilation_schema.h"
#include "index_changes.h"
#include "merge_input.h"
#include "read_only_file.h"

namespace fe_db_tools {
namespace {

/// After a failure in the middle of a write SQLite leaves pages of it in the file, and the journal
/// beside it, until somebody reads the file. Where that does not work now, the next program does
/// it.
void takeBackHalfDoneWrite(const std::string& path) {
  try {
    const ReadOnlyFile file(path, /*waitSeconds=*/0);
  } catch (const std::runtime_error&) {
  }
}

}  // namespace

MergeTarget::MergeTarget(std::string path, Content content, int waitSeconds)
    : path_(std::move(path)), content_(content) {
  if (!isTaken(path_)) {
    newFile_.emplace(path_, waitSeconds);
    // Another run may have made the file while this one waited for the temporary name.
    if (isTaken(path_)) newFile_.reset();
  } else {
    WorkDirectory::removeLeftover(path_);  // of a run that was killed when the file had its name
  }
  if (isNew()) {
    // A target that was there needs nothing: SQLite brings it back, from its journal, when it is
    // opened next.
    removedOnSignal_.emplace(newFile_->temporaryNames());
    newFile_->write(emptyCompilationDatabase(KeyIndexes::no));
  } else {
    checkMergeTarget(path_, waitSeconds);
  }
  merger_.emplace(isNew() ? newFile_->temporaryPath() : path_);
  db_ = &openMergeInput(*merger_, path_, waitSeconds);
  // Before the load: what somebody saved between the two would be lost.
  if (!db_->beginTransaction()) {
    throw std::runtime_error(path_ +
                             ": cannot be locked for writing; check that it is writable and that "
                             "no other program is writing it, or increase --wait");
  }
  if (content_ == Content::kept) load();
}

void MergeTarget::load() {
  loadMergeInput(*merger_, *db_, path_);
  factsBefore_ = db_->countRowsListed();
  refuseLoss();
}

void MergeTarget::refuseLoss() const {
  if (db_->leftOutRows().empty()) return;
  std::string tables;
  for (const auto& [table, rows] : db_->leftOutRows()) {
    if (!tables.empty()) tables += ", ";
    tables += table + ' ' + std::to_string(rows);
  }
  throw std::runtime_error(path_ + ": it has rows that cannot be merged and would be lost (" +
                           tables + "); remove them, or merge into a new file");
}

/// In place, inside the transaction: another name for the file still means the same file, and who
/// waits for its lock waits for the right one. Failures fail the transaction.
void MergeTarget::makeAnew() {
  for (const char* table : {"MacroInvocation", "MacroInvocationCodeOrigin", "MacroExpansion"}) {
    (void)db_->execute(std::string("DELETE FROM ") + table);
  }
  if (db_->hasTable("sqlite_sequence")) (void)db_->execute("DELETE FROM sqlite_sequence");
  addExtensions(*db_);
}

void MergeTarget::write(bool withIndexes) {
  dropSearchIndexes(*db_);
  if (content_ == Content::replaced && !isNew()) makeAnew();
  merger_->truncateDataFromDB();
  merger_->saveToDB();
  if (withIndexes) makeSearchIndexes(*db_);
  if (!db_->commitTransaction()) {
    const std::string failure = failureOf(*db_);
    merger_->closeDB();
    if (!isNew()) takeBackHalfDoneWrite(path_);
    throw std::runtime_error(path_ + ": nothing was written: " + failure);
  }
  merger_->closeDB();
  if (isNew()) newFile_->publish();
}

}  // namespace fe_db_tools
