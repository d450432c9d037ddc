#include "tests/support/cross_reference.h"

#include "tests/fe_database/save_load/save_load_test.h"

/// Saving and loading the five tables that a compilation database may lack.
namespace fe_db_tests {
namespace {

using Roles = ReferenceRoles;
using Flags = PropertyFlags;

struct CrossReference : SaveLoadTest {
  /// Something of every table about what fill() makes.
  void fillExtensions(Roles roles, Flags flags, const char* owner, const char* scope) {
    File* a = data->getFile("a.c");
    File* h = data->getFile("a.h");
    const auto named = [&](const char* name) { return data->getIdentifier(name); };
    Function* f = data->getFunction("f", {a, 4, 1});
    Type* base = data->getType({h, 1, 8}, named("base"));
    Type* alias = data->getType({h, 2, 9}, named("alias"));
    Unit& unit = data->emplaceUnit(a, "/build", "/build/a.o", "cc -c a.c");
    unit.setName("a.c"), unit.setRecorder("test 1"), unit.setOptions("all"), unit.setDigest("d1");
    data->emplaceUnit(a, "/build", "", "cc -fsyntax-only a.c");
    for (File* file : {a, h}) data->emplaceUnitFile(&unit, file);
    data->emplaceInclude(a, 1, h, IncludeKind::Quoted);
    const EntityReference entities[] = {base,
                                        f,
                                        data->getVariable({a, 3, 1}, named("var")),
                                        data->getMacro(named("M")),
                                        data->getEnumConstant({h, 7, 3}, named("ENUM")),
                                        data->getField({h, 1, 20}, named("field")),
                                        data->getLabel({a, 8, 1}, named("label"))};
    for (const EntityReference& entity : entities) {
      data->emplaceReference(entity, {a, 20, 3}, roles);
      data->emplaceProperty(entity, flags, std::string(owner) == "base" ? base : alias, scope);
    }
    data->emplaceReference(f, {a, 20, 9}, roles);
  }
  void fillAll() {
    fill();
    fillExtensions(Roles::Read, Flags::Local | Flags::NamedInExcludedText, "base", "ns::");
  }
};

constexpr char kFilledExtensions[] =
    "Unit|a.c||/build|cc -fsyntax-only a.c||||\n"
    "Unit|a.c|a.c|/build|cc -c a.c|/build/a.o|test 1|all|d1\n"
    "UnitFile|/build/a.occ -c a.c|a.c\n"
    "UnitFile|/build/a.occ -c a.c|a.h\n"
    "Include|a.c|1|a.h|1\n"
    "Reference|EnumConstant ENUM:7|a.c|20|3|1\n"
    "Reference|Field field:1|a.c|20|3|1\n"
    "Reference|Function f:4|a.c|20|3|1\n"
    "Reference|Function f:4|a.c|20|9|1\n"
    "Reference|Label label:8|a.c|20|3|1\n"
    "Reference|Macro M:10|a.c|20|3|1\n"
    "Reference|Type base:1|a.c|20|3|1\n"
    "Reference|Variable var:3|a.c|20|3|1\n"
    "Property|EnumConstant ENUM:7|2147483650|Type base:1|ns::\n"
    "Property|Field field:1|2147483650|Type base:1|ns::\n"
    "Property|Function f:4|2147483650|Type base:1|ns::\n"
    "Property|Label label:8|2147483650|Type base:1|ns::\n"
    "Property|Macro M:10|2147483650|Type base:1|ns::\n"
    "Property|Type base:1|2147483650|Type base:1|ns::\n"
    "Property|Variable var:3|2147483650|Type base:1|ns::\n";

TEST_F(CrossReference, EveryKindOfEntity_ComesThroughASaveAndALoad) {
  const std::string fifteen = contentOfASave();
  fillAll();
  ASSERT_TRUE(saveToCompDb());
  EXPECT_EQ(content(compFile), fifteen);
  EXPECT_EQ(crossReference(compFile), kFilledExtensions);

  openAgain();
  data->setDataNeededForDbLink();
  ASSERT_TRUE(data->loadFromDB(/*fromCompDb=*/true));
  EXPECT_EQ(data->getReferences().size(), 8U);
  data->resetIds(db());
  db().disconnect();
  std::filesystem::remove(compFile);
  fe_db_tools::createCompilationDatabase(compFile, fe_db_tools::KeyIndexes::yes);
  ASSERT_TRUE(db().quick_connect(false));
  ASSERT_TRUE(data->saveToCompDB());
  EXPECT_EQ(crossReference(compFile), kFilledExtensions);
}

struct WithoutSome : CrossReference, testing::WithParamInterface<unsigned> {};

/// A file may lack any of the five: the others and the fifteen are what they are with all.
TEST_P(WithoutSome, TheRestIsSavedAndLoadedSilently) {
  const unsigned mask = GetParam();
  fillAll();
  ASSERT_TRUE(saveToCompDb());
  const std::string fifteen = content(compFile);
  // Units and files read are known by ids of these.
  const unsigned readable = (mask & 1) != 0 ? mask : mask & ~2U;
  const std::string expected = crossReference(compFile, readable);

  std::filesystem::remove(compFile);
  fe_db_tools::createCompilationDatabase(compFile, fe_db_tools::KeyIndexes::no);
  keepExtensions(compFile, mask);
  openAgain();
  fillAll();
  ASSERT_TRUE(saveToCompDb());
  for (const std::string& sql : trace.take()) {
    for (unsigned i = 0; i < 5; ++i) {
      if ((mask >> i & 1) != 0) continue;
      EXPECT_EQ(sql.find(std::string(" ") + kExtensions[i] + " "), std::string::npos) << sql;
    }
  }
  EXPECT_EQ(content(compFile), fifteen);
  EXPECT_EQ(crossReference(compFile, readable), expected);
  if ((mask & 3) == 2) {
    EXPECT_EQ(rows("SELECT count(*) FROM UnitFile"), "0\n");
  }

  openAgain();
  data->setDataNeededForDbLink();
  EXPECT_TRUE(data->loadFromDB(/*fromCompDb=*/true));
  EXPECT_EQ(data->getReferences().size(), (mask & 8) != 0 ? 8U : 0U);
  EXPECT_EQ(data->getUnits().size(), (mask & 1) != 0 ? 2U : 0U);
}

INSTANTIATE_TEST_SUITE_P(Masks, WithoutSome, testing::Range(0U, 32U));

/// The same occurrences again, with another role, flag, owner and scope.
std::string withRepeat(std::string text) {
  const auto replaceAll = [&text](const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
      text.replace(at, from.size(), to);
    }
  };
  replaceAll("|20|3|1\n", "|20|3|3\n");
  replaceAll("|20|9|1\n", "|20|9|3\n");
  replaceAll("|2147483650|", "|2147483654|");
  return text;
}

enum class Between { nothing, save, process };

struct Repeat : CrossReference, testing::WithParamInterface<Between> {};

TEST_P(Repeat, AddsBitsAndNothingElse) {
  fillAll();
  if (GetParam() != Between::nothing) {
    ASSERT_TRUE(saveToCompDb());
  }
  if (GetParam() == Between::process) {
    openAgain();
    fill();
  }
  fillExtensions(Roles::Write, Flags::StaticMember, "alias", "other::");
  ASSERT_TRUE(saveToCompDb());
  EXPECT_EQ(crossReference(compFile), withRepeat(kFilledExtensions));
  trace.take();
  ASSERT_TRUE(data->saveToCompDB());
  for (const std::string& sql : trace.take()) EXPECT_FALSE(sql.starts_with("INSERT")) << sql;
}

INSTANTIATE_TEST_SUITE_P(After, Repeat,
                         testing::Values(Between::nothing, Between::save, Between::process));

/// A macro that is sought at any position gets no row, so nothing can be said of it.
TEST_F(CrossReference, OfWhatGetsNoRow_NothingIsWritten) {
  fill();
  File* a = data->getFile("a.c");
  Macro& anywhere = data->emplaceMacro("ANYWHERE", {nullptr, 0, 1, /*wildcard=*/true}, true, 0);
  data->emplaceReference(&anywhere, {a, 1, 1}, Roles::Expansion);
  data->emplaceProperty(&anywhere, Flags::IncludeGuard, nullptr, "");
  data->emplaceReference(data->getFunction("f", {a, 4, 1}), {nullptr, 1, 1}, Roles::Call);
  ASSERT_TRUE(saveToCompDb());
  EXPECT_EQ(crossReference(compFile), "");
}

/// What a foreign row refers to may be missing. No load may bring a row of the fifteen in for it.
TEST_F(CrossReference, DanglingRows_AreSkippedSilentlyAndCounted) {
  fill();
  ASSERT_TRUE(saveToCompDb());
  execute(
      "INSERT INTO Unit (UnitId, MainFileId) VALUES (1, 77);"
      "INSERT INTO UnitFile VALUES (1, 1), (9, 1);"
      "INSERT INTO Include VALUES (1, 1, 77, 1);"
      "INSERT INTO Reference VALUES (2, 77, 1, 1, 1, 1), (2, 1, NULL, 1, 1, 1), (16, 1, 1, 1, 1, "
      "1),"
      " (3, 1, 1, 1, 1, 1), (2, 1, 1, 1, 1, 1);"
      "INSERT INTO Property VALUES (2, 77, 1, NULL, ''), (2, 1, 1, 77, '')");
  openAgain();
  data->setDataNeededForDbLink();
  ASSERT_TRUE(data->loadFromDB(/*fromCompDb=*/true));
  EXPECT_EQ(data->getReferences().size(), 1U);
  EXPECT_EQ(data->getProperties().size(), 1U);
  EXPECT_EQ(data->getProperties().begin()->getOwner(), nullptr);
  EXPECT_EQ(data->getFunctions().size(), 2U);
  const std::map<std::string, std::size_t> leftOut = {
      {"Unit", 1}, {"UnitFile", 2}, {"Include", 1}, {"Reference", 4}, {"Property", 1}};
  EXPECT_EQ(db().leftOutRows(), leftOut);
}

}  // namespace
}  // namespace fe_db_tests
