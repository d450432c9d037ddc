#pragma once

#include <cstdint>

namespace persistence {

/// How a program compares a count. Carried into a trace line and read nowhere: the search that
/// takes one always asks for "at least". Any integer is accepted.
enum class OperationKind : std::uint32_t {};

}  // namespace persistence
