#pragma once

#include <memory>
#include <string>

#include "compilation_schema.h"
#include "fe_db/compilation_database.h"
#include "sql_rows.h"
#include "sql_trace.h"
#include "test_dataset.h"

namespace fe_db_tests {

/// A fixture whose dataset has a connected compilation database, all of its tables empty, and a
/// preprocessing database that is not connected.
class CompilationTest : public DatasetTest {
 protected:
  CompilationTest() {
    fe_db_tools::createCompilationDatabase(compFile, fe_db_tools::KeyIndexes::no);
    openAgain();
  }

  /// A dataset of a new process on the same file: nothing in memory, flags as at a start.
  void openAgain() {
    data.reset();
    resetProcessFlags();
    data = CompilationData::newInstance(compFile, ppFile);
    ASSERT_TRUE(db().quick_connect(false));
    trace.take();
  }
  CompilationDatabase& db() { return data->getCompDb(); }
  std::string rows(const std::string& sql) const { return fe_db_tests::rows(compFile, sql); }
  std::string writtenRows(std::string_view table) const {
    return fe_db_tests::writtenRows(compFile, table);
  }
  void execute(const std::string& sql) const { fe_db_tests::execute(compFile, sql); }

  SqlTrace trace;
  const std::string compFile = path("comp.db");
  const std::string ppFile = path("pp.db");
};

}  // namespace fe_db_tests
