#include "fe_db/compilation_database.h"

#include <sqlite3.h>

#include "fe_database/compilation_database/rollback_guard.h"
#include "fe_db/schema.h"
#include "persistence/sqlite_report.h"

namespace orvalesca::databases_merger {

CompilationDatabase::CompilationDatabase(std::string_view path, CompilationData* dataset)
    : FrontendDatabase(path, DatabaseKind::Compilation, dataset,
                       !persistence::GenericElement::getOptimisticInsert()) {}

CompilationDatabase::~CompilationDatabase() = default;

PreprocessingDatabase::PreprocessingDatabase(std::string_view path, CompilationData* dataset)
    : FrontendDatabase(path, DatabaseKind::Preprocessing, dataset, /*shared=*/false) {
  mustExist = false;
}

PreprocessingDatabase::~PreprocessingDatabase() = default;

bool PreprocessingDatabase::addTables() {
  if (!beginTransaction()) return false;
  {
    RollbackOnException guard(*this);
    // On a file that has the schema the two indexes fail, and that is how it should be.
    const auto run = [this](const char* sql) {
      if (hasTransactionFailed()) return;
      const int rc = sqlite3_exec(connection, sql, nullptr, nullptr, nullptr);
      if (rc == SQLITE_OK || rc == SQLITE_ERROR) return;
      persistence::reportMessage("%s: cannot make the tables: %s", getPath().c_str(),
                                 sqlite3_errmsg(connection));
      noteFailedWrite("", sqlite3_errmsg(connection));
      failTransaction();
    };
    run(schema::kPageSize);
    for (const char* sql : schema::kSharedTables) run(sql);
    for (const char* sql : schema::kPreprocessingIndexesAndViews) run(sql);
  }
  return commitTransaction() && prepareStatements();
}

}  // namespace orvalesca::databases_merger
