#include <gtest/gtest.h>

#include <functional>
#include <string>
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

/// One field of an element is changed: does that make it another element?
template <class T>
struct Change {
  const char* field;
  bool inKey;
  std::function<void(T&)> apply;
};

// Things to point at; two of a kind differ in their addresses only.
File files[2] = {File("a.c"), File("a.c")};
Identifier names[2];
Type types[2];
Function functions[2];
Variable variables[2];

template <class Hash, class Equal, class T>
void checkKey(const T& base, const std::vector<Change<T>>& changes) {
  EXPECT_TRUE(Equal()(base, T(base)));
  for (const auto& change : changes) {
    SCOPED_TRACE(change.field);
    T other = base;
    change.apply(other);
    EXPECT_EQ(Equal()(base, other), !change.inKey);
    EXPECT_EQ(Equal()(other, base), !change.inKey);
    EXPECT_TRUE(change.inKey || Hash()(base) == Hash()(other)) << "equal, and hashes differ";
  }
}

template <class T>
std::vector<Change<T>> changesOfAPlace(bool inKey) {
  const auto changePlace = [](auto change) {
    return [change](T& e) {
      Localization at = e.getLocalization();
      change(at);
      e.setLocalization(at);
    };
  };
  return {{"file", inKey, changePlace([](Localization& at) { at.file = &files[1]; })},
          {"no file", inKey, changePlace([](Localization& at) { at.file = nullptr; })},
          {"line", inKey, changePlace([](Localization& at) { ++at.line; })},
          {"column", inKey, changePlace([](Localization& at) { ++at.column; })},
          {"swapped", inKey, changePlace([](Localization& at) { std::swap(at.line, at.column); })},
          {"wildcard", false, changePlace([](Localization& at) { at.wildcard = true; })},
          {"id", false, [](T& e) { e.setId(5); }},
          {"dirty", false, [](T& e) { e.dirty = true; }}};
}

template <class T>
std::vector<Change<T>> changesOfANamed(bool placeInKey, std::vector<Change<T>> more = {}) {
  std::vector<Change<T>> changes = changesOfAPlace<T>(placeInKey);
  changes.push_back({"name", true, [](T& e) { e.setIdentifier(&names[1]); }});
  changes.push_back({"refCount", false, [](T& e) { e.setRefCount(9); }});
  changes.insert(changes.end(), more.begin(), more.end());
  return changes;
}

template <class T>
void checkLocIdentifier(const std::vector<Change<T>>& more = {}) {
  T base;
  base.setLocalization({&files[0], /*line=*/2, /*column=*/7, /*wildcard=*/false});
  base.setIdentifier(&names[0]);
  checkKey<hashLocIdentifier<T>, equalLocIdentifier<T>>(base, changesOfANamed<T>(true, more));
}

template <class T>
std::vector<Change<T>> changesOfALinked() {
  return {{"type", false, [](T& e) { e.setType(&types[1]); }},
          {"isDefined", false, [](T& e) { e.setIsDefined(true); }},
          {"linkage", false, [](T& e) { e.setLinkage(LinkageKind::External); }}};
}

TEST(KeyRules, NameAtAPositionTellsTypesFunctionsFieldsEnumConstantsAndLabelsApart) {
  checkLocIdentifier<Type>({{"kind", false, [](Type& e) { e.setKind(TypeKind::Tagged4); }},
                            {"unnamed", false, [](Type& e) { e.setUnnamed(true); }},
                            {"local", false, [](Type& e) { e.setLocal(true); }},
                            {"incomplete", false, [](Type& e) { e.setIncomplete(true); }},
                            {"refTagCount", false, [](Type& e) { e.setRefTagCount(3); }}});
  auto ofFunction = changesOfALinked<Function>();
  ofFunction.push_back({"sourceName", false, [](Function& e) { e.setSourceName(&names[1]); }});
  ofFunction.push_back({"effect", false, [](Function& e) { e.setEffect(EffectKind::NoEffect); }});
  ofFunction.push_back({"isSpecial", false, [](Function& e) { e.setIsSpecial(true); }});
  checkLocIdentifier<Function>(ofFunction);
  checkLocIdentifier<Field>();
  checkLocIdentifier<EnumConstant>();
  checkLocIdentifier<Label>();
}

TEST(KeyRules, TextAloneTellsFilesAndIdentifiersApart) {
  checkKey<hashName<File>, equalName<File>, File>(
      File("a.c"),
      {{"path", true, [](File& e) { e.setPath("a.C"); }},
       {"longer", true, [](File& e) { e.setPath(std::string("a.c\0", 4)); }},
       {"kind", false, [](File& e) { e.setKind(FileKind{1}); }},
       {"language", false, [](File& e) { e.setLanguage(results_api::LanguageKind{1}); }},
       {"huge", false, [](File& e) { e.setHuge(true); }},
       {"id", false, [](File& e) { e.setId(5); }}});
  checkKey<hashName<Identifier>, equalName<Identifier>, Identifier>(
      Identifier("x", {}, 0),
      {{"name", true, [](Identifier& e) { e.setName("X"); }},
       {"kind", false, [](Identifier& e) { e.setKind(IdentifierKind::Label); }},
       {"count", false, [](Identifier& e) { e.setCount(5); }}});
}

TEST(KeyRules, MacrosGroupByNameAndMacroUsesByPreprocessedLine) {
  const Localization place{&files[0], /*line=*/2, /*column=*/7, /*wildcard=*/false};
  checkKey<hashMacroIdentifier, equalMacroIdentifier>(Macro(&names[0], place, 0),
                                                      changesOfANamed<Macro>(false));
  auto ofInvocation = changesOfAPlace<MacroInvocation>(false);
  ofInvocation.push_back({"ppLine", true, [](auto& e) { e.setPpLine(9); }});
  ofInvocation.push_back({"ppStartColumn", false, [](auto& e) { e.setPpStartColumn(9); }});
  checkKey<hashPreprocessedLine<MacroInvocation>, equalPreprocessedLine<MacroInvocation>>(
      MacroInvocation(nullptr, place, {&files[0], 1, 2, 3}), ofInvocation);
  auto ofExpansion = changesOfAPlace<MacroExpansion>(false);
  ofExpansion.push_back({"ppLine", true, [](auto& e) { e.setPpLine(9); }});
  ofExpansion.push_back({"expandedCode", false, [](auto& e) { e.setExpandedCode("x"); }});
  checkKey<hashPreprocessedLine<MacroExpansion>, equalPreprocessedLine<MacroExpansion>>(
      MacroExpansion(place, "", "", 1, 2), ofExpansion);
}

TEST(KeyRules, DeclaredTypeCallerAndEntityTellReferencesCallsAndExternalNamesApart) {
  checkKey<hashDeclaredType, equalDeclaredType, TypeReference>(
      TypeReference(&types[0], &types[0]),
      {{"declared", true, [](TypeReference& e) { e.setDeclaredType(&types[1]); }},
       {"referenced", false, [](TypeReference& e) { e.setReferencedType(&types[1]); }}});

  auto ofCall = changesOfAPlace<CallPoint>(true);
  ofCall.push_back({"caller", true, [](CallPoint& e) { e.setCaller(&functions[1]); }});
  ofCall.push_back({"callee", false, [](CallPoint& e) { e.setCallee(&functions[1]); }});
  ofCall.push_back({"isValueUsed", false, [](CallPoint& e) { e.setIsValueUsed(true); }});
  checkKey<hashLocCaller, equalLocCaller>(
      CallPoint(&functions[0], &functions[0], {&files[0], 2, 7, false}, false), ofCall);

  const auto describe = [](EntityKind kind, LinkedElement* entity) {
    return [=](ExternalIdentifier& e) { e.setDescription({kind, entity}); };
  };
  checkKey<hashEntity, equalEntity, ExternalIdentifier>(
      ExternalIdentifier(&names[0], {EntityKind::Variable, &variables[0]}),
      {{"name", true, [](auto& e) { e.setIdentifier(&names[1]); }},
       {"entity", true, describe(EntityKind::Variable, &variables[1])},
       {"function", true, describe(EntityKind::Function, &functions[0])},
       {"kind", false, describe(EntityKind::Function, &variables[0])},
       {"no entity", true, describe(EntityKind::None, &variables[0])}});
  checkKey<hashEntity, equalEntity, ExternalIdentifier>(
      ExternalIdentifier(&names[0], {EntityKind::None, &variables[0]}),
      {{"entity of no kind", false, describe(EntityKind::None, &variables[1])},
       {"other kind", false, describe(EntityKind{2}, nullptr)},
       {"kind", true, describe(EntityKind::Variable, &variables[0])}});
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

TEST(VariableKey, ChangesWithWhatTheOrderLooksAt) {
  struct Equal {
    bool operator()(const Variable& a, const Variable& b) const {
      return !lessLocIdentifier<Variable>()(a, b) && !lessLocIdentifier<Variable>()(b, a);
    }
  };
  struct NoHash {
    int operator()(const Variable&) const { return 0; }
  };
  File other("b.c");
  Variable base;
  base.setLocalization({&files[0], 2, 7, false});
  base.setIdentifier(&names[0]);
  auto changes = changesOfALinked<Variable>();
  changes.push_back({"path", true, [&](Variable& e) { e.setFile(&other); }});
  changes.push_back({"line", true, [](Variable& e) { e.setLine(3); }});
  changes.push_back({"column", true, [](Variable& e) { e.setColumn(3); }});
  changes.push_back({"name", true, [](Variable& e) { e.setIdentifier(&names[1]); }});
  checkKey<NoHash, Equal>(base, changes);
}

}  // namespace
}  // namespace fe_db_tests
