#pragma once

#include "persistence/export.h"

struct sqlite3;
struct sqlite3_stmt;

/// The one place through which both libraries write to standard error, traces apart. Texts that
/// come from a file are escaped (escaped_text.h).
namespace persistence {

/// Reports an SQLite result code:
///   orvalesca: sqlite error:unknown:<source>:<line>: rc=<rc> (expected rc=<expected>) <reason>
/// followed by "While executing <statement with its values>" when a statement is given.
SHARED_PERSISTENCE_EXPORT void reportSqlite(int rc, int expected, sqlite3* connection,
                                            sqlite3_stmt* whileExecuting = nullptr,
                                            int line = __builtin_LINE());

/// Names a query that could not be compiled, in front of the report of its code:
///   Error: executing SQL query:<sql>
SHARED_PERSISTENCE_EXPORT void reportQuery(const char* sql);

/// Reports anything else: "orvalesca: " and the printf-style message, one line.
SHARED_PERSISTENCE_EXPORT void reportMessage(const char* format, ...)
    __attribute__((format(printf, 1, 2)));

}  // namespace persistence
