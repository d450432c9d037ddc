#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "read_only_file.h"
#include "tables.h"

namespace fe_db_tools {

/// What check has to say.
struct Remark {
  bool isNote;                       ///< otherwise a finding: damage
  std::optional<sqlite3_int64> row;  ///< its id, unless the whole table or file is meant
  std::string reason;
};

/// Calls tell(null, what there is to say of the file as a whole), then tell(table, ...) for each
/// table in table order, by row id. Looks at what is there: rules that need missing tables or
/// columns are left out, and a table that cannot be read to its end is a finding. Throws what else
/// ReadOnlyFile throws.
using Tell = std::function<void(const Table*, const std::vector<Remark>&)>;
void checkFile(const ReadOnlyFile& file, const Tell& tell);

}  // namespace fe_db_tools
