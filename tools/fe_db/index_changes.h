#pragma once

#include <set>
#include <string>

#include "fe_db/compilation_database.h"

/// Search indexes and views of a compilation database, inside the transaction that is open on it.
/// The first failure, which the database reports and remembers, ends the work.
namespace fe_db_tools {

void dropSearchIndexes(orvalesca::databases_merger::CompilationDatabase& db);

/// Makes all but those whose SQL text is among `known`.
void makeSearchIndexes(orvalesca::databases_merger::CompilationDatabase& db,
                       const std::set<std::string>& known = {});

/// The texts of the file's own indexes: an index of a known name may still be a different one.
std::set<std::string> indexTexts(const std::string& path, int waitSeconds);

/// What else has a name of one of the views: it is left alone. Names in lower case.
std::set<std::string> foreignViewNames(const std::string& path, int waitSeconds);

void dropViews(orvalesca::databases_merger::CompilationDatabase& db,
               const std::set<std::string>& foreign);
/// Makes the views anew whose tables exist.
void makeViews(orvalesca::databases_merger::CompilationDatabase& db,
               const std::set<std::string>& foreign);

/// Makes those of the tables that a compilation database may lack which this one lacks. As above.
void addExtensions(orvalesca::databases_merger::CompilationDatabase& db);

}  // namespace fe_db_tools
