#pragma once

#include <string>
#include <vector>

namespace fe_db_tools {

/// Replaces `@LISTFILE` and `-` (standard input) by the paths that they list, one a line. Throws
/// std::runtime_error when a list cannot be read.
std::vector<std::string> expandSources(const std::vector<std::string>& arguments);

/// Two of these names mean one file, whatever they look like: "a.db and b/../a.db are the same
/// file". Empty when all are different. Names of no file are not compared.
std::string findSameFile(const std::string& target, const std::vector<std::string>& sources);

}  // namespace fe_db_tools
