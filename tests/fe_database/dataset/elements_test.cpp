#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "fe_db/elements.h"

namespace orvalesca::databases_merger {
namespace {

using Value = Macro::Value;
using std::int64_t;
using std::uint64_t;

constexpr Value kNone;
constexpr uint64_t kLargest = std::numeric_limits<uint64_t>::max();
constexpr int64_t kLowest = std::numeric_limits<int64_t>::min();

Localization inFile(File& file) { return {&file, /*line=*/3, /*column=*/1, /*wildcard=*/false}; }
Localization withoutFile(std::uint32_t column) { return {nullptr, 0, column, /*wildcard=*/false}; }

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

// --- Macro: its value in a signed column.

struct StoredValue {
  const char* name;
  Value value;
  std::optional<int64_t> stored;
  bool isSigned;
};

class MacroValue : public testing::TestWithParam<StoredValue> {};

TEST_P(MacroValue, PassesThroughItsTwoColumnsUnchanged) {
  const auto& [name, value, stored, isSigned] = GetParam();
  Macro macro;
  macro.setValue(value);
  EXPECT_EQ(macro.getIntegralValueForDB(), stored);
  EXPECT_EQ(macro.getSignednessForDB(), isSigned);
  Macro read;
  read.setIntegralValueFromDB(stored);
  read.setSignednessFromDB(isSigned);
  EXPECT_EQ(read.getValue(), value);
  EXPECT_EQ(read.hasValue(), stored.has_value());
}

INSTANTIATE_TEST_SUITE_P(Values, MacroValue,
                         testing::Values(StoredValue{"None", kNone, std::nullopt, false},
                                         StoredValue{"Zero", int64_t{0}, 0, true},
                                         StoredValue{"UnsignedZero", uint64_t{0}, 0, false},
                                         StoredValue{"MinusOne", int64_t{-1}, -1, true},
                                         StoredValue{"Lowest", kLowest, kLowest, true},
                                         StoredValue{"LargestUnsigned", kLargest, -1, false},
                                         StoredValue{"HighBit", uint64_t{1} << 63, kLowest, false}),
                         [](const auto& value) { return std::string(value.param.name); });

TEST(MacroValue, SignednessOnlyRelabelsTheHeldBits) {
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

TEST(MacroValue, AnEmptyColumnTakesTheValueAway) {
  Macro macro;
  macro.setValue(uint64_t{5});
  macro.setIntegralValueFromDB(std::nullopt);
  EXPECT_FALSE(macro.hasValue());
}

TEST(MacroKind, IsInFileOrTheColumnOrUnplaced) {
  File file("a.c");
  const auto kind = [](const Localization& at) { return Macro(nullptr, at, 0).getKind(); };
  EXPECT_EQ(kind({&file, 1, 3, false}), Macro::MacroKind::InFile);
  EXPECT_EQ(kind(withoutFile(0)), Macro::MacroKind::Unplaced);
  EXPECT_EQ(kind(withoutFile(1)), Macro::MacroKind::CommandLine);
  EXPECT_EQ(kind(withoutFile(2)), Macro::MacroKind::NoFileColumn2);
  EXPECT_EQ(kind(withoutFile(3)), Macro::MacroKind::Predefined);
  EXPECT_EQ(kind(withoutFile(9)), Macro::MacroKind{9});
}

TEST(MacroText, IsCopiedAlsoFromItself) {
  const std::string text(100, 'x');
  Macro macro;
  macro.setText(text);
  macro.setText(macro.getText());
  EXPECT_EQ(macro.getText(), text);
  macro = *&macro;
  EXPECT_EQ(macro.getText(), text);
}

TEST(MacroCopy, TakesEveryField) {
  File file("a.c");
  Identifier name("M", IdentifierKind::Macro, 1);
  Macro macro(&name, inFile(file), /*refCount=*/4);
  macro.setId(9);
  macro.dirty = true;
  macro.setText("text");
  macro.setValue(kLargest);
  macro.setIsDefined(false);
  macro.setIsObjectLike(false);
  macro.setIsVariadic(true);
  macro.setIsCommandLineDefinition(true);
  macro.setIsPredefined(true);
  Macro assigned;
  assigned = macro;
  for (const Macro& copy : {Macro(macro), assigned}) {
    EXPECT_EQ(copy.getId(), 9);
    EXPECT_EQ(copy.getIdentifier(), &name);
    EXPECT_EQ(copy.getFile(), &file);
    EXPECT_EQ(copy.getRefCount(), 4u);
    EXPECT_EQ(copy.getText(), "text");
    EXPECT_EQ(copy.getValue(), Value(kLargest));
    EXPECT_TRUE(copy.dirty && copy.getIsVariadic() && copy.getIsCommandLineDefinition() &&
                copy.getIsPredefined());
    EXPECT_FALSE(copy.getIsDefined() || copy.getIsObjectLike());
  }
}

// --- Merging another copy: a sight (id 0) or a row.

TEST(MacroUpdate, AddsCountsFillsAMissingValueAndUndefines) {
  struct State {
    unsigned count;
    Value value;
    bool isDefined;
  };
  const struct {
    State stored, other;
    bool changed;
    State merged;
  } cases[] = {
      {{0, kNone, true}, {3, kNone, true}, false, {3, kNone, true}},
      {{2, kNone, true}, {0, kNone, true}, true, {2, kNone, true}},
      {{0, kNone, true}, {0, int64_t{0}, true}, true, {0, int64_t{0}, true}},
      {{0, int64_t{1}, true}, {1, uint64_t{2}, true}, false, {1, int64_t{1}, true}},
      {{0, int64_t{1}, true}, {0, kNone, true}, false, {0, int64_t{1}, true}},
      {{0, kNone, true}, {0, kNone, false}, true, {0, kNone, false}},
      {{0, kNone, false}, {0, kNone, true}, false, {0, kNone, false}},
      {{0, kNone, false}, {0, kNone, false}, false, {0, kNone, false}},
      {{0xFFFFFFFF, kNone, true}, {2, kNone, true}, true, {1, kNone, true}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    const auto make = [](const State& state, const char* text) {
      Macro macro(nullptr, {}, state.count);
      macro.setValue(state.value);
      macro.setIsDefined(state.isDefined);
      macro.setText(text);
      return macro;
    };
    Macro stored = make(c.stored, "first");
    stored.setId(4);
    Macro other = make(c.other, "second");
    other.setId(8);
    other.setIsObjectLike(false);
    other.setIsVariadic(true);
    other.setIsPredefined(true);
    EXPECT_EQ(stored.update(other), c.changed);
    EXPECT_EQ(stored.getRefCount(), c.merged.count);
    EXPECT_EQ(stored.getValue(), c.merged.value);
    EXPECT_EQ(stored.getIsDefined(), c.merged.isDefined);
    EXPECT_EQ(stored.dirty, c.changed);
    EXPECT_EQ(stored.getId(), 8);
    EXPECT_EQ(stored.getText(), "first");
    EXPECT_TRUE(stored.getIsObjectLike() && !stored.getIsVariadic() && !stored.getIsPredefined());
  }
}

TEST(TypeUpdate, AddsCountsAndKeepsFlags) {
  struct State {
    unsigned refCount, refTagCount;
    bool unnamed, local, incomplete;
  };
  const struct {
    State stored, other;
    bool changed;
    State merged;
  } cases[] = {
      {{2, 1, 0, 0, 0}, {3, 4, 0, 0, 0}, true, {5, 5, 0, 0, 0}},
      {{0, 0, 0, 0, 0}, {3, 0, 0, 0, 0}, false, {3, 0, 0, 0, 0}},
      {{0, 2, 0, 0, 0}, {0, 0, 0, 0, 0}, true, {0, 2, 0, 0, 0}},  // no tag count is lost
      {{0, 0, 0, 0, 0}, {0, 1, 0, 0, 0}, true, {0, 1, 0, 0, 0}},
      {{0, 0xFFFFFFFF, 0, 0, 0}, {0, 1, 0, 0, 0}, false, {0, 0, 0, 0, 0}},
      {{0, 0, 1, 0, 0}, {0, 0, 0, 0, 0}, true, {0, 0, 1, 0, 0}},
      {{0, 0, 0, 1, 0}, {0, 0, 0, 0, 0}, true, {0, 0, 0, 1, 0}},
      {{0, 0, 0, 0, 1}, {0, 0, 0, 0, 0}, true, {0, 0, 0, 0, 1}},
      {{0, 0, 0, 0, 0}, {0, 0, 1, 1, 1}, false, {0, 0, 1, 1, 1}},
      {{0, 0, 1, 1, 1}, {0, 0, 1, 1, 1}, false, {0, 0, 1, 1, 1}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    const auto make = [](const State& s, TypeKind kind) {
      return Type(nullptr, s.unnamed, {}, kind, s.refCount, s.refTagCount, s.local, s.incomplete);
    };
    Type stored = make(c.stored, TypeKind::Tagged4);
    Type other = make(c.other, TypeKind::Named512);
    other.setId(8);
    EXPECT_EQ(stored.update(other), c.changed);
    EXPECT_EQ(stored.getRefCount(), c.merged.refCount);
    EXPECT_EQ(stored.getRefTagCount(), c.merged.refTagCount);
    EXPECT_EQ(stored.getUnnamed(), c.merged.unnamed);
    EXPECT_EQ(stored.getLocal(), c.merged.local);
    EXPECT_EQ(stored.getIncomplete(), c.merged.incomplete);
    EXPECT_EQ(stored.dirty, c.changed);
    EXPECT_EQ(stored.getId(), 8);
    EXPECT_EQ(stored.getKind(), TypeKind::Tagged4);
  }
}

TEST(NamedElementUpdate, CountsAsAChangeOnlyWhatThisElementHadToAdd) {
  Field field(nullptr, {}, 0);
  EXPECT_FALSE(field.update(Field(nullptr, {}, 2)));
  EXPECT_EQ(field.getRefCount(), 2u);
  EXPECT_FALSE(field.dirty);
  EXPECT_TRUE(field.update(Field(nullptr, {}, 0)));
  EXPECT_TRUE(field.dirty);
  field.setRefCount(0);
  EXPECT_FALSE(field.update(Field(nullptr, {}, 0)));
  EXPECT_TRUE(field.dirty) << "never cleared";
}

// A change is what this element brings: a count, or a bit that the other lacks. A bit that only the
// other has is none, so a row that has it is not written and a sight that has it leaves dirty
// alone.
TEST(IdentifierMerge, CountsAsAChangeWhatTheOtherSightOrTheRowLacks) {
  constexpr auto kOne = IdentifierKind::Type;
  constexpr auto kBoth = IdentifierKind::Type | IdentifierKind::Label;
  const struct {
    unsigned count;
    IdentifierKind kind;
    unsigned otherCount;
    IdentifierKind otherKind;
    unsigned merged;
    bool changed;
  } cases[] = {
      {1, kOne, 1, kOne, 2, true},           {0, kOne, 3, kOne, 3, false},
      {0, kBoth, 3, kOne, 3, true},          {0, kOne, 3, kBoth, 3, false},
      {0, kOne, 0, kOne, 0, false},          {0, kOne, 1, IdentifierKind::Label, 1, true},
      {2, kOne, 0xFFFFFFFF, kBoth, 1, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    Identifier seen("x", c.kind, c.count);
    Identifier stored = seen;
    seen.setId(4);
    seen.addSight(c.otherKind, c.otherCount);
    Identifier row("x", c.otherKind, c.otherCount);
    row.setId(8);
    EXPECT_EQ(stored.updateFromRow(row), c.changed);
    EXPECT_EQ(seen.getId(), 0);
    EXPECT_EQ(stored.getId(), 8);
    for (const Identifier& identifier : {seen, stored}) {
      EXPECT_EQ(identifier.getCount(), c.merged);
      EXPECT_EQ(identifier.getKind(), c.kind | c.otherKind);
      EXPECT_EQ(identifier.dirty, c.changed);
    }
  }
}

TEST(FileHuge, AnyStoredNumberButZeroReadsAsTrueAndIsWrittenAsOne) {
  for (const std::uint32_t stored : {0u, 1u, 2u, 0x80000000u}) {
    File file("a.c");
    file.setHugeFromDB(stored);
    EXPECT_EQ(file.getHuge(), stored != 0);
    EXPECT_EQ(file.getHugeForDB(), stored != 0 ? 1u : 0u);
  }
}

}  // namespace
}  // namespace orvalesca::databases_merger
