#pragma once

#include "effect_analysis.h"

namespace clang {
class Expr;
}

namespace fe_db_tools {

/// What a store into the place means to the caller of the function that stores: nothing when the
/// place is a local variable or part of one, some effect when it is global or reached through a
/// parameter or `this`, unknown when it cannot be told.
Effect effectOfStore(const clang::Expr& place);
/// The same for a store through the pointer.
Effect effectOfStoreThrough(const clang::Expr& pointer);

}  // namespace fe_db_tools
