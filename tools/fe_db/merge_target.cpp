#include "merge_target.h"

#include <stdexcept>

#include "compilation_schema.h"
#include "index_changes.h"
#include "merge_input.h"
#include "read_only_file.h"

namespace fe_db_tools {
namespace {

/// After a failure in the middle of a write SQLite leaves pages of it in the file, and the journal
/// next to it, until a program reads the file. If that fails now, the next program that reads the
/// file does it.
void rollBackIncompleteWrite(const std::string& path) {
  try {
    const ReadOnlyFile file(path, /*waitSeconds=*/0);
  } catch (const std::runtime_error&) {
  }
}

}  // namespace

MergeTarget::MergeTarget(std::string file, int waitTime)
    : path(std::move(file)), waitSeconds(waitTime) {
  if (!isTaken(path)) {
    newFile.emplace(path, waitSeconds);
    // Another run may have made the file while this one waited for the temporary name.
    if (isTaken(path)) newFile.reset();
  } else {
    WorkDirectory::removeLeftover(path);  // of a run that was killed when the file had its name
  }
  if (isNew()) {
    // An existing target needs nothing: SQLite restores it from its journal when it is opened
    // next.
    removedOnSignal.emplace(newFile->temporaryNames());
    newFile->write(emptyCompilationDatabase(KeyIndexes::no));
  } else {
    checkMergeTarget(path, waitSeconds);
  }
  merger.emplace(isNew() ? newFile->temporaryPath() : path);
  db = &openMergeInput(*merger, path, waitSeconds);
  // Before the load: a save between the two would be lost.
  if (!db->beginTransaction()) {
    throw std::runtime_error(path +
                             ": cannot be locked for writing; check that it is writable and that "
                             "no other program is writing it, or increase --wait");
  }
  loadMergeInput(*merger, *db, path);
  factsBefore = db->countRowsListed();
  refuseLoss();
}

void MergeTarget::refuseLoss() const {
  if (db->leftOutRows().empty()) return;
  std::string tables;
  for (const auto& [table, rows] : db->leftOutRows()) {
    if (!tables.empty()) tables += ", ";
    tables += table + ' ' + std::to_string(rows);
  }
  throw std::runtime_error(path + ": it has rows that cannot be merged and would be lost (" +
                           tables + "); remove them, or merge into a new file");
}

void MergeTarget::write(bool withIndexes) {
  // Read while nobody else can write; a new file has nothing of its own yet.
  const auto foreign = isNew() ? std::set<std::string>() : foreignViewNames(path, waitSeconds);
  dropSearchIndexes(*db);
  merger->truncateDataFromDB();
  merger->saveToDB();
  if (withIndexes) makeSearchIndexes(*db);
  makeViews(*db, foreign);
  if (!db->commitTransaction()) {
    const std::string failure = failureOf(*db);
    merger->closeDB();
    if (!isNew()) rollBackIncompleteWrite(path);
    throw std::runtime_error(path + ": nothing was written: " + failure);
  }
  merger->closeDB();
  if (isNew()) newFile->publish();
}

}  // namespace fe_db_tools
