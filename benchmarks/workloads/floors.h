#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "measured.h"

/// The least that SQLite needs for what the library does. Nothing can be faster that reads and
/// writes these files through SQLite's interface. Failures throw std::runtime_error.
namespace fe_db_benchmarks {

struct RowsSpent {
  std::size_t rows = 0;
  Spent spent;
};

/// SELECT every column of the twelve tables of each file, touch each value, keep nothing.
RowsSpent floorRead(const std::vector<std::string>& sources);

/// The rows of the twelve tables of `source`, which are read first and not measured: DELETE and
/// INSERT into `target`, an empty compilation database, with one prepared statement per table and
/// one transaction. SQLite gives the ids, as it does for the library.
RowsSpent floorWrite(const std::string& source, const std::string& target);

}  // namespace fe_db_benchmarks
