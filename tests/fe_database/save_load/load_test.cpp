#include <map>

#include "tests/fe_database/save_load/save_load_test.h"

namespace fe_db_tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Load : public SaveLoadTest {
 protected:
  /// Both files hold what a first process saved; `data` is a new, empty dataset.
  void saveBothAndOpenAgain() {
    PreprocessingDatabase& pp = connectPp();
    fill();
    ASSERT_TRUE(data->saveToPpDB());
    data->resetIds(pp);
    ASSERT_TRUE(saveToCompDb());
    openAgain();
    connectPp();
  }
  bool loadAll() {
    data->setDataNeededForDbLink();
    return data->loadFromDB(/*fromCompDb=*/true);
  }
  /// The tables that the statements since the last call read whole.
  std::vector<std::string> tablesRead() {
    std::vector<std::string> tables;
    for (const std::string& sql : trace.take()) {
      const auto at = sql.find(" FROM ");
      if (sql.find("SELECT") == 0 && sql.find("sqlite_") == std::string::npos &&
          sql.find(" WHERE ") == std::string::npos && at != std::string::npos) {
        tables.push_back(sql.substr(at + 6));
      }
    }
    return tables;
  }
};

// What becomes of the rows: model_test.cpp.
TEST_F(Load, FromCompDb_ReadsAllButTypeReferencesAndMacroTexts) {
  saveBothAndOpenAgain();
  EXPECT_TRUE(loadAll());
  EXPECT_THAT(tablesRead(),
              ElementsAre("File", "Identifier", "Macro", "MacroInvocation", "Type", "Variable",
                          "Function", "ExternalIdentifier", "Field", "EnumConstant", "Label",
                          "CallPoint", "Unit", "UnitFile", "Include", "Reference", "Property"));
  const Function* f = data->getFunction("f", {data->getFile("a.c"), 4, 1});
  ASSERT_NE(f, nullptr);
  EXPECT_EQ(db().getFunction(f->getId()), f);
}

TEST_F(Load, PartByPart_ReadsEachTableOnceAndTheCodeOriginsEachTime) {
  saveBothAndOpenAgain();
  EXPECT_TRUE(data->preLoadFromDB(true));
  EXPECT_THAT(tablesRead(), ElementsAre("File"));
  EXPECT_TRUE(data->loadFromDB(true));
  EXPECT_THAT(tablesRead(), ElementsAre("Identifier", "Macro", "MacroInvocation"));
  EXPECT_TRUE(data->loadFromDB(false));
  EXPECT_THAT(tablesRead(), ElementsAre("MacroInvocationCodeOrigin", "MacroExpansion"));
  EXPECT_TRUE(data->loadFromDB(false));
  EXPECT_THAT(tablesRead(), ElementsAre("MacroInvocationCodeOrigin"));
}

TEST_F(Load, MacroExpansions_AreReadOnceAndThenCostNoTransaction) {
  saveBothAndOpenAgain();
  EXPECT_TRUE(data->loadMacroExpansionFromPbDB(data->getPpDb()));
  EXPECT_THAT(tablesRead(), ElementsAre("File", "Identifier", "Macro", "MacroExpansion"));
  EXPECT_TRUE(data->isMacroExpansionLoaded());
  trace.take();
  EXPECT_TRUE(data->loadMacroExpansionFromPbDB(data->getPpDb()));
  EXPECT_THAT(trace.take(), IsEmpty());
}

// Two rows of each table, 71 and 72, lack what their element cannot do without.
TEST_F(Load, DamagedRows_AreLeftOutWithOneLinePerTable) {
  saveBothAndOpenAgain();
  execute(
      "INSERT INTO Function (FunctionId, DeclLineNum) VALUES (71, 1), (72, 2);"
      "INSERT INTO Variable (VariableId, IdentifierId) VALUES (71, 1), (72, 1);"
      "INSERT INTO EnumConstant (EnumConstantId, DeclLineNum) VALUES (71, 1), (72, 2);"
      "INSERT INTO Macro (MacroId, DeclLineNum) VALUES (71, 1), (72, 2);"
      "INSERT INTO Field (FieldId, DeclLineNum) VALUES (71, 1), (72, 2)");
  EXPECT_TRUE(loadAll());
  std::map<std::string, std::size_t> expected;
  std::istringstream report(takeReports());
  for (const char* table : {"Macro", "Variable", "Function", "Field", "EnumConstant"}) {
    expected[table] = 2;
    std::string line;
    std::getline(report, line);
    EXPECT_THAT(line, testing::ContainsRegex(std::string(table) + ": 2 rows .* id 71$"));
  }
  EXPECT_EQ(report.peek(), EOF);
  EXPECT_EQ(db().leftOutRows(), expected);
  EXPECT_FALSE(db().hasFailed());
  EXPECT_EQ(data->getFunctions().size(), 2u);
}

TEST_F(Load, RowsThatReferToARowLeftOut_AreLeftOutThemselves) {
  saveBothAndOpenAgain();
  execute("INSERT INTO Function VALUES (71, NULL, 1, 1, 1, 1, 0, 0, 0, 0, 0)");
  execute("INSERT INTO ExternalIdentifier VALUES (81, 1, 1, 71)");
  execute("INSERT INTO CallPoint VALUES (91, 1, 1, 1, 0, 71, 1)");
  EXPECT_TRUE(loadAll());
  EXPECT_EQ(lineCount(takeReports()), 3);
  EXPECT_THAT(db().leftOutRows(),
              ElementsAre(testing::Pair("CallPoint", 1u), testing::Pair("ExternalIdentifier", 1u),
                          testing::Pair("Function", 1u)));
}

TEST_F(Load, TableThatCannotBeRead_IsReportedRememberedAndTheLoadGoesOn) {
  saveBothAndOpenAgain();
  execute("DROP TABLE Macro");
  EXPECT_TRUE(data->loadFromDB(true));
  EXPECT_THAT(takeReports(), HasSubstr("no such table: Macro"));
  EXPECT_TRUE(db().hasFailed());
  EXPECT_EQ(db().lastFailure().table, "Macro");
  EXPECT_TRUE(Macro::isLoaded && MacroInvocation::isLoaded);
  db().disconnect();
  EXPECT_TRUE(db().hasFailed()) << "the rows in memory are still too few";
}

TEST_F(Load, RowWithIdZero_EndsTheWalkAndCountsAsAFailedRead) {
  execute(
      "INSERT INTO File VALUES (-1, 'minus', 0, 0, 0), (0, 'zero', 0, 0, 0), "
      "(1, 'one', 0, 0, 0)");
  EXPECT_TRUE(data->preLoadFromDB(true));
  EXPECT_NE(data->getFile("minus"), nullptr);
  EXPECT_EQ(data->getFile("one"), nullptr);
  EXPECT_TRUE(db().hasFailed());
  takeReports();
}

}  // namespace
}  // namespace fe_db_tests
