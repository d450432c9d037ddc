#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <type_traits>

#include "fe_db/compilation_database.h"
#include "tests/support/test_dataset.h"

/// What the random sightings of model_test.cpp do not reach.
namespace fe_db_tests {
namespace {

using Value = Macro::Value;

// --- Elements.

TEST(Element, DefaultsAreZeroExceptWhereZeroWouldSaySomethingElse) {
  EXPECT_EQ(Identifier().getCount(), 1u);
  EXPECT_EQ(Function().getEffect(), EffectKind::Unknown);
  EXPECT_EQ(ExternalIdentifier().getEntityKind(), EntityKind::None);
  const Macro macro;
  EXPECT_TRUE(macro.getIsDefined() && macro.getIsObjectLike());
  EXPECT_FALSE(macro.getIsVariadic() || macro.getIsCommandLineDefinition() ||
               macro.getIsPredefined() || macro.hasValue() || macro.dirty);
  EXPECT_EQ(Macro(7).getId(), 7);
}

TEST(Element, SignednessOfAMacroOnlyRelabelsTheHeldBits) {
  constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
  const Value least = std::int64_t{-1}, most = kLargest, none;
  const struct {
    Value before;
    bool isSigned;
    Value after;
  } cases[] = {{least, false, most}, {most, true, least}, {least, true, least},
               {most, false, most},  {none, false, none}, {none, true, none}};
  for (const auto& c : cases) {
    Macro macro;
    macro.setValue(c.before);
    macro.setSignednessFromDB(c.isSigned);
    EXPECT_EQ(macro.getValue(), c.after) << &c - cases;
  }
}

TEST(Element, KindOfAMacroIsInFileOrTheColumnOrUnplaced) {
  File file("a.c");
  const auto kind = [](File* in, std::uint32_t column) {
    return Macro(nullptr, {in, 0, column, /*wildcard=*/false}, 0).getKind();
  };
  EXPECT_EQ(kind(&file, 3), Macro::MacroKind::InFile);
  EXPECT_EQ(kind(nullptr, 0), Macro::MacroKind::Unplaced);
  EXPECT_EQ(kind(nullptr, 1), Macro::MacroKind::CommandLine);
  EXPECT_EQ(kind(nullptr, 2), Macro::MacroKind::NoFileColumn2);
  EXPECT_EQ(kind(nullptr, 3), Macro::MacroKind::Predefined);
  EXPECT_EQ(kind(nullptr, 9), Macro::MacroKind{9});
}

// A bit that only the other has is no change, so a row that has it is not written and a repeat that
// has it leaves dirty alone. No save reaches the row: it has loaded all names before.
TEST(Element, OfANameCountsAsAChangeWhatTheRepeatOrTheRowLacks) {
  constexpr auto kOne = IdentifierKind::Type, kOther = IdentifierKind::Label;
  const struct {
    unsigned count;
    IdentifierKind kind, otherKind;
    bool changed;
  } cases[] = {{1, kOne, kOne, true},
               {0, kOne, kOne, false},
               {0, kOne | kOther, kOne, true},
               {0, kOne, kOne | kOther, false},
               {0, kOne, kOther, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    Identifier seen("x", c.kind, c.count), stored = seen, row("x", c.otherKind, 3);
    seen.addOccurrence(c.otherKind, 3);
    EXPECT_EQ(stored.updateFromRow(row), c.changed);
    for (const Identifier& identifier : {seen, stored}) {
      EXPECT_EQ(identifier.getCount(), c.count + 3);
      EXPECT_EQ(identifier.getKind(), c.kind | c.otherKind);
      EXPECT_EQ(identifier.dirty, c.changed);
    }
  }
}

// --- Containers. Later phases hold iterators of these exact types.

template <class T>
using ByPlaceAndName = boost::unordered_set<T, hashLocIdentifier<T>, equalLocIdentifier<T>>;
template <class T>
using ByLine = boost::unordered_multiset<T, hashPreprocessedLine<T>, equalPreprocessedLine<T>>;
template <auto getter, class Set>
constexpr bool isResult = std::is_same_v<
    std::remove_cvref_t<std::invoke_result_t<decltype(getter), const CompilationData&>>, Set>;
template <auto getter, class Set>
constexpr bool isRange =
    std::is_same_v<std::invoke_result_t<decltype(getter), const CompilationData&, unsigned>,
                   std::pair<typename Set::const_iterator, typename Set::const_iterator>>;

static_assert(isResult<&CompilationData::getTypes, ByPlaceAndName<Type>>);
static_assert(isResult<&CompilationData::getVariables,
                       boost::container::set<Variable, lessLocIdentifier<Variable>>>);
static_assert(isResult<&CompilationData::getFunctions, ByPlaceAndName<Function>>);
static_assert(isResult<&CompilationData::getFields, ByPlaceAndName<Field>>);
static_assert(isResult<&CompilationData::getEnumConstants, ByPlaceAndName<EnumConstant>>);
static_assert(isResult<&CompilationData::getLabels, ByPlaceAndName<Label>>);
static_assert(isRange<&CompilationData::getMacroInvocationForLine, ByLine<MacroInvocation>>);
static_assert(isRange<&CompilationData::getMacroExpansionForLine, ByLine<MacroExpansion>>);

class Dataset : public DatasetTest {};

TEST_F(Dataset, VariablesAreInTheOrderOfPathLineColumnThenAddressOfTheName) {
  const bool inOrder = std::less<>()(name("n1"), name("n2"));
  const char* const low = inOrder ? "n1" : "n2";
  const char* const high = inOrder ? "n2" : "n1";
  const struct {
    const char* path;
    std::uint32_t line, column;
    const char* name;
  } sorted[] = {
      {"a", 9, 9, high},  {"a.c", 1, 9, high},         {"a.c", 2, 1, low}, {"a.c", 2, 1, high},
      {"a.c", 2, 3, low}, {"a.c", 0xFFFFFFFF, 1, low}, {"b.c", 1, 1, low}, {"\xC3\xA4", 1, 1, low},
  };
  std::vector<const Variable*> expected(std::size(sorted));
  for (std::size_t i = 0; i < std::size(sorted); ++i) {
    const std::size_t n = (i * 5 + 3) % std::size(sorted);  // any order but the sorted one
    const auto& v = sorted[n];
    expected[n] = variable(v.name, at(v.path, v.line, v.column));
  }
  std::vector<const Variable*> actual;
  for (const Variable& v : data->getVariables()) actual.push_back(&v);
  EXPECT_EQ(actual, expected);
}

TEST_F(Dataset, AMacroThatMovesThroughItsBaseIsFoundWhereItIs) {
  for (std::uint32_t n = 1; n <= 12; ++n) macro("M", at("a.c", n, 1));
  Macro* const moved = data->getMacro(name("M"), at("a.c", 5, 1));
  static_cast<NamedElement&>(*moved) = NamedElement(name("M"), at("b.c", 6, 6), 1);
  EXPECT_EQ(data->getMacro(name("M"), at("b.c", 6, 6)), moved);
  moved->setColumn(7);
  EXPECT_EQ(data->getMacro(name("M"), at("b.c", 6, 7)), moved);
  moved->setFile(file("a.c"));
  EXPECT_EQ(data->getMacro(name("M"), at("a.c", 6, 7)), moved);
  EXPECT_EQ(data->getMacro(name("M"), at("a.c", 5, 1)), nullptr);
}

// In the order 1 N N-1 ... 2, a wildcard at 3 matches whatever is not met at 1 or from N to 4. Long
// groups are searched another way than short ones, which must not show.
TEST_F(Dataset, AStoredWildcardMatchesWhereTheWalkMeetsItBeforeAnExactMatch) {
  for (const std::uint32_t size : {4u, 100u}) {
    const std::string text = "M" + std::to_string(size);
    for (std::uint32_t n = 1; n <= size; ++n) macro(text, at("a.c", n, 1));
    const auto find = [&](std::uint32_t n) { return data->getMacro(name(text), at("a.c", n, 1)); };
    Macro *const first = find(1), *const last = find(size), *const stored = find(3);
    EXPECT_EQ(find(99999), nullptr);
    stored->setLocalization({file("a.c"), 3, 1, /*wildcard=*/true});
    for (const std::uint32_t n : {2u, 3u, 99999u}) EXPECT_EQ(find(n), stored) << size;
    EXPECT_TRUE(find(1) == first && find(size) == last);
    EXPECT_EQ(macro(text, at("a.c", 99999, 1)), stored) << "no element of its own";
    stored->setLocalization(at("a.c", 3, 1));
    EXPECT_NE(find(2), stored);
  }
}

TEST_F(Dataset, ACopyOfAMacroOutlivesItAndChangesNothingInIt) {
  macro("M", at("a.c", 1, 1));
  const Localization place = at("a.c", 2, 1);
  Macro copy(*macro("M", place));
  Macro assigned;
  assigned = copy;
  for (Macro* const m : {&copy, &assigned}) {
    m->setLocalization({place.file, 2, 1, /*wildcard=*/true});
    EXPECT_EQ(data->getMacro(name("M"), at("a.c", 9, 1)), nullptr);
  }
  data.reset();
  copy.setLocalization({});
  assigned.setLocalization({});
  assigned = copy;
}

TEST_F(Dataset, LookUpsOfWhatIsNotThereMakeNothing) {
  EXPECT_EQ(data->getFile(""), nullptr);
  EXPECT_EQ(data->getFunction("unknown", at("a.c", 1, 1)), nullptr);
  EXPECT_EQ(data->getaMacroWithValue("unknown"), nullptr);
  EXPECT_EQ(data->getIdentifier("unknown"), nullptr);
  EXPECT_EQ(data->getFile("A.c"), nullptr) << "case counts";
  EXPECT_FALSE(data->isHugeFile("b.c"));
  EXPECT_EQ(data->getFile("b.c"), nullptr);
  bool first = true;
  EXPECT_EQ(data->listTranslationUnitMacro(first), nullptr);
  EXPECT_FALSE(first);
}

TEST_F(Dataset, AFileIsHugeOnceMarked) {
  data->setHugeFile("a.c");
  EXPECT_TRUE(data->isHugeFile("a.c"));
  EXPECT_FALSE(file("a.c")->dirty);
}

TEST_F(Dataset, WalksCallWhatTheyAreGivenOnceForEach) {
  EXPECT_NO_THROW(data->eachMacro({}));
  EXPECT_NO_THROW(data->eachMacroExpansion({}));
  macro("M", at("", 0, 1));
  data->emplaceMacroExpansion({}, "code", "M", /*ppLine=*/4, /*ppColumn=*/1);
  EXPECT_THROW(data->eachMacro({}), std::bad_function_call);
  EXPECT_THROW(data->eachMacroExpansion({}), std::bad_function_call);
}

TEST_F(Dataset, OfTheProcessIsMadeOnceAndEndedByHand) {
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
