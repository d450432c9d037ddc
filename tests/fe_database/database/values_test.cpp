#include "tests/support/database_fixture.h"

/// Values on their way into a column and back; the others: model_test.cpp.
namespace fe_db_tests {
namespace {

using namespace std::string_literals;

class ValueTest : public CompilationTest {
 protected:
  /// The element as its row reads.
  template <class T>
  T readBack(long long id) {
    T element;
    element.setId(id);
    db().get(element);
    return element;
  }
};

TEST_F(ValueTest, Text_IsStoredUpToTheFirstNulWhateverItsLengthAndBytes) {
  const std::string large(40'000, 'p');
  const std::pair<std::string, std::string> cases[] = {
      {"", ""}, {"a\0b"s, "a"}, {large, large}, {"\xff\x01|\n", "\xff\x01|\n"}};
  for (const auto& [value, stored] : cases) {
    File file(value);
    const std::string id = std::to_string(db().add(file));
    EXPECT_EQ(
        rows("SELECT typeof(Path), length(CAST(Path AS BLOB)), Path FROM File WHERE FileId=" + id),
        "text|" + std::to_string(stored.size()) + "|" + stored + "\n");
    EXPECT_EQ(readBack<File>(file.getId()).getPath(), stored);
  }
}

TEST_F(ValueTest, EntityOfAReusedRow_StaysWhereTheKindHasNone) {
  Function* function = this->function("f", at("a.c", 2, 1));
  execute("INSERT INTO ExternalIdentifier VALUES (1, NULL, -1, 0)");
  ExternalIdentifier row(nullptr, {EntityKind::Function, function});
  row.setId(1);
  db().get(row);
  EXPECT_EQ(row.getEntityKind(), EntityKind::None);
  EXPECT_EQ(row.getDescription().entity, function);
}

TEST_F(ValueTest, BoolAndHuge_ReadTrueFromAnyNumberButZeroAndAreWrittenAsOne) {
  execute("INSERT INTO File VALUES (1, 'a.c', 0, 0, 2), (2, 'b.c', 0, 0, 0)");
  File huge = readBack<File>(1);
  EXPECT_TRUE(huge.getHuge());
  EXPECT_FALSE(readBack<File>(2).getHuge());
  db().update(huge);
  EXPECT_EQ(rows("SELECT Huge FROM File"), "1\n0\n");
  execute("INSERT INTO CallPoint VALUES (1, NULL, 0, 0, -7, NULL, NULL)");
  CallPoint call = readBack<CallPoint>(1);
  EXPECT_TRUE(call.getIsValueUsed());
  db().update(call);
  EXPECT_EQ(rows("SELECT IsValueUsed FROM CallPoint"), "1\n");
}

TEST_F(ValueTest, BoundTextThatIsTooLong_IsReportedWithTheStatement) {
  sqlite3_limit(trace.connection(), SQLITE_LIMIT_LENGTH, 1000);
  File file(std::string(2000, 'x'), static_cast<FileKind>(3));
  db().add(file);
  EXPECT_THAT(takeReports(),
              isReport(SQLITE_TOOBIG, SQLITE_OK, "string or blob too big",
                       "While executing INSERT INTO File \\(Path, Kind, Lang, Huge\\) VALUES "
                       "\\(NULL, NULL, NULL, NULL\\)\n"));
  EXPECT_EQ(rows("SELECT Path, Kind FROM File"), "NULL|3\n") << "the parameter stays as it was";
}

}  // namespace
}  // namespace fe_db_tests
