#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Names as C++ writes them, from what is stored: the scope, the name in the source, and of a
/// function the identifier, which is its mangled name.
namespace fe_db_tools {

/// "leveldb::DB::Open(int)": with its parameters if the identifier has them; else with its scope.
std::string qualifiedName(std::string_view scope, std::string_view name,
                          std::string_view identifier);

/// A name as a user types it.
struct AskedName {
  std::string text;
  std::string scope;  ///< empty: any
  std::string last;   ///< without scope and parameters
  std::optional<std::string> parameters;
};
AskedName parseName(std::string text);

/// Whether the name can mean the entity: the scope may lack its beginning, parameters their scopes,
/// blanks do not count, and `const` may precede its type or follow it.
bool matches(const AskedName& asked, std::string_view name, const std::string& qualified);

}  // namespace fe_db_tools
