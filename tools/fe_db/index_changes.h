#pragma once

#include <set>
#include <string>

#include "fe_db/compilation_database.h"

/// Search indexes of a compilation database, inside the transaction that is open on it. The
/// first failure, which the database reports and remembers, ends the work.
namespace fe_db_tools {

void dropSearchIndexes(orvalesca::databases_merger::CompilationDatabase& db);

/// Makes all but those whose SQL text is among `known`.
void makeSearchIndexes(orvalesca::databases_merger::CompilationDatabase& db,
                       const std::set<std::string>& known = {});

/// Makes those of the tables that a compilation database may lack which this one lacks. As above.
void addExtensions(orvalesca::databases_merger::CompilationDatabase& db);

}  // namespace fe_db_tools
