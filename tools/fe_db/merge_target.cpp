#include "merge_target.h"

#include <sqlite3.h>

#include <filesystem>
#include <stdexcept>

#include "compilation_schema.h"
#include "index_changes.h"
#include "merge_input.h"

namespace fe_db_tools {
namespace {

/// After a failure in the middle of a write SQLite leaves pages of it in the file, and the journal
/// next to it, until a program reads the file; a journal that nothing of it depends on stays until
/// the next write. If this fails, the next program that reads the file does it.
void rollBackIncompleteWrite(const std::string& path) {
  sqlite3* connection = nullptr;
  const std::string file = std::filesystem::absolute(path).string();  // no name is a URI
  if (sqlite3_open_v2(file.c_str(), &connection, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK) {
    // Leaving the mode that keeps journals deletes the one that is there, under the write lock.
    sqlite3_exec(connection,
                 "SELECT count(*) FROM sqlite_schema; PRAGMA journal_mode=PERSIST; "
                 "PRAGMA journal_mode=DELETE",
                 nullptr, nullptr, nullptr);
  }
  sqlite3_close(connection);
}

}  // namespace

MergeTarget::MergeTarget(std::string file, Content treatment, int waitTime)
    : path(std::move(file)), content(treatment), waitSeconds(waitTime) {
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
  if (content == Content::kept) load();
}

void MergeTarget::load() {
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

/// In place, inside the transaction: another name for the file still means the same file, and who
/// waits for its lock waits for the right one. Failures fail the transaction.
void MergeTarget::makeAnew() {
  for (const char* table : {"MacroInvocation", "MacroInvocationCodeOrigin", "MacroExpansion"}) {
    (void)db->execute(std::string("DELETE FROM ") + table);
  }
  if (db->hasTable("sqlite_sequence")) (void)db->execute("DELETE FROM sqlite_sequence");
  addExtensions(*db);
}

void MergeTarget::write(bool withIndexes) {
  // Read while nobody else can write; a new file has nothing of its own yet.
  const auto foreign = isNew() ? std::set<std::string>() : foreignViewNames(path, waitSeconds);
  dropSearchIndexes(*db);
  if (content == Content::replaced && !isNew()) makeAnew();
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
