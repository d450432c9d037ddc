#pragma once

#include "fe_db/kinds.h"

namespace clang {
class NamedDecl;
}

namespace fe_db_tools {

/// What the declaration says of its entity. Attributes count wherever the entity is declared.
/// Not known here: what overrides it, where its text comes from.
orvalesca::databases_merger::PropertyFlags flagsOf(const clang::NamedDecl& declaration);

}  // namespace fe_db_tools
