#include <gmock/gmock.h>

#include "tests/support/database_fixture.h"

namespace fe_db_tests {
namespace {

constexpr char kRows[] = R"sql(
INSERT INTO File VALUES (1, 'a.h', 0, 0, 0), (2, 'a.c', 0, 0, 0);
INSERT INTO Identifier (IdentifierId, Name, Count, Kind) VALUES
  (1, 'f', 3, 2), (2, 'x', 2, 4), (3, 'M', 5, 8), (4, 'T', 1, 1), (5, 'E', 1, 32), (6, 'fld', 1, 64),
  (7, 'out', 1, 128), (8, 'rather_long', 1, 6), (9, '', 1, 32);
INSERT INTO Macro VALUES (1, 3, 1, 1, 9, 0, NULL, 0, 1, 0, 0, 0, ''), (2, 3, 2, 2, 9, 7, 1, 1, 1, 0, 0, 0, '1');
INSERT INTO Type VALUES (1, 4, 0, 0, 0, 1, 3, 1, 512, 0, 0), (2, 4, 1, 0, 0, 1, 4, 1, 64, 0, 0),
  (3, 4, 0, 0, 0, 1, 5, 1, 256, 2, 0), (4, 4, 0, 0, 0, 1, 6, 1, 0, 0, 0);
INSERT INTO TypeReference VALUES (1, 3), (3, NULL);
INSERT INTO Variable VALUES (1, 2, 1, 7, 1, 1, 0, 1, 2), (2, 2, 2, 8, 1, 1, 1, 1, 3), (3, 8, 2, 9, 1, NULL, 1, 0, 5);
INSERT INTO Function VALUES (1, 1, 1, 1, 10, 1, 0, 0, 2, 1, 4), (2, 1, 1, 2, 11, 1, 1, 0, 0, 1, 4),
  (3, 8, 8, 2, 12, 1, 1, 0, 2, 2, 0);
INSERT INTO ExternalIdentifier VALUES (1, 1, 1, 2), (2, 1, -1, 0), (3, 1, 0, 1);
INSERT INTO Field VALUES (1, 6, 1, 13, 1, 0), (2, 6, 1, 14, 1, 1);
INSERT INTO EnumConstant VALUES (1, 5, 1, 15, 1), (2, 5, 1, 16, 1), (3, 9, 1, 17, 1);
INSERT INTO Label VALUES (1, 7, 2, 18, 1);
INSERT INTO CallPoint VALUES (1, 2, 30, 1, 0, 2, 1), (2, 2, 20, 1, 1, 2, 1), (3, 2, 21, 1, 0, 2, 3);
)sql";

// What an answer is called: the line that it stands on, or what there is instead.
std::string text(const LocatedElement* e) { return std::to_string(e->getLine()); }
std::string text(const Identifier* e) { return e->getName(); }
std::string text(const ExternalIdentifier* e) {
  return std::to_string(static_cast<int>(e->getEntityKind()));
}
std::string text(const TypeReference* e) { return text(e->getDeclaredType()); }

class Search : public CompilationTest {
 protected:
  Search() {
    execute(kRows);
    openAgain();
  }

  /// All answers of a search from where `first` stands, separated by blanks.
  template <class Find>
  std::string walk(Find&& find, bool& first) {
    std::string answers;
    while (const auto* element = find(*data, first)) answers += text(element) + ' ';
    return answers;
  }

  Identifier f{"f", {}, 0}, x{"x", {}, 0}, M{"M", {}, 0}, T{"T", {}, 0}, E{"E", {}, 0},
      fld{"fld", {}, 0}, out{"out", {}, 0}, unknown{"no_such_name", {}, 0};
  Identifier* none = nullptr;
  LinkageKind linkage{};
};

using Data = CompilationData;

/// Every cursor: its whole answer; the same again with `first` still false, and again with true;
/// and that it leaves `first` false.
TEST_F(Search, EveryCursor_AnswersWholeAndAgain) {
  const auto expect = [this](const char* expected, auto cursor, auto... arguments) {
    const auto find = [&](Data& dataset, bool& first) {
      return (dataset.*cursor)(arguments..., first);
    };
    bool first = true;
    EXPECT_EQ(walk(find, first), expected);
    EXPECT_FALSE(first);
    EXPECT_EQ(walk(find, first), expected) << "after the end";
    first = true;
    EXPECT_EQ(walk(find, first), expected) << "begun anew";
  };
  const auto none = LinkageKind::None, external = LinkageKind::External;
  const auto functionOrVariable = IdentifierKind::Function | IdentifierKind::Variable;
  expect("20 21 30 ", &Data::findCallPoint);
  expect("30 ", &Data::findCallPointWithNoEffect);
  expect("15 16 ", &Data::findEnumConstantFromIdentifier, &E);
  expect("-1 0 1 ", &Data::findExternalIdentifierFromIdentifier, &f);
  expect("13 14 ", &Data::findFieldFromIdentifier, &fld);
  expect("13 ", &Data::findFieldFromRefCount, 0);
  expect("10 11 ", &Data::findFunctionFromIdentifier, &f);
  expect("10 11 ", &Data::findFunctionFromIdentifierAndLinkage, &f, external);
  expect("f x rather_long ", &Data::findIdentifierFromKind, functionOrVariable);
  expect("f x ", &Data::findIdentifierFromKindAndCount, functionOrVariable, 2,
         persistence::OperationKind{9});
  expect("18 ", &Data::findLabelFromIdentifier, &out);
  expect("1 2 ", &Data::findMacro);
  expect("1 2 ", &Data::findMacroFromIdentifier, &M);
  expect("1 ", &Data::findMacroFromRefCount, 0);
  expect("3 4 5 6 ", &Data::findTypeFromIdentifier, &T);
  expect("3 5 ", &Data::findTypeFromIdentifierAndKind, &T, TypeKind::NamedMask);
  expect("3 ", &Data::findTypeFromRefCount, 0);
  expect("5 ", &Data::findTypeFromRefTagCount, 0);
  expect("7 8 ", &Data::findVariableFromIdentifier, &x);
  expect("7 8 ", &Data::findVariableFromIdentifierAndLinkage, &x, external);
  expect("7 8 ", &Data::findVariableFromRefCountAndLinkage, 5, external);
  expect("", &Data::findVariableFromRefCountAndLinkage, 2, external);
  expect("9 ", &Data::findVariableFromRefCountAndLinkage, 5, none);
  bool first = true;
  Type unstored, *const declared = data->findTypeFromRefCount(2, first);
  expect("5 ", &Data::findTypeReferenceFromType, declared);
  expect("", &Data::findTypeReferenceFromType, &unstored);
}

TEST_F(Search, Identifiers_ComeWithAllOfThem) {
  bool first = true;
  EXPECT_THAT(walk([](Data& d, bool& b) { return d.findIdentifier(b); }, first),
              testing::AllOf(testing::HasSubstr("rather_long "), testing::HasSubstr("M ")));
}

TEST_F(Search, OfLeastLength_TakesOneKindAndReportsTheLinkage) {
  const struct {
    IdentifierKind kind;
    std::size_t length;
    std::multiset<std::string> answers;
  } cases[] = {
      {IdentifierKind::Function, 2, {"12/2"}},
      {IdentifierKind::Function, 1, {"10/1", "11/1", "12/2"}},
      {IdentifierKind::Variable, 11, {"9/0"}},
      {IdentifierKind::Variable, 12, {}},
      {IdentifierKind::Type, 0, {"3/0", "5/0"}},
      {IdentifierKind::Macro, 1, {"1/0", "2/0"}},
      {IdentifierKind::Field, 3, {"13/0", "14/0"}},
      {IdentifierKind::Label, 3, {"18/0"}},
      // A row with an empty name is no enum constant.
      {IdentifierKind::EnumConstant, 0, {"15/0", "16/0"}},
  };
  for (const auto& [kind, length, answers] : cases) {
    std::multiset<std::string> found;
    bool first = true;
    while (const auto* e = data->findObjectFromMinLength(kind, length, linkage, first)) {
      found.insert(text(e) + '/' + std::to_string(static_cast<int>(linkage)));
    }
    EXPECT_EQ(found, answers) << static_cast<int>(kind) << ' ' << length;
    EXPECT_EQ(linkage, LinkageKind::None) << "at the end";
    EXPECT_FALSE(first);
  }
  for (int kind : {0, 3, 16, 256, -1}) {
    bool first = true;
    linkage = LinkageKind::External;
    EXPECT_EQ(data->findObjectFromMinLength(static_cast<IdentifierKind>(kind), 0, linkage, first),
              nullptr);
    EXPECT_TRUE(first);
    EXPECT_EQ(linkage, LinkageKind::None);
  }
}

TEST_F(Search, NameWithoutARow_FindsNothingAndStaysAsItIs) {
  bool first = true;
  EXPECT_EQ(data->findFunctionFromIdentifier(&unknown, first), nullptr);
  EXPECT_FALSE(first);
  EXPECT_EQ(data->findFunctionFromIdentifier(none, first = true), nullptr);
  EXPECT_EQ(data->findExternalDefinedFunction(&unknown), nullptr);
  EXPECT_EQ(data->findExternalDefinedFunction(&x), nullptr);
  for (int i = 0; i < 2; ++i) {
    const Function* defined = data->findExternalDefinedFunction(&f);
    ASSERT_NE(defined, nullptr);
    EXPECT_EQ(text(defined), "11");
  }
  EXPECT_EQ(f.getId(), 0) << "a search leaves the caller's element alone";
  EXPECT_EQ(f.getCount(), 0U);
}

TEST_F(Search, CallersAndCallees_LookTheFunctionUp) {
  bool first = true;
  Function* const callee = data->findFunctionFromIdentifier(&f, first);
  Function* const caller = data->findFunctionFromIdentifier(&f, first);
  ASSERT_TRUE(callee != nullptr && caller != nullptr);
  for (const long long id : {1, 2, 3, 0}) {
    first = id == 1;
    EXPECT_EQ(db().listCallPointIdFromCaller(caller, first), id);
  }
  callee->setId(77);
  EXPECT_EQ(db().listCallPointIdFromCallee(callee, first = true), 1);
  EXPECT_EQ(callee->getId(), 77) << "a search leaves the caller's element alone";
  EXPECT_EQ(db().listEntityIdFromRefCount(1, 0, first = true), 3);
}

/// The save knows its rows only by what it has looked up, so a row that is found afterwards is a
/// repeat of the element that was saved into it.
TEST_F(Search, FoundAfterASave_FoldsTheRowIntoTheElementAgain) {
  data->setPropagateMacroInfo();
  data->emplaceMacro("M", at("a.c", 2, 9), /*accumulate=*/true, /*refCount=*/1);
  ASSERT_TRUE(data->saveToCompDB());
  bool first = true;
  const Macro* found = data->findMacroFromRefCount(8, first);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->getRefCount(), 16U);
  EXPECT_EQ(data->findMacroFromRefCount(8, first), nullptr);
}

// --- Reports.

class Reports : public Search {
 protected:
  static long long count(const std::string& text, const std::string& part) {
    long long n = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++n;
    return n;
  }
  using List = std::function<long long(CompilationDatabase&, bool&)>;
  static List listing(auto list, auto... arguments) {
    return [=](CompilationDatabase& db, bool& first) { return (db.*list)(arguments..., first); };
  }
  using Db = CompilationDatabase;
};

TEST_F(Reports, BegunWhileOpen_IsRefusedBySqlite_AndTheOldRowsGoOn) {
  const struct {
    const char* name;
    List list;
    int reported;
  } cases[] = {
      {"kind", listing(&Db::listIdentifierIdFromKind, 6), 1},
      {"kind and count", listing(&Db::listIdentifierIdFromKindAndCount, 6, 1, 0), 2},
      {"macro", listing(&Db::listMacroIdFromIdentifier, &M), 1},
      {"function", [&](auto& d, bool& b) { return d.listEntityIdFromIdentifier(1, &f, b); }, 0},
      {"type", listing(&Db::listTypeIdFromIdentifier, &T), 0},
      {"external", listing(&Db::listExternalIdentifierFromIdentifier, &f), 1},
      {"enum constant", listing(&Db::listEnumConstantIdFromIdentifier, &E), 1},
      {"sum", listing(&Db::listVariableIdFromRefCountAndLinkage, 5, 1), 0},
      {"length", listing(&Db::listIdFromMinLength<Function>, 1), 1},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    bool first = true;
    const long long one = test.list(db(), first);
    EXPECT_NE(one, 0);
    first = true;
    const long long two = test.list(db(), first);
    EXPECT_NE(two, 0);
    EXPECT_NE(two, one) << "the walk went on";
    const std::string reports = takeReports();
    EXPECT_THAT(reports, testing::HasSubstr("rc=21 (expected rc=0) "));
    EXPECT_EQ(count(reports, "While executing "), test.reported) << reports;
    while (test.list(db(), first) != 0) {
    }
  }
}

/// A step fails when somebody has dropped the table; so does the reset after it, for raw queries.
TEST_F(Reports, FailedStep_IsTheEnd_AndIsRemembered) {
  const struct {
    const char* table;
    List list;
    int lines;
    int reported;
  } cases[] = {
      {"Label", listing(&Db::listLabelIdFromIdentifier, &out), 2, 2},
      {"Field", listing(&Db::listFieldIdFromRefCount, 0), 2, 1},
      {"ExternalIdentifier", listing(&Db::listExternalIdentifierFromIdentifier, &f), 2, 0},
      {"Type", listing(&Db::listTypeIdFromRefCount, 0), 2, 0},
      {"Variable", listing(&Db::listVariableIdFromRefCountAndLinkage, 5, 1), 1, 0},
  };
  EXPECT_FALSE(db().hasFailed());
  for (const auto& test : cases) {
    SCOPED_TRACE(test.table);
    execute(std::string("DROP TABLE ") + test.table);
    bool first = true;
    EXPECT_EQ(test.list(db(), first), 0);
    EXPECT_FALSE(first);
    const std::string reports = takeReports();
    EXPECT_EQ(count(reports, std::string("no such table: ") + test.table), test.lines) << reports;
    EXPECT_EQ(count(reports, "While executing "), test.reported) << reports;
  }
  EXPECT_TRUE(db().hasFailed());
  EXPECT_EQ(db().lastFailure().table, "Label");
}

TEST_F(Reports, FailedSearchForOneAnswer_IsReportedOnce) {
  execute("DROP TABLE Function");
  EXPECT_EQ(data->findExternalDefinedFunction(&f), nullptr);
  expectOneSqliteError("no such table: Function");
}

/// The index of a damaged file can name a row that is not in the table. A reference to such a row
/// makes an empty element, which is no answer either.
TEST_F(Reports, FoundIdWithoutRow_IsPassedOverAndCounted) {
  execute(
      "CREATE INDEX Field_Name ON Field (IdentifierId);"
      "CREATE INDEX Function_Name ON Function (IdentifierId)");
  // The entries stay in the indexes when they are hidden from the deletion.
  execute(
      "CREATE TABLE Saved AS SELECT * FROM sqlite_schema WHERE type='index';"
      "PRAGMA writable_schema=ON; DELETE FROM sqlite_schema WHERE type='index' AND "
      "name IN ('Field_Name', 'Function_Name')");
  execute("DELETE FROM Field WHERE FieldId=1; DELETE FROM Function WHERE FunctionId=1");
  execute(
      "PRAGMA writable_schema=ON; INSERT INTO sqlite_schema SELECT * FROM Saved WHERE name IN "
      "('Field_Name', 'Function_Name')");
  openAgain();
  bool first = true;
  EXPECT_EQ(walk([&](Data& d, bool& f) { return d.findFieldFromIdentifier(&fld, f); }, first),
            "14 ");
  takeReports();
  // Calls refer to the function that has no row.
  first = true;
  EXPECT_EQ(walk([](Data& d, bool& f) { return d.findCallPoint(f); }, first), "20 21 30 ");
  takeReports();
  first = true;
  EXPECT_EQ(walk([&](Data& d, bool& b) { return d.findFunctionFromIdentifier(&f, b); }, first),
            "11 ");
  EXPECT_EQ(db().leftOutRows(),
            (std::map<std::string, std::size_t>{{"Field", 1}, {"Function", 1}}));
}

TEST_F(Reports, TableThatIsMissing_IsReportedWhenConnecting) {
  execute("DROP TABLE Label");
  data.reset();
  data = CompilationData::newInstance(compFile, "");
  EXPECT_TRUE(db().quick_connect(false));
  EXPECT_THAT(takeReports(),
              testing::StartsWith("Error: executing SQL query:SELECT LabelId FROM Label WHERE "
                                  "IdentifierId=?\norvalesca: sqlite error:unknown:"));
  EXPECT_TRUE(db().hasFailed());
  EXPECT_EQ(db().lastFailure().reason, "no such table: Label");
}

TEST_F(Reports, WithoutADatabase_OrAConnection_OneLineAndNull) {
  const auto loose = CompilationData::newInstance("", "");
  bool first = true;
  EXPECT_EQ(loose->findMacro(first), nullptr);
  EXPECT_EQ(takeReports(), "orvalesca: CompilationData::findMacro: no compilation database\n");
  db().disconnect();
  EXPECT_EQ(data->findTypeFromRefCount(0, first), nullptr);
  EXPECT_EQ(takeReports(), "orvalesca: " + compFile +
                               ": FrontendDatabase::listTypeIdFromRefCount(): the database is not "
                               "connected\n");
}

}  // namespace
}  // namespace fe_db_tests
