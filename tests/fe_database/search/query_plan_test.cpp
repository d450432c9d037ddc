#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <set>

#include "fe_database/compilation_database/named_queries.h"
#include "search_indexes.h"
#include "tests/support/database_fixture.h"

namespace fe_db_tests {
namespace {

using testing::HasSubstr;
using testing::Not;

std::vector<std::string> namedSearches() {
  std::vector<std::string> texts;
  for (const NamedQuery& query : kNamedQueries) texts.emplace_back(query.sql);
  return texts;
}

/// What the library selects from each table, by table and kind.
std::multimap<std::string, std::string> tableSelects() {
  std::multimap<std::string, std::string> selects;
  std::ifstream golden(TABLE_STATEMENTS);
  for (std::string line; std::getline(golden, line);) {
    const std::size_t colon = line.find(": SELECT ");
    if (colon != std::string::npos) selects.emplace(line.substr(0, colon), line.substr(colon + 2));
  }
  return selects;
}

/// What nothing selects, or a mask, or a sum over a whole table.
bool walksATable(const std::string& sql) {
  return sql.find("FROM Identifier WHERE (((Kind") != std::string::npos ||
         sql.find("FROM Identifier WHERE ((Kind") != std::string::npos ||
         sql.find("sum(RefCount)") != std::string::npos || sql.find('?') == std::string::npos;
}

struct SearchPlans : QuietTest {
  SearchPlans() {
    for (const char* name : {"plain.db", "indexed.db"}) {
      fe_db_tools::createCompilationDatabase(path(name), fe_db_tools::KeyIndexes::no);
      execute(path(name), content());
    }
    fe_db_tools::eachSearchIndex(
        [this](const auto& index) { execute(path("indexed.db"), index.sql); });
    execute(path("indexed.db"), fe_db_tools::kLengthIndexHint);
  }

  /// Many rows of few values, so that almost every search has several answers whose order shows.
  static std::string content() {
    const std::string count =
        "WITH RECURSIVE N(n) AS (SELECT 400 UNION ALL SELECT n - 7 FROM N "
        "WHERE n > 7) INSERT INTO ";
    const std::string place = "n % 3 + 1, n % 5, n % 2";
    return count + "File (FileId, Path, Kind, Lang, Huge) SELECT n, 'f' || n, 0, 0, 0 FROM N;" +
           count +
           "Identifier (IdentifierId, Name, Count, Kind) SELECT n, 'name' || (n * n), n % 4, "
           "n % 8 FROM N;" +
           count + "Macro SELECT n, n % 4, " + place + ", n % 3, n, 1, 1, 0, 0, 0, 't' FROM N;" +
           count + "Type SELECT n, n % 4, n % 2, 0, 0, " + place +
           ", n % 900, n % 3, n % 4 FROM N;" + count + "TypeReference SELECT n % 5, n FROM N;" +
           count + "Variable SELECT n, n % 4, " + place + ", n, 1, n % 3, n % 3 FROM N;" + count +
           "Function SELECT n, n % 4, n % 3, " + place + ", n % 2, 0, n % 3, n % 2, n % 4 FROM N;" +
           count + "ExternalIdentifier SELECT n, n % 4, n % 3 - 1, n % 6 FROM N;" + count +
           "Field SELECT n, n % 4, " + place + ", n % 3 FROM N;" + count +
           "EnumConstant SELECT n, n % 4, " + place + " FROM N;" + count +
           "Label SELECT n, n % 4, " + place + " FROM N;" + count + "CallPoint SELECT n, " + place +
           ", n % 2, n % 5, n % 7 FROM N";
  }

  std::string rowsFor(const char* file, std::string sql, int value) const {
    for (std::size_t at; (at = sql.find('?')) != std::string::npos;) {
      sql.replace(at, 1, std::to_string(value));
    }
    return rows(path(file), sql);
  }
};

std::multiset<std::string> sorted(const std::string& text) {
  std::multiset<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.insert(line);
  return lines;
}

TEST_F(SearchPlans, WhatAnArgumentSelects_IsSearchedAndNotWalked) {
  const RawConnection indexed(path("indexed.db"));
  const std::vector<std::string> searches = namedSearches();
  ASSERT_EQ(searches.size(), 33U);
  for (const std::string& sql : searches) {
    SCOPED_TRACE(sql);
    const std::string plan = indexed.rows("EXPLAIN QUERY PLAN " + sql);
    if (walksATable(sql)) continue;
    EXPECT_THAT(plan, HasSubstr("SEARCH"));
    EXPECT_THAT(plan, Not(HasSubstr("SCAN")));
    if (sql.find("length(") != std::string::npos) {
      EXPECT_THAT(plan, HasSubstr("INDEX Identifier_Length_Index"));
    }
  }
}

TEST_F(SearchPlans, Indexes_ChangeNoAnswer) {
  for (const std::string& sql : namedSearches()) {
    SCOPED_TRACE(sql);
    for (int value : {0, 1, 2, 3, 6}) {
      EXPECT_EQ(sorted(rowsFor("plain.db", sql, value)), sorted(rowsFor("indexed.db", sql, value)));
    }
  }
}

/// Where the first row is taken, its place in the answer is part of the answer.
TEST_F(SearchPlans, Indexes_ChangeNoOrder_OfKeyLookupsAndWholeTables) {
  std::multimap<std::string, std::string> selects = tableSelects();
  selects.emplace("first row", namedQuery(Query::definedFunctionId).sql);
  ASSERT_GT(selects.size(), 60U);
  for (const auto& [kind, sql] : selects) {
    // The order of a walk over ids is open, and a table without a key is not looked up by one.
    if (kind.ends_with(" list_id") || sql.ends_with("WHERE ")) continue;
    SCOPED_TRACE(kind);
    for (int value : {1, 2}) {
      EXPECT_EQ(rowsFor("plain.db", sql, value), rowsFor("indexed.db", sql, value));
    }
  }
}

// --- The key indexes alone, as a file has them that many processes save into.

std::string planOf(const RawConnection& connection, const std::string& select) {
  return connection.rows("EXPLAIN QUERY PLAN " + select);
}

struct KeyIndexPlans : QuietTest {
  KeyIndexPlans() {
    fe_db_tools::createCompilationDatabase(path("plain.db"), fe_db_tools::KeyIndexes::no);
    fe_db_tools::createCompilationDatabase(path("indexed.db"), fe_db_tools::KeyIndexes::yes);
  }
};

TEST_F(KeyIndexPlans, KeyLookup_UsesAllColumnsOfItsIndexByEquality) {
  const RawConnection indexed(path("indexed.db"));
  const auto selects = tableSelects();
  for (const fe_db_tools::SearchIndex& index : fe_db_tools::keyIndexes()) {
    const auto select = selects.find(index.table + " get_id");
    ASSERT_NE(select, selects.end()) << index.table;
    const std::string terms = indexed.rows(
        "SELECT group_concat(name || '=?', ' AND ') FROM pragma_index_info('" + index.name + "')");
    EXPECT_THAT(planOf(indexed, select->second),
                HasSubstr("SEARCH " + index.table + " USING INDEX " + index.name + " (" +
                          terms.substr(0, terms.size() - 1) + ")\n"));
  }
}

TEST_F(KeyIndexPlans, NoOtherStatement_IsPlannedOtherwiseBecauseOfThem) {
  const RawConnection plain(path("plain.db")), indexed(path("indexed.db"));
  std::vector<std::string> others;
  for (const std::string& sql : namedSearches()) {
    // The search by declared type is a look-up by key.
    if (sql.find("DeclaredType=?") == std::string::npos) others.push_back(sql);
  }
  for (const auto& [kind, select] : tableSelects()) {
    if (!kind.ends_with(" get_id")) others.push_back(select);
  }
  for (const std::string& sql : others) EXPECT_EQ(planOf(plain, sql), planOf(indexed, sql)) << sql;
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
