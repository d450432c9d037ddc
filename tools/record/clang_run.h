#pragma once

#include <string>
#include <vector>

#include "ast_recorder.h"

namespace fe_db_tools {

struct ParseOptions {
  SystemFacts system = SystemFacts::referenced;
  std::string resourceDirectory;  ///< with the compiler's own headers; empty: as built
};

/// Parses one source with Clang, from the current directory, and records what it finds.
///
/// `arguments`: compiler flags and one source; the compiler's own name is not among them.
/// Diagnostics go to standard error; flags that Clang does not know are passed over. The answer is
/// whether the source parsed; only then `preprocessedText` is set and the facts are whole.
bool parseAndRecord(const std::vector<std::string>& arguments, const ParseOptions& options,
                    FactSink& sink, std::string& preprocessedText);

}  // namespace fe_db_tools
