#pragma once

#include <string>

#include "compilation_schema.h"
#include "sql_rows.h"

/// Small database files with just the rows that a test is about.
namespace fe_db_tests {

inline std::string compilationFile(const std::string& path, const std::string& sql) {
  fe_db_tools::createCompilationDatabase(path, fe_db_tools::KeyIndexes::no);
  execute(path, sql);
  return path;
}

inline std::string preprocessingFile(const std::string& path, const std::string& sql) {
  fe_db_tools::createPreprocessingDatabase(path);
  execute(path, sql);
  return path;
}

}  // namespace fe_db_tests
