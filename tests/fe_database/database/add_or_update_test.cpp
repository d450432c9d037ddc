#include "tests/support/database_fixture.h"

/// What becomes of an element whose row may be there already.
namespace fe_db_tests {
namespace {

class AddOrUpdate : public CompilationTest {
 protected:
  AddOrUpdate() {
    execute("INSERT INTO File VALUES (1, 'a.c', 0, 0, 0)");
    execute("INSERT INTO Identifier VALUES (1, 'n', 5, 1), (2, 'm', 0, 0)");
    n = db().get<Identifier>(1);
    place = {db().get<File>(1), 10, 20};
  }
  /// No row of the table is written.
  template <class T>
  void expectTakesIdOnly(T element, const std::string& table) {
    const std::string before = rows("SELECT * FROM " + table);
    EXPECT_EQ(db().add_or_update(element), 7) << table;
    EXPECT_EQ(element.getId(), 7) << table;
    EXPECT_FALSE(element.dirty) << table;
    EXPECT_EQ(rows("SELECT * FROM " + table), before);
  }

  Identifier* n;
  Localization place;
};

TEST_F(AddOrUpdate, ElementWithoutFile_IsInsertedEachTime) {
  for (const int id : {1, 2}) {
    Macro macro(n, {nullptr, 0, 3}, 4);
    Variable variable(n, {nullptr, 1, 1}, nullptr, true, LinkageKind::None, 1);
    EXPECT_EQ(db().add_or_update(macro), id);
    EXPECT_EQ(db().add_or_update(variable), id);
  }
}

TEST_F(AddOrUpdate, ElementWithNothingToAdd_TakesTheIdAndLeavesTheRow) {
  execute("INSERT INTO Function VALUES (7, 1, 2, 1, 10, 20, 0, 0, 0, 0, 3)");
  execute("INSERT INTO Variable VALUES (7, 1, 1, 10, 20, NULL, 0, 0, 3)");
  execute("INSERT INTO Field VALUES (7, 1, 1, 10, 20, 3)");
  execute("INSERT INTO Macro VALUES (7, 1, 1, 10, 20, 3, NULL, 0, 1, 0, 0, 0, 'stored')");
  execute("INSERT INTO Type VALUES (1, 1, 0, 0, 0, 1, 10, 20, 4, 0, 0)");
  execute("INSERT INTO CallPoint VALUES (7, 1, 10, 20, 0, 7, NULL)");
  execute("INSERT INTO ExternalIdentifier VALUES (7, 1, 1, 7)");
  execute("INSERT INTO TypeReference (rowid, DeclaredType, ReferencedType) VALUES (7, 1, NULL)");
  execute("INSERT INTO EnumConstant VALUES (7, 1, 1, 10, 20)");
  execute("INSERT INTO Label VALUES (7, 1, 1, 10, 20)");
  Function* function = db().get<Function>(7);
  Type* type = db().get<Type>(1);
  expectTakesIdOnly(Function(n, n, place, true, true, EffectKind::Unknown, LinkageKind::External),
                    "Function");
  expectTakesIdOnly(Variable(n, place, nullptr, true, LinkageKind::External, 0), "Variable");
  expectTakesIdOnly(Field(n, place, 0), "Field");
  expectTakesIdOnly(Macro(n, place, 0), "Macro");
  expectTakesIdOnly(CallPoint(function, function, place, true), "CallPoint");
  expectTakesIdOnly(ExternalIdentifier(n, {EntityKind::Function, function}), "ExternalIdentifier");
  expectTakesIdOnly(TypeReference(type, type), "TypeReference");
  expectTakesIdOnly(EnumConstant(n, place), "EnumConstant");
  expectTakesIdOnly(Label(n, place), "Label");
}

TEST_F(AddOrUpdate, CountAboveZero_AddsUpAndWritesAllColumnsThatAreNoKey) {
  execute("INSERT INTO Function VALUES (7, 1, 2, 1, 10, 20, 0, 0, 0, 0, 3)");
  execute("INSERT INTO Variable VALUES (7, 1, 1, 10, 20, NULL, 0, 0, 3)");
  execute("INSERT INTO Field VALUES (7, 1, 1, 10, 20, 3)");
  Function function(n, n, place, true, true, EffectKind::Unknown, LinkageKind::External);
  function.setRefCount(2);
  Variable variable(n, place, nullptr, true, LinkageKind::External, 2);
  Field field(n, place, 2);
  EXPECT_EQ(db().add_or_update(function), 7);
  EXPECT_EQ(db().add_or_update(variable), 7);
  EXPECT_EQ(db().add_or_update(field), 7);
  EXPECT_TRUE(function.dirty && variable.dirty && field.dirty);
  EXPECT_EQ(function.getRefCount(), 5u);
  EXPECT_EQ(writtenRows("Function"), "7|1|1|1|10|20|1|1|2|1|5\n");
  EXPECT_EQ(writtenRows("Variable"), "7|1|1|10|20|NULL|1|1|5\n");
  EXPECT_EQ(writtenRows("Field"), "7|1|1|10|20|5\n");
}

TEST_F(AddOrUpdate, Macro_TakesAMissingValueFromTheRowAndKeepsItsOwn) {
  execute("INSERT INTO Macro VALUES (7, 1, 1, 10, 20, 3, -1, 0, 1, 0, 0, 0, 'stored')");
  Macro without(n, place, 0);
  without.setText("new");
  EXPECT_EQ(db().add_or_update(without), 7);
  EXPECT_EQ(without.getValue(), Macro::Value(~std::uint64_t{0}));
  EXPECT_TRUE(without.dirty) << "a value taken over is a change";
  EXPECT_EQ(rows("SELECT RefCount, Value, ValueIsSigned, Text FROM Macro"), "3|-1|0|new\n");
  Macro with(n, place, 1);
  with.setValue(std::int64_t{5});
  EXPECT_EQ(db().add_or_update(with), 7);
  EXPECT_EQ(rows("SELECT RefCount, Value, ValueIsSigned, Text FROM Macro"), "4|5|1|\n");
}

TEST_F(AddOrUpdate, Type_MergesWithEachMatchingRowByItselfAndComesOutUnchanged) {
  // Two rows with equal keys, one of another kind.
  execute(
      "INSERT INTO Type VALUES (3, 1, 0, 1, 0, 1, 10, 20, 4, 100, 1), "
      "(4, 1, 1, 0, 0, 1, 10, 20, 4, 200, 2), (5, 1, 0, 0, 0, 1, 10, 20, 64, 300, 3)");
  Type type(n, /*unnamed=*/true, place, TypeKind::Tagged4, /*refCount=*/2, /*refTagCount=*/7,
            /*local=*/false, /*incomplete=*/false);
  EXPECT_EQ(db().add_or_update(type), 3);
  EXPECT_EQ(type.getId(), 0);
  EXPECT_FALSE(type.dirty);
  EXPECT_EQ(type.getRefCount(), 2u);
  EXPECT_EQ(type.getRefTagCount(), 7u);
  EXPECT_FALSE(type.getLocal());
  EXPECT_EQ(rows("SELECT TypeId, Unnamed, Local, RefCount, RefTagCount FROM Type"),
            "3|1|1|102|8\n4|1|0|202|9\n5|0|0|300|3\n");
}

TEST_F(AddOrUpdate, TypeThatAddsNothing_WritesOnlyARowWithATagCount) {
  // The grown tag count is what counts as a change, not the element's own.
  for (const unsigned stored : {0u, 6u}) {
    execute("DELETE FROM Type");
    execute("INSERT INTO Type VALUES (3, 1, 1, 1, 1, 1, 10, 20, 4, 100, " + std::to_string(stored) +
            ")");
    Type type(n, true, place, TypeKind::Tagged4, 0, 0, true, true);
    trace.take();
    EXPECT_EQ(db().add_or_update(type), 3);
    const auto update = testing::Contains(testing::HasSubstr("UPDATE Type"));
    EXPECT_EQ(testing::Value(trace.take(), update), stored != 0);
    EXPECT_EQ(rows("SELECT RefCount, RefTagCount FROM Type"),
              "100|" + std::to_string(stored) + "\n");
  }
}

}  // namespace
}  // namespace fe_db_tests
