#pragma once

#include <span>
#include <string_view>

#include "fe_db/kinds.h"

namespace fe_db_tools {

/// What has a name and a position: its table, its view, and its bit among the entities of the
/// extension tables.
struct EntityView {
  orvalesca::databases_merger::IdentifierKind kind;
  std::string_view view;
  std::string_view table;
  std::string_view tableId;
  std::string_view id;  ///< in the view
};

extern const std::span<const EntityView> kEntityViews;

const EntityView& entityViewOf(orvalesca::databases_merger::IdentifierKind kind);

/// "function".
std::string_view wordOf(orvalesca::databases_merger::IdentifierKind kind);

}  // namespace fe_db_tools
