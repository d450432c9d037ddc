#pragma once

#include <string>
#include <string_view>

#include "check_rules.h"

namespace fe_db_tools {

/// What `fe_db_record --keep-preprocessed` wrote. Throws std::runtime_error when it cannot be read.
std::string readText(const std::string& path);

/// Whether each expansion and each token of a preprocessing database is where its row says, in the
/// preprocessed text of its unit. Reports like checkFile().
void checkText(const ReadOnlyFile& file, std::string_view preprocessed, const Reporter& report);

}  // namespace fe_db_tools
