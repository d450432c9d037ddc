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
  const std::pair<std::uint32_t, const char*> cases[] = {
      {0, "0"},
      {2147483647, "2147483647"},
      {2147483648, "-2147483648"},
      {4294967295, "-1"},
  };
  for (const auto& [value, stored] : cases) {
    Type type(nullptr, false, {nullptr, value, value}, static_cast<TypeKind>(value), value, value,
              false, false);
    const std::string id = std::to_string(db().add(type));
    for (const char* column : {"DeclLineNum", "DeclColNum", "Kind", "RefCount", "RefTagCount"}) {
      EXPECT_EQ(rows("SELECT "s + column + " FROM Type WHERE TypeId=" + id), stored + "\n"s);
    }
    const Type read = readBack<Type>(type.getId());
    EXPECT_EQ(read.getLine(), value);
    EXPECT_EQ(static_cast<std::uint32_t>(read.getKind()), value);
    EXPECT_EQ(read.getRefTagCount(), value);
  }
}

TEST_F(ValueTest, Text_IsStoredUpToTheFirstNulWhateverItsLengthAndBytes) {
  const std::string large(40'000, 'p');
  const std::pair<std::string, std::string> cases[] = {
      {"", ""}, {"a\0b"s, "a"}, {large, large}, {"\xff\x01|\n", "\xff\x01|\n"}};
  for (const auto& [value, stored] : cases) {
    File file(value);
    const std::string id = std::to_string(db().add(file));
    EXPECT_EQ(rows("SELECT typeof(Path), Path FROM File WHERE FileId=" + id),
              "text|" + stored + "\n");
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
  File* saved = file("saved.c");
  db().add(*saved);
  const std::tuple<File*, const char*, const char*> cases[] = {
      {nullptr, "NULL\n", ""}, {&unsaved, "0\n", ""}, {saved, "1\n", "saved.c"}};
  for (const auto& [pointer, stored, path] : cases) {
    Field field(name("f"), {pointer, 1, 1});
    const std::string id = std::to_string(db().add(field));
    EXPECT_EQ(rows("SELECT DeclFileId FROM Field WHERE FieldId=" + id), stored);
    const File* read = readBack<Field>(field.getId()).getFile();
    EXPECT_EQ(read != nullptr ? read->getPath() : "", path) << stored;
  }
}

TEST_F(ValueTest, Entity_IsTheRowOfItsKindAndZeroForOtherKinds) {
  Variable* variable = this->variable("v", at("a.c", 1, 1));
  Function* function = this->function("f", at("a.c", 2, 1));
  variable->setId(5);
  function->setId(6);
  const std::tuple<int, LinkedElement*, const char*> cases[] = {
      {-1, nullptr, "-1|0\n"}, {-1, variable, "-1|0\n"}, {0, variable, "0|5\n"},
      {0, nullptr, "0|0\n"},   {1, function, "1|6\n"},   {7, function, "7|0\n"}};
  for (const auto& [kind, entity, stored] : cases) {
    ExternalIdentifier external(name("e"), {static_cast<EntityKind>(kind), entity});
    const std::string id = std::to_string(db().add(external));
    const std::string where = " FROM ExternalIdentifier WHERE ExternalIdentifierId=" + id;
    EXPECT_EQ(rows("SELECT Kind, EntityId" + where), stored);
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
