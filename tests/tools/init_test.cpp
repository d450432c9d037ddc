#include <future>

#include "fe_db_fixture.h"

namespace fe_db_tests {
namespace {

constexpr char kTables[] =
    "SELECT group_concat(name, ' ') FROM (SELECT name FROM sqlite_schema WHERE type = 'table' AND "
    "name NOT LIKE 'sqlite_%' ORDER BY rowid)";

struct Init : FeDbProgram {};

TEST_F(Init, CompilationFile_HasAllTablesVersionOneAndLargePages) {
  outputOf({"init", path("x.db")});
  EXPECT_EQ(rows(path("x.db"), kTables),
            "File Identifier Macro MacroInvocation MacroInvocationCodeOrigin MacroExpansion Type "
            "TypeReference Variable Function ExternalIdentifier Field EnumConstant Label "
            "CallPoint Unit UnitFile Include Reference Property\n");
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
              "fe_db: " + path(name) + ": it already exists; remove it or choose another name\n");
  }
  EXPECT_EQ(std::filesystem::file_size(path("text")), 8U);
  EXPECT_FALSE(std::filesystem::exists(path("nowhere")));
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

}  // namespace
}  // namespace fe_db_tests
