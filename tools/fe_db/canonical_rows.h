#pragma once

#include <string_view>

#include "read_only_file.h"

namespace fe_db_tools {

/// The rows of a table as lines (see LineQuery), sorted by bytes: SQLite's sorter does it outside
/// of memory. A table that a file of its kind does not have gives none. The file outlives this.
class CanonicalRows {
 public:
  CanonicalRows(const ReadOnlyFile& file, const Table& table);

  /// Moves to the next line, first to the first one; false after the last.
  bool next();
  /// REQUIRES: the last next() returned true. Valid until the next call of it.
  std::string_view getLine() const { return line; }

 private:
  const ReadOnlyFile& file;
  Statement statement;
  std::string_view line;
};

}  // namespace fe_db_tools
