#pragma once

#include <string>
#include <vector>

#include "compile_command.h"

namespace fe_db_tools {

/// What a command makes of its sources.
struct Product {
  bool isCompiled = true;   ///< not only preprocessed, checked or listed
  bool hasPrograms = true;  ///< no -c or -S: linked at once, without objects that stay
  std::string ending = ".o";
  std::string output;  ///< of -o
};

/// `words`: as plainWords gives them.
Product productOf(const std::vector<std::string>& words);

/// As the command would write it; REQUIRES: the product is compiled, and no program.
std::string objectName(const Product& product, const std::string& source);

/// The absolute path of the object that the command makes of the source; empty if it makes none
/// that stays.
std::string objectOf(const CompileCommand& command, const std::string& source);

}  // namespace fe_db_tools
