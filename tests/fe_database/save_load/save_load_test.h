#pragma once

#include "tests/support/content.h"
#include "tests/support/database_fixture.h"

namespace fe_db_tests {

class SaveLoadTest : public CompilationTest {
 protected:
  /// The dataset's preprocessing database, with its tables.
  PreprocessingDatabase& connectPp() {
    PreprocessingDatabase& pp = data->getPpDb();
    EXPECT_TRUE(pp.quick_connect(false));
    EXPECT_TRUE(pp.addTables());
    trace.take();
    return pp;
  }
  std::string ppRows(const std::string& sql) const { return fe_db_tests::rows(ppFile, sql); }

  bool saveToCompDb() {
    data->setDataNeededForDbLink();
    return data->saveToCompDB();
  }

  /// What `fill` and an undisturbed save leave in the file, which is empty again afterwards.
  std::string contentOfASave() {
    fill();
    EXPECT_TRUE(saveToCompDb());
    const std::string saved = content(compFile);
    std::filesystem::remove(compFile);
    fe_db_tools::createCompilationDatabase(compFile, fe_db_tools::KeyIndexes::no);
    openAgain();
    return saved;
  }

  /// From the first statement that begins so on: SQLite cannot make the journal of the file, and
  /// rolls nothing back for it. `once`: the next statement finds that it can.
  void failJournalAt(const std::string& beginning, const std::string& file, bool once) {
    trace.onStatement = [=, failed = false](const std::string& sql) mutable {
      if (failed && once) std::filesystem::remove(file + "-journal");
      if (!failed && sql.starts_with(beginning)) {
        failed = std::filesystem::create_directory(file + "-journal");
      }
    };
  }
  void letJournalBe(const std::string& file) {
    trace.onStatement = nullptr;
    std::filesystem::remove(file + "-journal");
  }

  /// Something of every class, as a front end would see it.
  void fill() {
    File* a = &data->emplaceFile("a.c", static_cast<FileKind>(1), {});
    File* h = &data->emplaceFile("a.h", static_cast<FileKind>(2), {});
    Type* base = data->emplaceType("base", false, {h, 1, 8}, TypeKind::Tagged4, true, 1, 2);
    Type* alias = data->emplaceType("alias", false, {h, 2, 9}, TypeKind::Named512, true, 3, 0);
    data->emplaceTypeReference(alias, base, true);
    Variable* var = data->emplaceVariable("var", Localization{a, 3, 1}, base, true,
                                          LinkageKind::External, true);
    Function* f = data->emplaceFunction("f", "f", {a, 4, 1}, true, false, EffectKind::NoEffect,
                                        LinkageKind::External, true);
    Function* g = data->emplaceFunction("g", "g_source", {a, 5, 1}, false, true,
                                        EffectKind::Unknown, LinkageKind::None, true);
    g->setRefCount(2);
    data->emplaceExternalIdentifier("var", {EntityKind::Variable, var}, true);
    data->emplaceExternalIdentifier("f", {EntityKind::Function, f}, true);
    data->emplaceField("field", {h, 1, 20}, true, 4);
    data->emplaceEnumConstant("ENUM", {h, 7, 3}, true);
    data->emplaceLabel("label", {a, 8, 1}, true);
    data->emplaceCallPoint(f, g, {a, 9, 5}, true, true);
    Macro& macro = data->emplaceMacro("M", {a, 10, 9}, true, 5);
    macro.setValue(std::uint64_t{7});
    macro.setText("7u");
    data->emplaceMacro("PREDEFINED", {nullptr, 0, 3}, true, 0);
    MacroInvocation* use = data->emplaceMacroInvocation(&macro, {a, 11, 2}, {a, 110, 4, 6});
    data->emplaceMacroInvocationCodeOrigin({a, 10, 11}, use, 0, 2, false, "7u");
    data->emplaceMacroInvocationCodeOrigin({nullptr, 0, 3}, use, 2, 3, true, ";");
    data->emplaceMacroExpansion({a, 11, 2}, "7u", "M", 110, 4);
  }
};

}  // namespace fe_db_tests
