#pragma once

#include <string>

#include "check_rules.h"

namespace fe_db_tools {

/// Whether each expansion and each token of a preprocessing database is where its row says, in the
/// preprocessed text that `fe_db_record --keep-preprocessed` wrote next to it. Reports like
/// checkFile(). Throws std::runtime_error if the text cannot be read.
void checkText(const ReadOnlyFile& file, const std::string& textPath, const Reporter& report);

}  // namespace fe_db_tools
