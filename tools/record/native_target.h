#pragma once

#include <string>

namespace fe_db_tools {

/// True of the target that Clang has without being told, however it is written, and of none at all.
bool isNativeTarget(const std::string& target);

}  // namespace fe_db_tools
