#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/support/test_dataset.h"

namespace fe_db_tests {
namespace {

std::string state(const persistence::GenericElement& e) {
  return "id=" + std::to_string(e.getId()) + (e.dirty ? " dirty" : "");
}

/// The sights of one class at one place: a first (n 0) and a second with other values (n 1). The
/// model test compares all that comes of them; here is what each class does with id and dirty.
struct Sights {
  const char* name;
  bool makesDirty;
  std::function<persistence::GenericElement*(class SecondSight&, int n, bool accumulate)> emplace;
};

class SecondSight : public DatasetTest, public testing::WithParamInterface<Sights> {
 public:
  using DatasetTest::data;
  using DatasetTest::function;
  using DatasetTest::name;
  using DatasetTest::type;
  using DatasetTest::variable;

  Localization here() { return at("a.c", 3, 5); }
};

TEST_P(SecondSight, LeavesTheElementAloneOrMergesAndForgetsTheRow) {
  const Sights& sights = GetParam();
  auto* element = sights.emplace(*this, 0, /*accumulate=*/true);
  ASSERT_NE(element, nullptr);
  EXPECT_EQ(state(*element), "id=0") << "first sight";
  element->setId(7);
  EXPECT_EQ(sights.emplace(*this, 1, /*accumulate=*/false), element);
  EXPECT_EQ(state(*element), "id=7");
  EXPECT_EQ(sights.emplace(*this, 1, /*accumulate=*/true), element);
  EXPECT_EQ(state(*element), sights.makesDirty ? "id=0 dirty" : "id=0");
}

using S = SecondSight;
INSTANTIATE_TEST_SUITE_P(
    Classes, SecondSight,
    testing::Values(
        Sights{"Identifier", true,
               [](S& s, int n, bool accumulate) {
                 return s.data->emplaceIdentifier("x", IdentifierKind(1 + n), accumulate, 1);
               }},
        Sights{"Type", true,
               [](S& s, int n, bool accumulate) {
                 return s.data->emplaceType(s.name("x"), n == 1, s.here(), TypeKind(4 + n),
                                            accumulate, 1, 1, n == 1, n == 1);
               }},
        Sights{"Variable", true,
               [](S& s, int n, bool accumulate) {
                 return s.data->emplaceVariable(s.name("x"), s.here(), nullptr, n == 1,
                                                LinkageKind(n), accumulate, 1);
               }},
        Sights{"Function", false,
               [](S& s, int n, bool accumulate) {
                 return s.data->emplaceFunction(s.name("x"), s.name(n == 0 ? "x" : "y"), s.here(),
                                                n == 1, n == 1, EffectKind(n), LinkageKind(n),
                                                accumulate);
               }},
        Sights{"Field", true,
               [](S& s, int n, bool accumulate) {
                 return &s.data->emplaceField("x", s.here(), accumulate, 1 + n);
               }},
        Sights{"EnumConstant", false,
               [](S& s, int, bool accumulate) {
                 return s.data->emplaceEnumConstant("x", s.here(), accumulate);
               }},
        Sights{"Label", false,
               [](S& s, int, bool accumulate) {
                 return s.data->emplaceLabel("x", s.here(), accumulate);
               }},
        Sights{"Macro", true,
               [](S& s, int n, bool accumulate) {
                 return &s.data->emplaceMacro(s.name("x"), s.here(), {}, n == 0, accumulate, 0,
                                              n == 0 ? "first" : "second", n == 1, n == 1, n == 1,
                                              n == 1);
               }},
        Sights{"TypeReference", false,
               [](S& s, int n, bool accumulate) {
                 return s.data->emplaceTypeReference(
                     s.type("T", s.here()), s.type(n == 0 ? "A" : "B", s.here()), accumulate);
               }},
        Sights{"CallPoint", false,
               [](S& s, int n, bool accumulate) {
                 return s.data->emplaceCallPoint(s.function("f", s.here()),
                                                 s.function(n == 0 ? "g" : "h", s.here()), s.here(),
                                                 n == 1, accumulate);
               }},
        Sights{"ExternalIdentifier", false,
               [](S& s, int n, bool accumulate) {
                 return s.data->emplaceExternalIdentifier(
                     s.name("x"), {EntityKind(n), s.variable("x", s.here())}, accumulate);
               }}),
    [](const auto& sights) { return std::string(sights.param.name); });

// The model test plays every emplace operation with all its arguments; here are the rules that a
// reader of its failures would look for.
class Emplace : public DatasetTest {
 protected:
  Localization here() { return at("a.c", 3, 5); }

  void emplaceByName(IdentifierKind kind, std::string_view text, bool accumulate) {
    const EntityDescription none;
    switch (kind) {
      case IdentifierKind::Type:
        data->emplaceType(text, false, here(), TypeKind::Named512, accumulate, 1, 1);
        break;
      case IdentifierKind::Function:
        data->emplaceFunction(text, "source", here(), false, false, {}, {}, accumulate);
        break;
      case IdentifierKind::Variable:
        data->emplaceVariable(text, here(), nullptr, false, {}, accumulate);
        break;
      case IdentifierKind::Macro:
        data->emplaceMacro(text, here(), accumulate, 1);
        break;
      case IdentifierKind::External:
        data->emplaceExternalIdentifier(text, none, accumulate);
        break;
      case IdentifierKind::EnumConstant:
        data->emplaceEnumConstant(text, here(), accumulate);
        break;
      case IdentifierKind::Field:
        data->emplaceField(text, here(), accumulate, 1);
        break;
      case IdentifierKind::Label:
        data->emplaceLabel(text, here(), accumulate);
        break;
    }
  }
};

constexpr IdentifierKind kKinds[] = {
    IdentifierKind::Type,  IdentifierKind::Function, IdentifierKind::Variable,
    IdentifierKind::Macro, IdentifierKind::External, IdentifierKind::EnumConstant,
    IdentifierKind::Field, IdentifierKind::Label,
};

TEST_F(Emplace, ByNameCountsTheNameAndAddsItsBitWhenAccumulating) {
  for (const IdentifierKind kind : kKinds) {
    SCOPED_TRACE(static_cast<unsigned>(kind));
    const std::string text = "x" + std::to_string(static_cast<unsigned>(kind));
    emplaceByName(kind, text, /*accumulate=*/true);
    Identifier* const identifier = data->getIdentifier(text);
    ASSERT_NE(identifier, nullptr);
    EXPECT_EQ(identifier->getCount(), 1u);
    EXPECT_EQ(identifier->getKind(), kind);
    identifier->setId(7);
    emplaceByName(kind, text, /*accumulate=*/false);
    EXPECT_EQ(identifier->getCount(), 1u);
    EXPECT_EQ(state(*identifier), "id=7");
    emplaceByName(kind, text, /*accumulate=*/true);
    EXPECT_EQ(identifier->getCount(), 2u);
    EXPECT_EQ(state(*identifier), "id=0 dirty");

    const auto other = kind == IdentifierKind::Label ? IdentifierKind::Type : IdentifierKind::Label;
    emplaceByName(other, text, /*accumulate=*/false);
    EXPECT_EQ(identifier->getKind(), kind) << "the bit of a sight that is not accumulated";
    emplaceByName(other, text, /*accumulate=*/true);
    EXPECT_EQ(identifier->getKind(), kind | other);
  }
}

TEST_F(Emplace, ByAnEmptyNameMakesNothingWhereTheResultMayBeNull) {
  for (const IdentifierKind kind : kKinds) {
    data = CompilationData::newInstance("", "");
    emplaceByName(kind, "", /*accumulate=*/true);
    const bool mayBeNull = kind == IdentifierKind::Type || kind == IdentifierKind::Function ||
                           kind == IdentifierKind::EnumConstant || kind == IdentifierKind::Label;
    EXPECT_EQ(data->getIdentifier("") == nullptr, mayBeNull) << static_cast<unsigned>(kind);
    EXPECT_EQ(data->getIdentifier("source"), nullptr);
  }
}

TEST_F(Emplace, AFunctionLooksAtBothNamesBeforeItMakesEither) {
  EXPECT_EQ(data->emplaceFunction("f", "", here(), false, false, {}, {}, true), nullptr);
  EXPECT_EQ(data->emplaceFunction("", "f", here(), false, false, {}, {}, true), nullptr);
  EXPECT_EQ(data->getIdentifier("f"), nullptr);
  EXPECT_TRUE(data->getFunctions().empty());
}

TEST_F(Emplace, AFunctionNamedAsInTheSourceCountsTheNameUnderTheRuleOfAccumulate) {
  data->emplaceFunction("f", "f", here(), false, false, {}, {}, /*accumulate=*/false);
  data->emplaceFunction("g", "g", here(), false, false, {}, {}, /*accumulate=*/true);
  EXPECT_EQ(data->getIdentifier("f")->getCount(), 1u);
  EXPECT_EQ(data->getIdentifier("g")->getCount(), 2u);
}

TEST_F(Emplace, AnExternalIdentifierMarksItsNameOnEverySight) {
  Identifier* const x = data->emplaceIdentifier("x", IdentifierKind::Type, false, 3);
  x->setId(7);
  for (int i = 0; i < 2; ++i) {
    x->setKind(IdentifierKind::Type);
    data->emplaceExternalIdentifier(x, {}, /*accumulate=*/false);
    EXPECT_EQ(x->getKind(), IdentifierKind::Type | IdentifierKind::External) << "by pointer";
    x->setKind(IdentifierKind::Type);
    data->emplaceExternalIdentifier("x", {}, /*accumulate=*/false);
    EXPECT_EQ(x->getKind(), IdentifierKind::Type | IdentifierKind::External) << "by name";
    EXPECT_EQ(state(*x), "id=7");
    EXPECT_EQ(x->getCount(), 3u);
  }
}

TEST_F(Emplace, TextsAreTakenByteForByte) {
  const std::string withNul("a\0b", 3);
  const std::string_view cut = std::string_view(withNul).substr(0, 1);
  EXPECT_NE(name(withNul), name(cut));
  EXPECT_EQ(name(withNul)->getName(), withNul);
  EXPECT_NE(file(withNul), file(cut));
}

TEST_F(Emplace, MacroUsesAreNewEachTime) {
  Macro* const m = macro("M", here());
  const OneLineRange range{file("pp.i"), /*line=*/8, /*startColumn=*/2, /*endColumn=*/5};
  MacroInvocation* const use = data->emplaceMacroInvocation(m, here(), range);
  EXPECT_NE(data->emplaceMacroInvocation(m, here(), range), use);
  EXPECT_EQ(use->getMacro(), m);
  EXPECT_EQ(use->getRange().file, file("pp.i"));
  EXPECT_EQ(use->getRange().endColumn, 5u);

  auto* const origin = data->emplaceMacroInvocationCodeOrigin(here(), use, 1, 4, true, "tok");
  EXPECT_NE(data->emplaceMacroInvocationCodeOrigin(here(), use, 1, 4, true, "tok"), origin);
  EXPECT_EQ(origin->getInvocation(), use);
  EXPECT_EQ(origin->getTokenString(), "tok");
  EXPECT_TRUE(use->getCodeOrigins().empty()) << "filled by a load only";

  auto* const expansion = data->emplaceMacroExpansion(here(), "1", "M", 8, 2);
  EXPECT_NE(data->emplaceMacroExpansion(here(), "1", "M", 8, 2), expansion);
  EXPECT_EQ(expansion->getExpandedCode(), "1");
  EXPECT_EQ(expansion->getMacroCall(), "M");
}

}  // namespace
}  // namespace fe_db_tests
