#pragma once

#include <set>
#include <sstream>
#include <string>

#include "sql_rows.h"

namespace fe_db_tests {

/// What the tables of a compilation database say, whatever the ids of their rows: each reference
/// replaced by the name and line that it leads to, rows sorted.
inline std::string content(const std::string& path) {
  const auto name = [](const std::string& id) {
    return "(SELECT Name FROM Identifier I WHERE I.IdentifierId=" + id + ")";
  };
  const auto file = [](const std::string& id) {
    return "(SELECT Path FROM File F WHERE F.FileId=" + id + ")";
  };
  const auto entity = [&](const std::string& table, const std::string& id) {
    return "(SELECT " + name("E.IdentifierId") + "||':'||E.DeclLineNum FROM " + table +
           " E WHERE E." + table + "Id=" + id + ")";
  };
  const std::string place =
      name("T.IdentifierId") + "," + file("T.DeclFileId") + ",DeclLineNum,DeclColNum";
  const std::string columns[][2] = {
      {"File", "Path,Kind,Lang,Huge"},
      {"Identifier", "Name,Count,Kind"},
      {"Macro", place + ",RefCount,Value,ValueIsSigned,IsObjectLike,IsVariadic,"
                        "IsCommandLineDefinition,IsPredefined,Text"},
      {"MacroInvocation", "LineNum"},
      {"MacroInvocationCodeOrigin", "TokenString"},
      {"MacroExpansion", "MacroCall"},
      {"Type", place + ",Kind,Unnamed,Local,Incomplete,RefCount,RefTagCount"},
      {"TypeReference",
       entity("Type", "T.DeclaredType") + "," + entity("Type", "T.ReferencedType")},
      {"Variable", place + "," + entity("Type", "T.TypeId") + ",isDefined,Linkage,RefCount"},
      {"Function",
       place + "," + name("T.SourceNameId") + ",isDefined,isSpecial,Effect,Linkage,RefCount"},
      {"ExternalIdentifier", name("T.IdentifierId") + ",Kind,CASE Kind WHEN 0 THEN " +
                                 entity("Variable", "T.EntityId") + " WHEN 1 THEN " +
                                 entity("Function", "T.EntityId") + " ELSE EntityId END"},
      {"Field", place + ",RefCount"},
      {"EnumConstant", place},
      {"Label", place},
      {"CallPoint", file("T.FileId") + ",LineNum,ColNum,IsValueUsed," +
                        entity("Function", "T.CallerId") + "," + entity("Function", "T.CalleeId")},
  };
  const RawConnection connection(path);
  std::string text;
  for (const auto& [table, list] : columns) {
    std::istringstream lines(
        connection.rows("SELECT '" + table + "'," + list + " FROM " + table + " T"));
    std::multiset<std::string> sorted;
    for (std::string line; std::getline(lines, line);) sorted.insert(line);
    for (const std::string& line : sorted) text += line + '\n';
  }
  return text;
}

}  // namespace fe_db_tests
