#pragma once

#include <limits>

#include "fe_db/elements.h"

namespace orvalesca::databases_merger {

/// The level of the traces about rows of T. Traces are compared between versions, so those of the
/// fifteen tables have to stay what they are; the other tables have none.
template <class T>
inline constexpr int kTraceLevel = ExtensionElements::has<T> ? std::numeric_limits<int>::max() : 3;

}  // namespace orvalesca::databases_merger
