#include "tests/fe_database/save_load/save_load_test.h"

namespace fe_db_tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

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

TEST_F(Load, FromCompDbWithoutTheFlag_ReadsFourTables) {
  saveBothAndOpenAgain();
  EXPECT_TRUE(data->loadFromDB(true));
  EXPECT_THAT(tablesRead(), ElementsAre("File", "Identifier", "Macro", "MacroInvocation"));
  EXPECT_TRUE(data->getFunctions().empty());
}

TEST_F(Load, FromCompDbWithTheFlag_ReadsAllButTypeReferencesAndMacroTexts) {
  saveBothAndOpenAgain();
  EXPECT_TRUE(loadAll());
  EXPECT_THAT(tablesRead(), ElementsAre("File", "Identifier", "Macro", "MacroInvocation", "Type",
                                        "Variable", "Function", "ExternalIdentifier", "Field",
                                        "EnumConstant", "Label", "CallPoint"));
  const Function* f = data->getFunction("f", {data->getFile("a.c"), 4, 1});
  ASSERT_NE(f, nullptr);
  EXPECT_EQ(db().getFunction(f->getId()), f);
  const CallPoint* call =
      data->getCallPoint({data->getFile("a.c"), 9, 5}, const_cast<Function*>(f));
  ASSERT_NE(call, nullptr);
  EXPECT_NE(call->getId(), 0);
  EXPECT_EQ(call->getCallee()->getSourceName()->getName(), "g_source");
  EXPECT_EQ(data->getVariables().begin()->getType()->getIdentifier()->getName(), "base");
  EXPECT_FALSE(data->isMacroExpansionLoaded());
  checkDataset(*data);
}

TEST_F(Load, NamesOfFieldsEnumConstantsAndLabels_AreCountedOnceMoreAndLoseTheirIds) {
  saveBothAndOpenAgain();
  EXPECT_TRUE(loadAll());
  for (const char* name : {"field", "ENUM", "label"}) {
    const Identifier* identifier = data->getIdentifier(name);
    EXPECT_EQ(identifier->getCount(), 2u) << name;
    EXPECT_EQ(identifier->getId(), 0) << name;
    EXPECT_TRUE(identifier->dirty) << name;
  }
  EXPECT_EQ(data->getIdentifier("f")->getCount(), 3u);
  EXPECT_NE(data->getIdentifier("f")->getId(), 0);
  EXPECT_FALSE(data->getIdentifier("f")->dirty);
}

TEST_F(Load, SecondLoadOfTheProcess_ReadsNothingWhateverTheDataset) {
  saveBothAndOpenAgain();
  EXPECT_TRUE(loadAll());
  tablesRead();
  EXPECT_TRUE(loadAll());
  EXPECT_THAT(tablesRead(), IsEmpty());
  data = CompilationData::newInstance(compFile, "");
  ASSERT_TRUE(db().quick_connect(false));
  EXPECT_TRUE(loadAll());
  EXPECT_THAT(tablesRead(), IsEmpty());
  EXPECT_EQ(data->getFile("a.c"), nullptr);
  EXPECT_NE(db().get<File>(1), nullptr) << "single rows still come";
}

TEST_F(Load, FromPpDb_LinksCodeOriginsByOffsetAndReadsExpansions) {
  saveBothAndOpenAgain();
  fe_db_tests::execute(ppFile,
                       "INSERT INTO MacroInvocationCodeOrigin VALUES (NULL, 1, 1, 1, 2, 4, 0, "
                       "'equal offset'), (NULL, 1, 1, 1, 1, 2, 0, 'between'), "
                       "(NULL, 1, 1, NULL, 0, 1, 0, 'linked to nothing')");
  EXPECT_TRUE(data->loadFromDB(false));
  EXPECT_THAT(tablesRead(), ElementsAre("File", "Identifier", "Macro", "MacroInvocation",
                                        "MacroInvocationCodeOrigin", "MacroExpansion"));
  const MacroInvocation& use = *data->getMacroInvocationForLine(110).first;
  EXPECT_NE(use.getId(), 0);
  EXPECT_EQ(use.getRange().file, data->getFile("a.c"));
  EXPECT_EQ(use.getMacro()->getValue(), Macro::Value(std::uint64_t{7}));
  EXPECT_EQ(use.getMacro()->getText(), "7u");
  std::vector<std::string> tokens;
  for (const MacroInvocationCodeOrigin* origin : use.getCodeOrigins()) {
    tokens.push_back(origin->getTokenString());
    EXPECT_EQ(origin->getId(), 0);
  }
  EXPECT_THAT(tokens, ElementsAre("7u", "between", "equal offset", ";"));
  EXPECT_TRUE(data->loadFromDB(false));
  EXPECT_EQ(use.getCodeOrigins().size(), 8u) << "a second load appends them again";
  EXPECT_TRUE(data->isMacroExpansionLoaded());
  const auto [begin, end] = data->getMacroExpansionForLine(110);
  ASSERT_EQ(std::distance(begin, end), 1);
  EXPECT_EQ(begin->getMacroCall(), "M");
  EXPECT_EQ(begin->getId(), 0);
  int emplaced = 0;
  data->eachMacroExpansion([&](const MacroExpansion&) { ++emplaced; });
  EXPECT_EQ(emplaced, 0);
}

TEST_F(Load, PartByPart_ReadsEachTableOnceAndTheCodeOriginsEachTime) {
  saveBothAndOpenAgain();
  EXPECT_TRUE(data->preLoadFromDB(true));
  EXPECT_THAT(tablesRead(), ElementsAre("File"));
  EXPECT_NE(data->getFile("a.c")->getId(), 0);
  EXPECT_TRUE(File::isLoaded && !File::isPreLoaded);
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

TEST_F(Load, StoredRowsAndSightsInMemory_FoldTogether) {
  saveBothAndOpenAgain();
  Identifier* f = data->emplaceIdentifier("f", IdentifierKind::Label, false, 10);
  Field* field =
      &data->emplaceField("field", {&data->emplaceFile("a.h", FileKind{}, {}), 1, 20}, true, 2);
  EXPECT_TRUE(loadAll());
  EXPECT_EQ(f->getCount(), 13u);
  EXPECT_EQ(static_cast<unsigned>(f->getKind()), 128u | 18u);
  EXPECT_EQ(field->getRefCount(), 6u);
  EXPECT_EQ(field->getId(), 1);
  EXPECT_EQ(data->getFile("a.h")->getKind(), FileKind{}) << "a known file stays as it is";
}

struct Damage {
  const char* name;
  const char* sql;
  const char* table;
  const char* firstId;
};

class DamagedRows : public Load, public testing::WithParamInterface<Damage> {};

TEST_P(DamagedRows, AreLeftOutWithOneLinePerTable) {
  saveBothAndOpenAgain();
  execute(GetParam().sql);
  EXPECT_TRUE(loadAll());
  const std::string report = takeReports();
  EXPECT_EQ(lineCount(report), 1) << report;
  EXPECT_THAT(report, HasSubstr(GetParam().table));
  EXPECT_THAT(report, testing::ContainsRegex("[^0-9]2 "));
  EXPECT_THAT(report, HasSubstr(GetParam().firstId));
  EXPECT_THAT(db().leftOutRows(), ElementsAre(testing::Pair(GetParam().table, 2u)));
  EXPECT_FALSE(db().hasFailed());
  EXPECT_EQ(data->getFunctions().size(), 2u);
  checkDataset(*data);
}

INSTANTIATE_TEST_SUITE_P(
    Of, DamagedRows,
    testing::Values(
        Damage{"FunctionWithoutName",
               "INSERT INTO Function VALUES (71, NULL, 1, 1, 1, 1, 0, 0, 0, 0, 0), "
               "(72, 0, 1, 1, 1, 1, 0, 0, 0, 0, 0)",
               "Function", "71"},
        Damage{"VariableWithoutFile",
               "INSERT INTO Variable VALUES (71, 1, NULL, 1, 1, NULL, 0, 0, 0), "
               "(72, 1, NULL, 1, 1, NULL, 0, 0, 0)",
               "Variable", "71"},
        Damage{"EnumConstantWithoutName",
               "INSERT INTO EnumConstant VALUES (71, NULL, 1, 1, 1), (72, NULL, 1, 2, 1)",
               "EnumConstant", "71"},
        Damage{"MacroWithoutName",
               "INSERT INTO Macro (MacroId, DeclLineNum) VALUES (71, 1), (72, 2)", "Macro", "71"},
        Damage{"FieldWithoutName",
               "INSERT INTO Field (FieldId, DeclLineNum) VALUES (71, 1), (72, 2)", "Field", "71"}),
    caseName);

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
  ASSERT_TRUE(db().quick_connect(false));
  EXPECT_THAT(takeReports(), HasSubstr("Error: executing SQL query:SELECT MacroId FROM Macro"));
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

TEST_F(Load, WhileAWriterIsAtWork_WaitsForNothing) {
  saveBothAndOpenAgain();
  const RawConnection writer(compFile);
  writer.rows("BEGIN IMMEDIATE; UPDATE File SET Kind = 5");
  db().setBusyTimeout(0);
  EXPECT_TRUE(loadAll());
  writer.rows("ROLLBACK");
}

}  // namespace
}  // namespace fe_db_tests
