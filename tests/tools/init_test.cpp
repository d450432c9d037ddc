#include <sys/stat.h>

#include <fstream>
#include <future>
#include <map>

#include "fe_db_fixture.h"
#include "search_indexes.h"

namespace fe_db_tests {
namespace {

using testing::HasSubstr;

constexpr char kTables[] =
    "SELECT group_concat(name, ' ') FROM (SELECT name FROM sqlite_schema WHERE type = 'table' AND "
    "name NOT LIKE 'sqlite_%' ORDER BY rowid)";

struct Init : FeDbProgram {};

TEST_F(Init, CompilationFile_HasFifteenTablesVersionOneAndLargePages) {
  outputOf({"init", path("x.db")});
  EXPECT_EQ(rows(path("x.db"), kTables),
            "File Identifier Macro MacroInvocation MacroInvocationCodeOrigin MacroExpansion Type "
            "TypeReference Variable Function ExternalIdentifier Field EnumConstant Label "
            "CallPoint\n");
  EXPECT_EQ(rows(path("x.db"), "PRAGMA page_size; PRAGMA user_version; PRAGMA integrity_check"),
            "32768\n1\nok\n");
  EXPECT_EQ(rows(path("x.db"),
                 "SELECT tbl_name FROM sqlite_schema WHERE type = 'table' AND sql LIKE "
                 "'%AUTOINCREMENT%' ORDER BY rowid"),
            "File\nIdentifier\nMacro\nMacroInvocation\n");
}

TEST_F(Init, PreprocessingFile_HasSixTablesTwoIndexesThreeViewsAndNoVersion) {
  outputOf({"init", "--kind", "preprocessing", path("x.db")});
  EXPECT_EQ(rows(path("x.db"), kTables),
            "File Identifier Macro MacroInvocation MacroInvocationCodeOrigin MacroExpansion\n");
  EXPECT_EQ(rows(path("x.db"), "PRAGMA page_size; PRAGMA user_version"), "32768\n0\n");
  EXPECT_EQ(rows(path("x.db"),
                 "SELECT name FROM sqlite_schema WHERE type IN ('index', 'view') AND "
                 "sql NOT NULL ORDER BY name"),
            "Identifier_Index\nMacroInvocationCodeOriginView\nMacroInvocationView\nMacroView\n"
            "Macro_Index\n");
}

TEST_F(Init, WhatIsThere_IsNeverOverwritten) {
  fileHolding("text", "precious");
  std::filesystem::create_directory(path("directory"));
  std::filesystem::create_symlink(path("nowhere"), path("link"));
  for (const char* name : {"text", "directory", "link"}) {
    const ProgramResult result = feDb({"init", path(name)});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.errors,
              "fe_db: " + path(name) + ": it exists already; remove it or choose another name\n");
  }
  EXPECT_EQ(std::filesystem::file_size(path("text")), 8U);
  EXPECT_FALSE(std::filesystem::exists(path("nowhere")));
}

TEST_F(Init, LeftoverOfAKilledRun_IsOverwritten) {
  fileHolding("x.db.new", "half a database");
  outputOf({"init", path("x.db")});
  EXPECT_EQ(integrity(path("x.db")), "ok\n");
  EXPECT_FALSE(std::filesystem::exists(path("x.db.new")));
}

TEST_F(Init, NoSuchDirectory_IsNamed) {
  const ProgramResult result = feDb({"init", path("missing/x.db")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.errors, "fe_db: " + path("missing/x.db.new") +
                               ": cannot create it: No such file or directory\n");
}

TEST_F(Init, FullDisk_LeavesNothing) {
  const ProgramResult result = runProgram({"bash", "-c", "trap '' XFSZ; ulimit -f 100; exec \"$@\"",
                                           "bash", FE_DB_PROGRAM, "init", path("x.db")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("x.db.new: cannot create it: File too large"));
  EXPECT_FALSE(std::filesystem::exists(path("x.db")) || std::filesystem::exists(path("x.db.new")));
}

TEST_F(Init, SeveralAtOnce_OneMakesTheFile) {
  std::vector<std::future<ProgramResult>> runs;
  for (int i = 0; i < 8; ++i) {
    runs.push_back(std::async(std::launch::async, [&] { return feDb({"init", path("x.db")}); }));
  }
  int succeeded = 0;
  for (auto& run : runs) succeeded += run.get().exitCode == 0;
  EXPECT_EQ(succeeded, 1);
  EXPECT_EQ(integrity(path("x.db")), "ok\n");
}

/// The statements that the library runs on each table, and some searches by name and count.
std::multimap<std::string, std::string> librarySelects() {
  std::multimap<std::string, std::string> selects = {
      {"search", "SELECT MacroId FROM Macro WHERE IdentifierId=?"},
      {"search", "SELECT FunctionId FROM Function WHERE IdentifierId=? AND Linkage=?"},
      {"search", "SELECT FieldId FROM Field WHERE RefCount=?"},
      {"search", "SELECT CallPointId FROM CallPoint WHERE CalleeId=?"},
      {"search",
       "SELECT ExternalIdentifierId FROM ExternalIdentifier WHERE IdentifierId=? ORDER BY Kind"},
      {"search",
       "SELECT Label.LabelId FROM Label JOIN Identifier USING(IdentifierId) WHERE "
       "length(Identifier.Name) >= ?"}};
  std::ifstream golden(TABLE_STATEMENTS);
  for (std::string line; std::getline(golden, line);) {
    const std::size_t colon = line.find(": SELECT ");
    if (colon != std::string::npos) selects.emplace(line.substr(0, colon), line.substr(colon + 2));
  }
  return selects;
}

std::string planOf(const RawConnection& connection, const std::string& select) {
  return connection.rows("EXPLAIN QUERY PLAN " + select);
}

struct KeyIndexPlans : Init {
  KeyIndexPlans() {
    fe_db_tools::createCompilationDatabase(path("plain.db"), fe_db_tools::KeyIndexes::no);
    fe_db_tools::createCompilationDatabase(path("indexed.db"), fe_db_tools::KeyIndexes::yes);
  }
  const std::multimap<std::string, std::string> selects = librarySelects();
};

TEST_F(KeyIndexPlans, KeyLookup_UsesAllColumnsOfItsIndexByEquality) {
  const RawConnection indexed(path("indexed.db"));
  for (const fe_db_tools::SearchIndex& index : fe_db_tools::kKeyIndexes) {
    const auto select = selects.find(std::string(index.table) + " get_id");
    ASSERT_NE(select, selects.end()) << index.table;
    const std::string terms =
        indexed.rows("SELECT group_concat(name || '=?', ' AND ') FROM pragma_index_info('" +
                     std::string(index.name) + "')");
    EXPECT_THAT(planOf(indexed, select->second),
                HasSubstr("SEARCH " + std::string(index.table) + " USING INDEX " + index.name +
                          " (" + terms.substr(0, terms.size() - 1) + ")\n"));
  }
}

TEST_F(KeyIndexPlans, NoOtherStatement_IsPlannedOtherwiseBecauseOfThem) {
  const RawConnection plain(path("plain.db")), indexed(path("indexed.db"));
  ASSERT_GT(selects.size(), 60U);
  for (const auto& [kind, select] : selects) {
    if (kind.find(" get_id") == std::string::npos) {
      EXPECT_EQ(planOf(plain, select), planOf(indexed, select)) << kind << ": " << select;
    }
  }
}

TEST_F(KeyIndexPlans, NoIndex_HoldsAllColumnsOfItsTable) {
  EXPECT_EQ(rows(path("indexed.db"),
                 "SELECT i.name FROM sqlite_schema i WHERE i.type = 'index' AND NOT EXISTS (SELECT "
                 "* FROM pragma_table_info(i.tbl_name) c WHERE c.pk = 0 AND c.name NOT IN (SELECT "
                 "name FROM pragma_index_info(i.name)))"),
            "");
}

}  // namespace
}  // namespace fe_db_tests
