#pragma once

#include <stdexcept>
#include <string_view>

namespace fe_db_tools {

/// Nobody reads the rest of the output: no fault of anything, and nothing to say.
struct OutputClosed : std::runtime_error {
  OutputClosed() : std::runtime_error("standard output is closed") {}
};

/// Results on standard output. Throws std::runtime_error when it cannot be written.
void print(std::string_view text);

/// REQUIRES: called once behind the last print(). What stands in the buffer may still fail.
void finishOutput();

/// A message on standard error: "fe_db: " and one line, with printable().
void report(std::string_view message);

}  // namespace fe_db_tools
