#pragma once

#include "command_line.h"

namespace fe_db_tools {

/// Runs the compiler and, when it has compiled C or C++, records that. The answer is the exit code
/// of the compiler, 128 + its number when a signal ended it. Recording never changes that; when it
/// fails, it prints one line on standard error.
int launch(const CommandLine& line);

}  // namespace fe_db_tools
