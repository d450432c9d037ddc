#pragma once

#include <string>

#include "sql_rows.h"

/// The five tables that a compilation database may lack.
namespace fe_db_tests {

inline constexpr const char* kExtensions[] = {"Unit", "UnitFile", "Include", "Reference",
                                              "Property"};

/// Drops those of the tables whose bit is not set.
inline void keepExtensions(const std::string& path, unsigned mask) {
  for (unsigned i = 0; i < 5; ++i) {
    if ((mask >> i & 1) == 0) execute(path, std::string("DROP TABLE ") + kExtensions[i]);
  }
}

/// What those of the tables say that the mask names, whatever the ids of their rows: references
/// replaced by names, rows sorted.
inline std::string crossReference(const std::string& path, unsigned mask = 31) {
  const auto named = [](const std::string& table, const std::string& id) {
    return "(SELECT '" + table + " '||Name||':'||DeclLineNum FROM " + table +
           " JOIN Identifier USING (IdentifierId) WHERE " + table + "Id=" + id + ")";
  };
  const auto file = [](const std::string& id) {
    return "(SELECT Path FROM File F WHERE F.FileId=T." + id + ")";
  };
  std::string entity = "CASE EntityKind";
  constexpr std::pair<const char*, const char*> kKinds[] = {
      {"1", "Type"},          {"2", "Function"}, {"4", "Variable"}, {"8", "Macro"},
      {"32", "EnumConstant"}, {"64", "Field"},   {"128", "Label"}};
  for (const auto& [kind, table] : kKinds) {
    entity += std::string(" WHEN ") + kind + " THEN " + named(table, "EntityId");
  }
  entity += " ELSE '?' END";
  const std::string columns[] = {
      file("MainFileId") + ",Name,Directory,Command,Output,Recorder,Options,Digest",
      "(SELECT Output||Command FROM Unit U WHERE U.UnitId=T.UnitId)," + file("FileId"),
      file("IncludingFileId") + ",LineNum," + file("IncludedFileId") + ",Kind",
      entity + "," + file("FileId") + ",LineNum,ColNum,Roles",
      entity + ",Flags," + named("Type", "T.OwnerId") + ",Scope"};
  std::string text;
  for (unsigned i = 0; i < 5; ++i) {
    if ((mask >> i & 1) == 0) continue;
    const std::string table = kExtensions[i];
    std::string order = " ORDER BY 1, 2, 3, 4, 5";
    if (i == 1) order = " ORDER BY 1, 2, 3";
    text += rows(path, "SELECT '" + table + "'," + columns[i] + " FROM " + table + " T" + order);
  }
  return text;
}

}  // namespace fe_db_tests
