#pragma once

#include <string>
#include <vector>

#include "unit.h"

namespace fe_db_tools {

struct CompileDatabase {
  std::vector<Unit> units;  ///< in the order of the file, each source and flags once
  std::vector<RefusedUnit> refused;
  std::size_t skipped = 0;  ///< assembler sources, headers to be precompiled
};

/// Reads a compile_commands.json, given as the file or as its directory. Throws
/// std::runtime_error, naming the file and what to do, when it cannot be read.
CompileDatabase readCompileDatabase(const std::string& path);

}  // namespace fe_db_tools
