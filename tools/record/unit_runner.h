#pragma once

#include <cstddef>
#include <vector>

#include "failure_causes.h"
#include "unit.h"
#include "unit_recorder.h"

namespace fe_db_tools {

struct RunSummary {
  std::size_t recorded = 0;
  std::size_t failed = 0;
  std::size_t reused = 0;  ///< unchanged since they were recorded
  std::size_t facts = 0;   ///< in the files of those recorded
  FailureCauses causes;    ///< of the failures
};

enum class Messages { all, oneLine };

/// Records each unit that has changed in a process of its own, a fresh run of this program: saving
/// is one unit per process, and a compiler that crashes takes only its own source along. At most
/// `jobs` at a time. What a process prints on standard error is passed on in one piece when it
/// ends, or only the line about the result; then there is no progress report
/// either.
RunSummary runUnits(const std::vector<Unit>& units, const RecordOptions& options, std::size_t jobs,
                    Messages messages = Messages::all);

}  // namespace fe_db_tools
