#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

/// The content of a compilation database with names joined and kinds in words, for SQL by hand and
/// for the program's own questions. The names begin with "fe_", which no table does.
namespace fe_db_tools {

struct View {
  std::string name;
  std::string select;
};

/// Whether rows whose names or files do not exist are among the answers, with NULL.
/// A search by name is fast only without them: SQLite then begins with the name.
enum class DamagedRows { leftOut, kept };

/// The views that a file with these tables can have. Columns of tables that it lacks are NULL.
std::vector<View> viewsFor(const std::set<std::string, std::less<>>& tables, DamagedRows damaged);

}  // namespace fe_db_tools
