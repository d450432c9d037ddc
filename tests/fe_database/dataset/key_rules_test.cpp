#include <gtest/gtest.h>

#include <functional>
#include <type_traits>
#include <vector>

#include "tests/support/test_dataset.h"

namespace fe_db_tests {
namespace {

// Later phases hold iterators of these exact types.
template <class T>
using ByPlaceAndName = boost::unordered_set<T, hashLocIdentifier<T>, equalLocIdentifier<T>>;
template <class T>
using ByLine = boost::unordered_multiset<T, hashPreprocessedLine<T>, equalPreprocessedLine<T>>;
template <auto getter>
using ResultOf =
    std::remove_cvref_t<std::invoke_result_t<decltype(getter), const CompilationData&>>;
template <auto getter>
using LineOf = std::invoke_result_t<decltype(getter), const CompilationData&, unsigned>;
template <class Set>
using Range = std::pair<typename Set::const_iterator, typename Set::const_iterator>;

static_assert(std::is_same_v<ResultOf<&CompilationData::getTypes>, ByPlaceAndName<Type>>);
static_assert(std::is_same_v<ResultOf<&CompilationData::getVariables>,
                             boost::container::set<Variable, lessLocIdentifier<Variable>>>);
static_assert(std::is_same_v<ResultOf<&CompilationData::getFunctions>, ByPlaceAndName<Function>>);
static_assert(std::is_same_v<ResultOf<&CompilationData::getFields>, ByPlaceAndName<Field>>);
static_assert(
    std::is_same_v<ResultOf<&CompilationData::getEnumConstants>, ByPlaceAndName<EnumConstant>>);
static_assert(std::is_same_v<ResultOf<&CompilationData::getLabels>, ByPlaceAndName<Label>>);
static_assert(std::is_same_v<LineOf<&CompilationData::getMacroInvocationForLine>,
                             Range<ByLine<MacroInvocation>>>);
static_assert(std::is_same_v<LineOf<&CompilationData::getMacroExpansionForLine>,
                             Range<ByLine<MacroExpansion>>>);

// The keys by position and name, and those of call points and type references: lookup_test.cpp.
class ExternalKey : public DatasetTest {};

TEST_F(ExternalKey, IsNameAndEntity) {
  Variable* const v = variable("v", at("a.c", 1, 1));
  Function* const f = function("f", at("a.c", 1, 1));
  const auto sight = [this](const char* text, EntityKind kind, LinkedElement* entity) {
    return data->emplaceExternalIdentifier(name(text), {kind, entity}, /*accumulate=*/false);
  };
  const ExternalIdentifier* const known = sight("x", EntityKind::Variable, v);
  EXPECT_EQ(sight("x", EntityKind::Function, v), known) << "the kinds are not compared";
  EXPECT_NE(sight("y", EntityKind::Variable, v), known);
  EXPECT_NE(sight("x", EntityKind::Function, f), known);
  const ExternalIdentifier* const none = sight("x", EntityKind::None, v);
  EXPECT_NE(none, known);
  EXPECT_EQ(sight("x", EntityKind{2}, f), none) << "kinds without entity are all alike";
}

class VariableOrder : public DatasetTest {};

TEST_F(VariableOrder, IsPathLineColumnThenAddressOfTheName) {
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

}  // namespace
}  // namespace fe_db_tests
