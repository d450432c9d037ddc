#pragma once

#include <string>

#include "fe_db/compilation_data_merger.h"
#include "fe_db/compilation_database.h"

/// What source and target of a merge have in common: a file that is looked at, opened and read to
/// its last row. Each of these throws std::runtime_error with the words for the user.
namespace fe_db_tools {

/// The file is there, is a compilation database, and has all tables and columns.
void checkMergeInput(const std::string& path, int waitSeconds);

/// And no table would lose anything when a program writes it.
void checkWritable(const std::string& path, int waitSeconds);

/// The same for a file that is rewritten. Reports triggers, which the library switches off.
void checkMergeTarget(const std::string& path, int waitSeconds);

/// Connects the merger, which gives its database. `path` is the name that the user knows.
orvalesca::databases_merger::CompilationDatabase& openMergeInput(
    orvalesca::databases_merger::CompilationDataMerger& merger, const std::string& path,
    int waitSeconds);

/// Reads every row of every table.
void loadMergeInput(orvalesca::databases_merger::CompilationDataMerger& merger,
                    const orvalesca::databases_merger::CompilationDatabase& db,
                    const std::string& path);

/// What first went wrong: "table Type: disk I/O error".
std::string failureOf(const orvalesca::databases_merger::CompilationDatabase& db);

}  // namespace fe_db_tools
