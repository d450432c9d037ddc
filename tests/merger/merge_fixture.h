#pragma once

#include <filesystem>

#include "fe_db/compilation_data_merger.h"
#include "fe_db/compilation_database.h"
#include "tools/fe_db_fixture.h"

namespace fe_db_tests {

using orvalesca::databases_merger::CompilationDataMerger;

struct MergeTest : FeDbProgram {
  /// A new compilation database with these rows.
  std::string file(const std::string& name, const std::string& sql) const {
    std::filesystem::remove(path(name));
    return compilationFile(path(name), "PRAGMA synchronous=OFF; BEGIN;" + sql + ";COMMIT");
  }

  struct Loaded : CompilationDataMerger {
    explicit Loaded(const std::string& path, bool isTarget = false)
        : CompilationDataMerger(path), db(openDB()) {
      if (isTarget) beginTransaction();
      loadDataFromDB();
    }
    orvalesca::databases_merger::CompilationDatabase& db;
  };

  /// Whether it was committed.
  static bool rewrite(Loaded& target) {
    target.truncateDataFromDB();
    target.saveToDB();
    return target.db.commitTransaction();
  }
  static bool merge(const std::string& target, const std::vector<std::string>& sources) {
    Loaded merger(target, /*isTarget=*/true);
    for (const std::string& source : sources) merger.mergeCompilationTables(Loaded(source));
    return rewrite(merger);
  }
};

}  // namespace fe_db_tests
