#include "fe_db/elements.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "element_facts.h"

/// What the random sightings of model_test.cpp do not reach, and an example of each merge.
namespace orvalesca::databases_merger {
namespace {

using Value = Macro::Value;
using std::int64_t;
using std::uint64_t;

constexpr Value kNone;
constexpr uint64_t kLargest = std::numeric_limits<uint64_t>::max();

TEST(ElementDefaults, AreZeroExceptWhereZeroWouldSaySomethingElse) {
  EXPECT_EQ(Identifier().getCount(), 1u);
  EXPECT_EQ(Function().getEffect(), EffectKind::Unknown);
  EXPECT_EQ(ExternalIdentifier().getEntityKind(), EntityKind::None);
  const Macro macro;
  EXPECT_TRUE(macro.getIsDefined() && macro.getIsObjectLike());
  EXPECT_FALSE(macro.getIsVariadic() || macro.getIsCommandLineDefinition() ||
               macro.getIsPredefined() || macro.hasValue() || macro.dirty);
  EXPECT_EQ(macro.getId(), 0);
  EXPECT_EQ(Macro(7).getId(), 7);
}

TEST(Macro, SignednessOnlyRelabelsTheHeldBits) {
  const struct {
    Value before;
    bool isSigned;
    Value after;
  } cases[] = {
      {int64_t{-1}, false, kLargest},
      {kLargest, true, int64_t{-1}},
      {int64_t{-1}, true, int64_t{-1}},
      {kLargest, false, kLargest},
      {kNone, false, kNone},
      {kNone, true, kNone},
  };
  for (const auto& c : cases) {
    Macro macro;
    macro.setValue(c.before);
    macro.setSignednessFromDB(c.isSigned);
    EXPECT_EQ(macro.getValue(), c.after) << &c - cases;
  }
}

TEST(Macro, KindIsInFileOrTheColumnOrUnplaced) {
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

TEST(Macro, AssignmentTakesEveryField) {
  namespace model = fe_db_tests::model;
  const model::Known known;
  model::Fact fact;
  fact.value = -1;
  fact.text = "text";
  fact.line = fact.column = fact.count = 4;
  fact.variadic = fact.commandLine = fact.predefined = fact.wildcard = true;
  auto macro = model::make<Macro>(known, fact);
  macro.setId(9);
  macro.dirty = true;
  Macro assigned;
  assigned = macro;
  EXPECT_EQ(model::factOf<Macro>(known, assigned), model::factOf<Macro>(known, macro));
}

// --- Merging another copy: a sight (id 0) or a row. The answer: has the row to be written?

TEST(Update, OfAMacro_AddsItsCountFillsAMissingValueAndUndefines) {
  Macro macro(nullptr, {}, 0), other(nullptr, {}, 3);
  other.setText("other");
  other.setIsVariadic(true);
  EXPECT_FALSE(macro.update(other)) << "nothing to add to what the other has";
  other.setValue(uint64_t{2});
  other.setIsDefined(false);
  EXPECT_TRUE(macro.update(other));
  other.setValue(int64_t{9});
  EXPECT_TRUE(macro.update(other));
  EXPECT_EQ(macro.getRefCount(), 9u);
  EXPECT_EQ(macro.getValue(), Value(uint64_t{2}));
  EXPECT_FALSE(macro.getIsDefined() || macro.getIsVariadic());
  EXPECT_EQ(macro.getText(), "");
}

TEST(Update, OfAType_AddsItsCountsAndKeepsFlags) {
  const auto make = [](bool isLocal, unsigned tagCount, TypeKind kind) {
    return Type(nullptr, /*unnamed=*/false, {}, kind, /*refCount=*/0, tagCount, isLocal,
                /*incomplete=*/false);
  };
  Type type = make(false, 0, TypeKind::Tagged4);
  EXPECT_FALSE(type.update(make(true, 0, TypeKind::Named512))) << "the other has the flag already";
  EXPECT_TRUE(type.update(make(false, 0, TypeKind::Named512))) << "the other lacks it";
  type = make(false, 0, TypeKind::Tagged4);
  EXPECT_TRUE(type.update(make(false, 1, TypeKind::Named512))) << "no tag count is lost";
  EXPECT_TRUE(type.dirty);
  EXPECT_EQ(type.getRefTagCount(), 1u);
  EXPECT_EQ(type.getKind(), TypeKind::Tagged4);
}

// A bit that only the other has is no change, so a row that has it is not written and a sight that
// has it leaves dirty alone.
TEST(Update, OfAnIdentifier_CountsAsAChangeWhatTheOtherSightOrTheRowLacks) {
  constexpr auto kOne = IdentifierKind::Type;
  constexpr auto kBoth = IdentifierKind::Type | IdentifierKind::Label;
  const struct {
    unsigned count;
    IdentifierKind kind, otherKind;
    bool changed;
  } cases[] = {{1, kOne, kOne, true},
               {0, kOne, kOne, false},
               {0, kBoth, kOne, true},
               {0, kOne, kBoth, false},
               {0, kOne, IdentifierKind::Label, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    Identifier seen("x", c.kind, c.count), stored = seen, row("x", c.otherKind, 3);
    seen.setId(4);
    seen.addOccurrence(c.otherKind, 3);
    row.setId(8);
    EXPECT_EQ(stored.updateFromRow(row), c.changed);
    EXPECT_EQ(seen.getId(), 0);
    EXPECT_EQ(stored.getId(), 8);
    for (const Identifier& identifier : {seen, stored}) {
      EXPECT_EQ(identifier.getCount(), c.count + 3);
      EXPECT_EQ(identifier.getKind(), c.kind | c.otherKind);
      EXPECT_EQ(identifier.dirty, c.changed);
    }
  }
}

}  // namespace
}  // namespace orvalesca::databases_merger
