#include <limits>

#include "tests/support/database_fixture.h"

/// Each kind of value on its way into a column and back.
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

TEST_F(ValueTest, Unsigned_IsStoredAsItsBitsTakenAsSignedAndReadsBack) {
  constexpr std::uint32_t kLargest = 4294967295, kLargestSigned = 2147483647;
  Type type(nullptr, false, {nullptr, kLargest, kLargestSigned}, TypeKind{kLargest}, 0,
            kLargestSigned + 1, false, false);
  const Type read = readBack<Type>(db().add(type));
  EXPECT_EQ(rows("SELECT DeclLineNum, DeclColNum, Kind, RefCount, RefTagCount FROM Type"),
            "-1|2147483647|-1|0|-2147483648\n");
  EXPECT_EQ(read.getLine(), kLargest);
  EXPECT_EQ(read.getKind(), TypeKind{kLargest});
  EXPECT_EQ(read.getRefTagCount(), kLargestSigned + 1);
}

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

TEST_F(ValueTest, MacroValue_StoresItsBitsAndItsSignedness) {
  const std::int64_t least = std::numeric_limits<std::int64_t>::min();
  const std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
  const std::pair<Macro::Value, const char*> cases[] = {
      {std::monostate{}, "null|NULL|0\n"},
      {std::int64_t{0}, "integer|0|1\n"},
      {std::int64_t{-1}, "integer|-1|1\n"},
      {least, "integer|-9223372036854775808|1\n"},
      {std::uint64_t{0}, "integer|0|0\n"},
      {most, "integer|-1|0\n"},
      {std::uint64_t{1} << 63, "integer|-9223372036854775808|0\n"},
  };
  for (const auto& [value, stored] : cases) {
    Macro macro;
    macro.setValue(value);
    const std::string id = std::to_string(db().add(macro));
    EXPECT_EQ(rows("SELECT typeof(Value), Value, ValueIsSigned FROM Macro WHERE MacroId=" + id),
              stored);
    EXPECT_EQ(readBack<Macro>(macro.getId()).getValue(), value) << stored;
  }
}

TEST_F(ValueTest, Pointer_IsNullForNoneZeroForAnUnsavedElementAndElseTheRowId) {
  File unsaved("unsaved.c");
  File* const saved = file("saved.c");
  db().add(*saved);
  for (File* const pointer : {static_cast<File*>(nullptr), &unsaved, saved}) {
    Field field(name("f"), {pointer, 1, 1});
    EXPECT_EQ(readBack<Field>(db().add(field)).getFile(), pointer == saved ? saved : nullptr);
  }
  EXPECT_EQ(rows("SELECT DeclFileId FROM Field"), "NULL\n0\n1\n");
}

TEST_F(ValueTest, Entity_IsTheRowOfItsKindAndZeroForOtherKinds) {
  Variable* const variable = this->variable("v", at("a.c", 1, 1));
  Function* const function = this->function("f", at("a.c", 2, 1));
  variable->setId(5);
  function->setId(6);
  const EntityDescription descriptions[] = {
      {EntityKind::None, nullptr},      {EntityKind::None, variable},
      {EntityKind{7}, function},        {EntityKind::Variable, nullptr},
      {EntityKind::Variable, variable}, {EntityKind::Function, function}};
  for (const EntityDescription& description : descriptions) {
    ExternalIdentifier external(name("e"), description);
    db().add(external);
  }
  EXPECT_EQ(rows("SELECT Kind, EntityId FROM ExternalIdentifier ORDER BY rowid"),
            "-1|0\n-1|0\n7|0\n0|0\n0|5\n1|6\n");
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
