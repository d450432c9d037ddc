#pragma once

#include <string>
#include <vector>

#include "ast_recorder.h"
#include "manifest.h"

namespace fe_db_tools {

struct ParseOptions {
  SystemFacts system = SystemFacts::referenced;
  std::string resourceDirectory;  ///< with the compiler's own headers; empty: as built
  bool keepGoing = false;         ///< record what can be had of a source with errors
};

enum class ParseResult { whole, withErrors, failed };

/// Parses one source with Clang, from the current directory, and records what it finds.
///
/// `arguments`: compiler flags and one source; the compiler's own name is not among them.
/// Diagnostics go to standard error; flags that Clang does not know are passed over. Unless
/// it failed, `preprocessedText` is set; only if it is whole the facts are, too.
ParseResult parseAndRecord(const std::vector<std::string>& arguments, const ParseOptions& options,
                           FactSink& sink, UnitInputs& inputs, std::string& preprocessedText);

}  // namespace fe_db_tools
