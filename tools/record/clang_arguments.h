#pragma once

#include <string>
#include <vector>

#include "clang_run.h"

namespace fe_db_tools {

/// The command that makes Clang read the unit as its compiler does.
std::vector<std::string> clangArguments(const Unit& unit, const ParseOptions& options);

}  // namespace fe_db_tools
