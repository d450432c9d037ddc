#pragma once

#include <string>

#include "clang_run.h"
#include "unit.h"

namespace fe_db_tools {

struct RecordOptions {
  std::string outputDirectory;
  ParseOptions parse;
  bool keepPreprocessed = false;
  std::string name;      ///< of the files, without ending; empty: the unit's own
  bool force = false;    ///< also what has not changed since it was recorded
  unsigned timeout = 0;  ///< seconds for a unit; 0: no end

  std::string nameOf(const Unit& unit) const { return name.empty() ? unit.name() : name; }
};

/// Parses the unit in this process, from the current directory, and writes its files. False, with
/// diagnostics or a message on standard error, when it does not parse or a file cannot be written;
/// then the unit has no files, unless `keepGoing` saves what there is of one with errors. At most
/// once in a process: saving uses process-wide flags.
bool recordUnit(const Unit& unit, const RecordOptions& options);

}  // namespace fe_db_tools
