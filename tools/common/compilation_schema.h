#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace fe_db_tools {

/// Whether a new file gets the indexes that key look-ups use: worth their cost in a file that many
/// processes save into, not in one that is written once.
enum class KeyIndexes { no, yes };

/// The bytes of an empty compilation database with all tables.
std::string emptyCompilationDatabase(KeyIndexes indexes);

/// Makes such a file at `path`, whole or not at all.
/// Throws std::runtime_error, naming the path and the reason, when something is there already or
/// the file cannot be written.
void createCompilationDatabase(const std::string& path, KeyIndexes indexes);

/// The same for a preprocessing database, made at once.
void createPreprocessingDatabase(const std::string& path);

/// A table that a compilation database may lack, and the text that creates it.
struct ExtensionTable {
  std::string_view name;
  std::string sql;
};
std::vector<ExtensionTable> extensionTables();

/// Rows of all tables together. Throws std::runtime_error if they cannot be read.
std::size_t countRows(const std::string& path);

}  // namespace fe_db_tools
