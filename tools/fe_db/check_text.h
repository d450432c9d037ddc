#pragma once

#include <string>

#include "check_rules.h"

namespace fe_db_tools {

/// Whether each expansion and each token of a preprocessing database stands where its row says, in
/// the preprocessed text that `fe_db_record --keep-preprocessed` wrote beside it. Tells as
/// checkFile() does. Throws std::runtime_error when the text cannot be read.
void checkText(const ReadOnlyFile& file, const std::string& textPath, const Tell& tell);

}  // namespace fe_db_tools
