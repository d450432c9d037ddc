#pragma once

#include <optional>
#include <string>

#include "fe_db/compilation_data_merger.h"
#include "fe_db/compilation_database.h"
#include "new_file.h"
#include "removed_on_signal.h"

namespace fe_db_tools {

/// The file that sources are merged into. An existing one stays locked against other writers for
/// the life of this object, and is rewritten in one transaction. A new one is built under a
/// temporary name. Either way the file is unchanged until write() returns.
class MergeTarget {
 public:
  enum class Content { kept, replaced };

  /// Reads the whole file if it exists and its content is kept. Throws std::runtime_error when it
  /// cannot be read or locked, or has rows that the rewriting would lose.
  MergeTarget(std::string path, Content content, int waitSeconds);

  orvalesca::databases_merger::CompilationDataMerger& getMerger() { return *merger; }
  bool isNew() const { return newFile.has_value(); }

  /// Search indexes are dropped first, as they would slow the writing, and made in the end if
  /// `withIndexes`. Throws std::runtime_error; nothing was written then.
  void write(bool withIndexes);

  /// Rows that the file had before, and has after write().
  unsigned long long getFactsBefore() const { return factsBefore; }
  unsigned long long factsStored() const { return db->countRowsAdded(); }

 private:
  void load();
  void refuseLoss() const;
  void makeAnew();

  std::string path;
  Content content;
  int waitSeconds;
  // In an order in which they can be destroyed: SQLite removes its journal, the names may be
  // another run's after that of the new file.
  std::optional<NewFile> newFile;
  std::optional<RemovedOnSignal> removedOnSignal;
  std::optional<orvalesca::databases_merger::CompilationDataMerger> merger;
  orvalesca::databases_merger::CompilationDatabase* db = nullptr;
  unsigned long long factsBefore = 0;
};

}  // namespace fe_db_tools
