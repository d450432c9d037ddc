#pragma once

#include <set>
#include <string>
#include <vector>

#include "ast_recorder.h"
#include "manifest.h"

namespace fe_db_tools {

struct Unit;

struct ParseOptions {
  SystemFacts system = SystemFacts::referenced;
  ReferenceFacts references = ReferenceFacts::all;
  std::string resourceDirectory;              ///< with the compiler's own headers; empty: as built
  bool keepGoing = false;                     ///< record what can be had of a source with errors
  std::vector<std::string> extraArguments;    ///< for Clang alone, after all others
  std::vector<std::string> removedArguments;  ///< patterns of flags that Clang does not get
};

enum class ParseOutcome { whole, withErrors, failed };

struct ParseResult {
  ParseOutcome outcome = ParseOutcome::failed;
  std::string preprocessedText;
  std::string problem;  ///< why the source was not parsed, where that is not in a diagnostic
  /// Names of library functions that the source uses for something else. It failed because Clang
  /// knows these functions; it may not if it is told so.
  std::set<std::string> ownNames;
  std::string advice;  ///< what may help, empty where nothing is known to
};

/// Parses the unit with Clang, from the current directory, and records what it finds. Diagnostics
/// go to standard error; flags that Clang does not know are passed over. Only if the outcome is
/// whole the facts are, too.
ParseResult parseAndRecord(const Unit& unit, const ParseOptions& options, FactSink& sink,
                           UnitInputs& inputs);

}  // namespace fe_db_tools
