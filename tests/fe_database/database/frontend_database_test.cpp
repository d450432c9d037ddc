#include <functional>

#include "tests/support/database_fixture.h"

namespace fe_db_tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class FrontendDatabaseTest : public CompilationTest {
 protected:
  void insertFiles() const {
    execute("INSERT INTO File VALUES (3, 'c.c', 1, 2, 0), (5, 'e.c', 3, 4, 1)");
  }
  /// The ids that listALL answers.
  template <class T>
  std::vector<long long> walk(bool first = true) {
    std::vector<long long> ids;
    T row;
    while (const long long id = db().listALL(first, row)) ids.push_back(id);
    return ids;
  }
};

TEST_F(FrontendDatabaseTest, AddOfARefusedRow_AnswersZeroReportsOnceAndIsRemembered) {
  insertFiles();
  File file("c.c");
  file.setId(77);
  EXPECT_EQ(db().add(file), 0);
  EXPECT_EQ(file.getId(), 0);
  expectOneSqliteError("rc=19 (expected rc=101) UNIQUE constraint failed: File.Path\n");
  EXPECT_EQ(db().lastFailure().table, "File");
  EXPECT_THAT(db().lastFailure().reason, HasSubstr("UNIQUE constraint failed"));
  EXPECT_FALSE(db().hasFailed()) << "only reads count";
}

TEST_F(FrontendDatabaseTest, GetId_OverwritesIdAndOtherColumnsFromTheFirstRowWithTheKey) {
  insertFiles();
  File file("e.c", static_cast<FileKind>(7));
  EXPECT_EQ(db().getId(file), 5);
  EXPECT_EQ(file.getId(), 5);
  EXPECT_EQ(file.getKind(), static_cast<FileKind>(3));
  EXPECT_TRUE(file.getHuge());
  File missing("E.c", static_cast<FileKind>(7));
  EXPECT_EQ(db().getId(missing), 0);
  EXPECT_EQ(missing.getKind(), static_cast<FileKind>(7));
}

TEST_F(FrontendDatabaseTest, GetByIdTwice_GivesOneElementAndRunsNoSqlTheSecondTime) {
  insertFiles();
  File* const known = file("e.c");
  File* const found = db().get<File>(5);
  EXPECT_EQ(found, known) << "an equal element of the dataset becomes this row";
  EXPECT_EQ(known->getId(), 5);
  trace.take();
  EXPECT_EQ(db().get<File>(5), found);
  EXPECT_EQ(db().get<File>(0), nullptr);
  EXPECT_THAT(trace.take(), IsEmpty());
  db().truncate<File>();
  EXPECT_EQ(db().get<File>(5), found);
}

TEST_F(FrontendDatabaseTest, GetOfAnIdWithoutRow_ReportsAndGivesZeros) {
  const char* const noRow = "rc=101 (expected rc=100)";
  const Identifier* identifier = db().get<Identifier>(9);
  expectOneSqliteError(noRow);
  ASSERT_NE(identifier, nullptr);
  EXPECT_EQ(identifier->getId(), 9);
  EXPECT_EQ(identifier->getName(), "");
  EXPECT_EQ(identifier->getCount(), 0u);

  EXPECT_EQ(db().get<Variable>(9), nullptr);
  expectOneSqliteError(noRow);

  Function function(name("f"), name("f"), at("a.c", 1, 2), true, true, EffectKind::Unknown,
                    LinkageKind::External);
  function.setId(9);
  db().get(function);
  expectOneSqliteError(noRow);
  EXPECT_EQ(function.getId(), 9);
  EXPECT_EQ(function.getIdentifier(), nullptr);
  EXPECT_EQ(function.getFile(), nullptr);
  EXPECT_EQ(function.getEffect(), EffectKind::NoEffect);
  EXPECT_FALSE(db().hasFailed()) << "damaged data is no failed read";
}

TEST_F(FrontendDatabaseTest, GetOfAnEnumConstantOrLabelWithoutName_IsNullAndRemembered) {
  execute("INSERT INTO Identifier VALUES (1, '', 0, 0)");
  execute("INSERT INTO EnumConstant VALUES (2, 1, NULL, 1, 1)");
  execute("INSERT INTO Label VALUES (3, 1, NULL, 1, 1)");
  EXPECT_EQ(db().get<EnumConstant>(2), nullptr);
  EXPECT_EQ(db().get<Label>(3), nullptr);
  trace.take();
  EXPECT_EQ(db().get<EnumConstant>(2), nullptr);
  EXPECT_EQ(db().get<Label>(3), nullptr);
  EXPECT_THAT(trace.take(), IsEmpty());
  takeReports();  // the row counts as left out; the texts of that are the loads' to test
}

TEST_F(FrontendDatabaseTest, Walks_GoThroughTheTableOnceAndStartOver) {
  insertFiles();
  for (int round = 0; round < 2; ++round) {
    EXPECT_THAT(walk<File>(), ElementsAre(3, 5));
    bool first = true;
    EXPECT_EQ(db().listId<File>(first), 3);
    EXPECT_FALSE(first);
    EXPECT_EQ(db().listId<File>(first), 5);
    EXPECT_EQ(db().listId<File>(first), 0);
  }
  // A walk stopped early goes on where it stopped.
  bool first = true;
  File row;
  EXPECT_EQ(db().listALL(first, row), 3);
  EXPECT_THAT(walk<File>(), ElementsAre(5));
  for (int round = 0; round < 2; ++round) {
    db().truncate<File>();
    EXPECT_THAT(walk<File>(), IsEmpty());
  }
}

// --- An element whose row may be there already. What the others add to it: model_test.cpp.

class AddOrUpdate : public CompilationTest {
 protected:
  AddOrUpdate() {
    execute("INSERT INTO File VALUES (1, 'a.c', 0, 0, 0)");
    execute("INSERT INTO Identifier VALUES (1, 'n', 5, 1)");
    n = db().get<Identifier>(1);
    place = {db().get<File>(1), 10, 20};
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

/// One operation that steps a statement, the code that it expects, and what it answers when the
/// step fails.
struct Operation : NamedCase {
  int expected;
  bool isRead;
  std::function<long long(CompilationDatabase&)> run;
};

class FailingOperation : public FrontendDatabaseTest,
                         public testing::WithParamInterface<Operation> {};

TEST_P(FailingOperation, LockedFile_IsReportedByOneLineAndAnswersZero) {
  insertFiles();
  db().setBusyTimeout(0);
  const RawConnection other(compFile);
  other.rows("BEGIN EXCLUSIVE");
  EXPECT_EQ(GetParam().run(db()), 0);
  const std::string report = takeReports();
  EXPECT_THAT(report.substr(0, report.find('\n') + 1),
              isReport(SQLITE_BUSY, GetParam().expected, "database is locked"));
  EXPECT_TRUE(!GetParam().isRead || lineCount(report) == 1) << report;
  EXPECT_EQ(db().hasFailed(), GetParam().isRead);
  EXPECT_EQ(db().lastFailure().table, "File");
  other.rows("COMMIT");
  EXPECT_THAT(walk<File>(), ElementsAre(3, 5)) << "the statements go on";
}

TEST_P(FailingOperation, MissingTable_IsReportedOnceAndAnswersZero) {
  execute("DROP TABLE File");
  db().disconnect();
  ASSERT_TRUE(db().quick_connect(false));
  EXPECT_EQ(GetParam().run(db()), 0);
  expectOneSqliteError("rc=1 (expected rc=0) no such table: File\n");
  EXPECT_TRUE(!GetParam().isRead || db().hasFailed());
}

TEST_P(FailingOperation, Unconnected_IsReportedByOneLineAndAnswersZero) {
  db().disconnect();
  EXPECT_EQ(GetParam().run(db()), 0);
  expectOneLine({compFile});
  EXPECT_EQ(db().hasFailed(), GetParam().isRead);
}

/// Runs one with a file that may be c.c, row 3.
template <class Run>
auto onAFile(const char* path, Run run) {
  return [path, run](CompilationDatabase& db) -> long long {
    File file(path);
    file.setId(3);
    bool first = true;
    return run(db, file, first);
  };
}

const Operation kOperations[] = {
    {"Add", 101, false, onAFile("x.c", [](auto& db, File& f, bool&) { return db.add(f); })},
    {"Update", 101, false,
     onAFile("c.c", [](auto& db, File& f, bool&) { return db.update(f), 0; })},
    {"GetId", 101, true, onAFile("c.c", [](auto& db, File& f, bool&) { return db.getId(f); })},
    {"Get", 100, true,
     onAFile("", [](auto& db, File& f, bool&) { return db.get(f), f.getPath().size(); })},
    {"ListId", 101, true,
     onAFile("", [](auto& db, File&, bool& b) { return db.template listId<File>(b); })},
    {"ListAll", 101, true,
     onAFile("", [](auto& db, File& f, bool& b) { return db.listALL(b, f); })},
    {"Truncate", 101, false,
     onAFile("", [](auto& db, File&, bool&) { return db.template truncate<File>(), 0; })},
};
INSTANTIATE_TEST_SUITE_P(Of, FailingOperation, testing::ValuesIn(kOperations), caseName);

}  // namespace
}  // namespace fe_db_tests
