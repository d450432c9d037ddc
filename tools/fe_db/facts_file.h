#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "read_only_file.h"
#include "views.h"

namespace fe_db_tools {

/// A compilation database that is asked by SQL, with the views whether the file has them or not.
/// Its SQL functions: `qualified(scope, name, identifier)` and `escaped(text)`, which gives valid
/// UTF-8 in one line.
class FactsFile {
 public:
  /// Throws std::runtime_error if it is no compilation database, or cannot be read.
  FactsFile(const std::string& path, int waitSeconds);

  const std::string& getPath() const { return file.getPath(); }
  bool hasTable(std::string_view name) const { return tables.contains(name); }
  bool hasRows(std::string_view table) const;

  /// "(SELECT ...)", to be asked from by row ids: rows whose names do not exist have NULL for them.
  std::string view(std::string_view name) const;
  /// The same, to be asked from by names.
  std::string viewByName(std::string_view name) const;

  Statement prepare(const std::string& sql) const { return file.prepare(sql); }
  bool step(const Statement& statement) const { return file.step(statement); }
  /// The values of the first column.
  std::vector<long long> numbers(const std::string& sql, std::string_view parameter = {}) const;
  std::vector<std::string> texts(const std::string& sql, std::string_view parameter = {}) const;

 private:
  Statement bound(const std::string& sql, std::string_view parameter) const;

  ReadOnlyFile file;
  std::set<std::string, std::less<>> tables;
  std::vector<View> views;
  std::vector<View> viewsOfNames;
};

/// The text of a column; empty for NULL. Valid until the statement moves.
std::string_view textOf(const Statement& row, int column);
bool isNull(const Statement& row, int column);

/// "(1, 2, 3)".
std::string idList(const std::vector<long long>& ids);

}  // namespace fe_db_tools
