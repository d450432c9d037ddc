#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "fe_db/compilation_database.h"
#include "tests/support/test_dataset.h"

namespace fe_db_tests {
namespace {

class Lookup : public DatasetTest {};

TEST_F(Lookup, FindsByPositionAndNameWhateverTheWildcardAndMakesNothing) {
  const Localization here = at("a.c", 3, 5);
  Function* const caller = function("f", here);
  // Each looks for the element that was emplaced at `here` as "x" (of the caller f).
  using Get = std::function<const void*(const Localization&, Identifier*)>;
  const auto by = [this](auto get) -> Get {
    return [=, this](const auto& at, Identifier* x) { return (data.get()->*get)(at, x); };
  };
  const struct {
    const char* what;
    const void* element;
    Get get;
  } lookups[] = {
      {"Type", type("x", here), by(&CompilationData::getType)},
      {"Variable", variable("x", here), by(&CompilationData::getVariable)},
      {"Function", function("x", here),
       [&](auto& at, auto* x) { return data->getFunction(x->getName(), at); }},
      {"Field", &data->emplaceField("x", here, false, 0), by(&CompilationData::getField)},
      {"EnumConstant", data->emplaceEnumConstant("x", here, false),
       by(&CompilationData::getEnumConstant)},
      {"Label", data->emplaceLabel("x", here, false), by(&CompilationData::getLabel)},
      {"CallPoint", data->emplaceCallPoint(caller, caller, here, false, false),
       [&](auto& at, auto* x) {
         return data->getCallPoint(at, x == name("x") ? caller : function("x", here));
       }},
  };
  const Localization others[] = {at("b.c", 3, 5), at("a.c", 4, 5), at("a.c", 3, 4),
                                 at("a.c", 5, 3)};
  for (const auto& [what, element, get] : lookups) {
    SCOPED_TRACE(what);
    EXPECT_EQ(get(here, name("x")), element);
    EXPECT_EQ(get({here.file, 3, 5, /*wildcard=*/true}, name("x")), element);
    for (const Localization& other : others) EXPECT_EQ(get(other, name("x")), nullptr);
    EXPECT_EQ(get(here, name("y")), nullptr);
    if (std::string_view(what) == "Variable") continue;  // its position has to have a file
    EXPECT_EQ(get({nullptr, 3, 5, false}, name("x")), nullptr);
  }
}

TEST_F(Lookup, OfATypeReferenceGoesByTheDeclaredType) {
  Type* const a = type("A", at("a.c", 1, 1));
  Type* const b = type("B", at("a.c", 1, 1));
  TypeReference* const reference = data->emplaceTypeReference(a, b, false);
  EXPECT_EQ(data->getTypeReference(a), reference);
  EXPECT_EQ(data->getTypeReference(b), nullptr);
}

TEST_F(Lookup, OfPathsNamesAndFunctionsMakesNothing) {
  EXPECT_EQ(data->getFile(""), nullptr);
  EXPECT_EQ(data->getIdentifier(""), nullptr);
  EXPECT_EQ(data->getFunction("unknown", at("a.c", 1, 1)), nullptr);
  EXPECT_EQ(data->getIdentifier("unknown"), nullptr);
  EXPECT_EQ(data->getFile("A.c"), nullptr) << "case counts";
  EXPECT_EQ(data->getFile("a.c"), at("a.c", 1, 1).file);
}

TEST_F(Lookup, AFileIsHugeOnceMarked) {
  EXPECT_FALSE(data->isHugeFile("a.c"));
  EXPECT_EQ(data->getFile("a.c"), nullptr);
  data->setHugeFile("a.c");
  EXPECT_TRUE(data->isHugeFile("a.c"));
  EXPECT_FALSE(data->getFile("a.c")->dirty);
}

TEST_F(Lookup, WalksCallWhatTheyAreGivenOnceForEach) {
  EXPECT_NO_THROW(data->eachMacro({}));
  EXPECT_NO_THROW(data->eachMacroExpansion({}));
  macro("M", at("", 0, 1));
  data->emplaceMacroExpansion({}, "code", "M", /*ppLine=*/4, /*ppColumn=*/1);
  EXPECT_THROW(data->eachMacro({}), std::bad_function_call);
  EXPECT_THROW(data->eachMacroExpansion({}), std::bad_function_call);
}

TEST_F(Lookup, ByPreprocessedLineGivesInvocationsAndOnlyLoadedExpansions) {
  const auto count = [](auto range) { return std::distance(range.first, range.second); };
  EXPECT_EQ(count(data->getMacroInvocationForLine(4)), 0);
  EXPECT_EQ(count(data->getMacroExpansionForLine(4)), 0);
  const std::uint32_t lines[] = {4, 5, 4, 0xFFFFFFFF, 4};
  for (const std::uint32_t line : lines)
    data->emplaceMacroInvocation(nullptr, {}, {{}, line, 1, 2});
  EXPECT_EQ(count(data->getMacroInvocationForLine(4)), 3);
  EXPECT_EQ(count(data->getMacroInvocationForLine(0xFFFFFFFF)), 1);
  const auto none = data->getMacroInvocationForLine(6);
  EXPECT_EQ(none.first, none.second);
  for (auto [it, end] = data->getMacroInvocationForLine(4); it != end; ++it) {
    EXPECT_EQ(it->getPpLine(), 4u);
  }
  data->emplaceMacroExpansion({}, "code", "call", 4, 1);
  EXPECT_EQ(count(data->getMacroExpansionForLine(4)), 0);
  EXPECT_FALSE(data->isMacroExpansionLoaded());
}

class Instance : public DatasetTest {};

TEST_F(Instance, OfTheProcessIsMadeOnceAndEndedByHand) {
  EXPECT_EQ(CompilationData::compilationDatabase(), nullptr);
  CompilationData::deleteInstance();
  CompilationData::newCompilationInstanceIfNotAlreadyDone(path("first"), path("pp"));
  CompilationData* const instance = CompilationData::compilationDatabase();
  ASSERT_NE(instance, nullptr);
  instance->emplaceFile("a.c", {}, {});
  CompilationData::newCompilationInstanceIfNotAlreadyDone(path("second"), "");
  EXPECT_EQ(CompilationData::compilationDatabase(), instance);
  EXPECT_EQ(instance->getCompDb().getPath(), path("first"));
  EXPECT_EQ(instance->getPpDb().getPath(), path("pp"));
  EXPECT_NE(CompilationData::newInstance("", "").get(), instance);
  CompilationData::deleteInstance();
  EXPECT_EQ(CompilationData::compilationDatabase(), nullptr);
  CompilationData::newCompilationInstanceIfNotAlreadyDone("", "");
  EXPECT_EQ(CompilationData::compilationDatabase()->getFile("a.c"), nullptr) << "a fresh one";
  EXPECT_FALSE(std::filesystem::exists(path("first"))) << "nothing is opened";
}

}  // namespace
}  // namespace fe_db_tests
