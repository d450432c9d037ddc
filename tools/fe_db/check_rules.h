#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "read_only_file.h"
#include "tables.h"

namespace fe_db_tools {

/// One result of a check.
struct Remark {
  bool isNote;                       ///< otherwise a finding: damage
  std::optional<sqlite3_int64> row;  ///< its id, unless the whole table or file is meant
  std::string reason;
};

/// Calls report(null, the results for the file as a whole), then report(table, ...) for each table
/// in table order, by row id. Checks what exists: rules that need missing tables or columns are
/// skipped, and a table that cannot be read to its end is a finding. Throws other failures of
/// ReadOnlyFile.
using Reporter = std::function<void(const Table*, const std::vector<Remark>&)>;
void checkFile(const ReadOnlyFile& file, const Reporter& report);

}  // namespace fe_db_tools
