#pragma once

#include <string>
#include <vector>

#include "facts_file.h"
#include "fe_db/kinds.h"

namespace fe_db_tools {

/// All rows of one thing that a name means: its declarations and its definition.
struct NamedEntity {
  orvalesca::databases_merger::IdentifierKind kind;
  std::string display;     ///< qualified, of a C++ function with its parameters
  std::string identifier;  ///< as the file has it: of a static function with its file
  std::vector<long long> ids;
};

/// Those of the given kinds, a mask, that `name` means, in the order of their names. It is plain
/// or qualified, with parameters or without, or an identifier as the file has it.
/// Throws UnknownName if there is none.
std::vector<NamedEntity> findEntities(const FactsFile& file, const std::string& name,
                                      orvalesca::databases_merger::IdentifierKind kinds);

/// Nothing in the file has the name; the message has the nearest names.
struct UnknownName : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The ids of all of one kind.
std::vector<long long> idsOf(const std::vector<NamedEntity>& entities,
                             orvalesca::databases_merger::IdentifierKind kind);

/// The files that a user means: a path, relative to the working directory or as it is stored, a
/// directory (all below it), the last parts of a path, or a glob, in which * matches / too.
/// Throws UnknownName if there is none.
std::vector<long long> findFiles(const FactsFile& file, const std::string& asked);

}  // namespace fe_db_tools
