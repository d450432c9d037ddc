#include "fe_database/compilation_database/table_statement.h"

#include <sqlite3.h>

#include <sstream>

#include "fe_database/compilation_database/describe_table.h"
#include "tests/support/database_fixture.h"

namespace fe_db_tests {
namespace {

using persistence::kOption;
using persistence::kUnique;

constexpr std::pair<const char*, StatementKind> kKinds[] = {
    {"add", StatementKind::add},         {"update", StatementKind::update},
    {"get_id", StatementKind::get_id},   {"get_from_id", StatementKind::get_from_id},
    {"list_id", StatementKind::list_id}, {"list_all", StatementKind::list_all},
    {"max_id", StatementKind::max_id},   {"delete_all", StatementKind::delete_all},
};

template <class T>
std::string textOf(TableDescription<T>& table, StatementKind kind) {
  TableStatement<T> statement(table, kind);
  statement.build();
  return statement.getText();
}

std::string generatedPage() {
  std::string page;
  AllElements::each([&]<class T>() {
    TableDescription<T> table;
    describe(table);
    for (const auto& [name, kind] : kKinds) {
      page += table.name + ' ' + name + ": " + textOf(table, kind) + '\n';
    }
  });
  return page;
}

TEST(TableStatementTexts, OfEveryTableAndKind_AreThoseOfTheGoldenPage) {
  if (std::getenv("FE_DB_UPDATE_GOLDEN") != nullptr) {
    std::ofstream(GOLDEN_PAGE) << generatedPage();
    GTEST_SKIP() << "rewritten: " GOLDEN_PAGE;
  }
  std::ostringstream golden;
  golden << std::ifstream(GOLDEN_PAGE).rdbuf();
  EXPECT_EQ(generatedPage(), golden.str()) << "rewrite with the target update-golden";
}

/// The table of fields, with a file that may be absent in the key.
class OptionColumn : public CompilationTest {
 protected:
  OptionColumn() {
    TableDescription<Field> original;
    describe(original);
    table.name = original.name;
    for (const auto& [column, field] : original.columns) {
      const bool isOption = column.getName() == "DeclFileId";
      table.addField({column.getName(), isOption ? kUnique | kOption : column.flags},
                     field->clone());
    }
  }

  TableDescription<Field> table;
};

TEST_F(OptionColumn, IsComparedTolerantOfNullAndRewritten) {
  EXPECT_EQ(textOf(table, StatementKind::get_id),
            "SELECT FieldId, DeclFileId, RefCount FROM Field WHERE IdentifierId=? AND "
            "(DeclFileId ISNULL OR ? ISNULL OR DeclFileId=?) AND DeclLineNum=? AND DeclColNum=?");
  EXPECT_EQ(textOf(table, StatementKind::update),
            "UPDATE Field SET DeclFileId=?, RefCount=? WHERE FieldId=?");
}

TEST_F(OptionColumn, MatchesWhereEitherSideIsNullAndIsReadBack) {
  execute("INSERT INTO File VALUES (1, 'a.c', 0, 0, 0), (2, 'b.c', 0, 0, 0)");
  execute("INSERT INTO Identifier VALUES (1, 'f', 0, 0)");
  execute("INSERT INTO Field VALUES (1, 1, NULL, 10, 4, 0), (2, 1, 1, 20, 4, 0)");
  File* const a = db().get<File>(1);
  File* const b = db().get<File>(2);
  struct Case {
    std::uint32_t line;
    File* sought;
    int result;
    File* readBack;
  };
  const Case cases[] = {
      {10, nullptr, SQLITE_ROW, nullptr},
      {10, a, SQLITE_ROW, nullptr},
      {20, nullptr, SQLITE_ROW, a},
      {20, a, SQLITE_ROW, a},
      {20, b, SQLITE_DONE, b},
  };
  const RawConnection connection(compFile);
  TableStatement<Field> getId(table, StatementKind::get_id);
  for (const Case& c : cases) {
    Field field(db().get<Identifier>(1), {c.sought, c.line, 4});
    getId.bind(db(), connection.get(), field);
    EXPECT_EQ(getId.step(), c.result) << c.line;
    if (c.result == SQLITE_ROW) getId.column(db(), connection.get(), field);
    EXPECT_EQ(field.getFile(), c.readBack) << c.line;
    getId.reset(connection.get());
  }
  getId.finalize(connection.get());
}

}  // namespace
}  // namespace fe_db_tests
