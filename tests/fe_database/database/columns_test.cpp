#include <algorithm>
#include <set>
#include <sstream>

#include "fe_database/compilation_database/table_description.h"
#include "tests/support/database_fixture.h"

namespace fe_db_tests {
namespace {

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) { return std::tolower(c); });
  return text;
}

/// The table's columns in the file, without regard to case, as SQLite compares them.
std::set<std::string> storedColumns(const std::string& path, const std::string& table) {
  std::istringstream names(rows(path, "SELECT name FROM pragma_table_info('" + table + "')"));
  std::set<std::string> columns;
  for (std::string name; std::getline(names, name);) columns.insert(lowerCase(name));
  return columns;
}

template <class T>
void checkAgainst(const std::string& path) {
  TableDescription<T> table;
  describe(table);
  std::set<std::string> described;
  int primaryKeys = 0;
  for (const auto& [column, field] : table.columns) {
    primaryKeys += column.isPrimaryKey();
    EXPECT_TRUE(described.insert(lowerCase(column.getName())).second) << column.getName();
    EXPECT_FALSE(column.isPrimaryKey() && column.isUnique()) << column.getName();
  }
  EXPECT_EQ(primaryKeys, 1) << table.name;
  // The two differences there are: the implicit row id, and the column that nobody writes.
  described.erase("rowid");
  std::set<std::string> stored = storedColumns(path, table.name);
  stored.erase("ppfileid");
  EXPECT_EQ(described, stored) << table.name;
}

TEST_F(CompilationTest, DescribedColumns_AreThoseOfTheSchema) {
  Elements::each([this]<class T>() { checkAgainst<T>(compFile); });
  const std::string ppFile = path("pp.db");
  fe_db_tools::createPreprocessingDatabase(ppFile);
  PreprocessingElements::each([&]<class T>() { checkAgainst<T>(ppFile); });
}

}  // namespace
}  // namespace fe_db_tests
