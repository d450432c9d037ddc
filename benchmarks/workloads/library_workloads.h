#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "measured.h"

/// The operations of the library in practice, one per function. Failures throw
/// std::runtime_error.
namespace fe_db_benchmarks {

/// The facts of one generated unit, recorded into a dataset and saved into `path`, a compilation
/// database that exists. `fresh` says that it is empty, and that no other program writes it.
struct Recorded {
  std::size_t occurrences = 0;
  std::size_t rows = 0;  ///< added to the file
  Spent record, save;
};
Recorded recordAndSave(std::uint64_t seed, std::size_t unit, const std::string& path, bool fresh);

/// Emplaces a thousand elements of a unit again, `count` repeats in all, `kind` being "type by
/// key", "type by name", "variable by key" or "macro by key". Returns the time.
Spent emplaceRepeats(const std::string& kind, std::size_t count);

/// The steps of a merge, in one thread, each measured by itself.
struct Merged {
  std::size_t rowsIn = 0, rowsOut = 0;
  Spent load, fold, write;
};
Merged merge(const std::string& target, const std::vector<std::string>& sources);

/// Loads each source into a merger of its own, and destroys it.
Merged load(const std::vector<std::string>& sources);

}  // namespace fe_db_benchmarks
