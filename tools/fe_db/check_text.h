#pragma once

#include <string>
#include <string_view>

#include "check_rules.h"

namespace fe_db_tools {

/// What `fe_db_record --keep-preprocessed` wrote. Throws std::runtime_error when it cannot be read.
std::string readText(const std::string& path);

/// Whether each expansion and each token of a preprocessing database stands where its row says, in
/// the preprocessed text of its unit. Tells as checkFile() does.
void checkText(const ReadOnlyFile& file, std::string_view preprocessed, const Tell& tell);

}  // namespace fe_db_tools
