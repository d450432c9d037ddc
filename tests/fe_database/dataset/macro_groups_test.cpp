#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tests/support/test_dataset.h"

namespace fe_db_tests {
namespace {

class MacroGroups : public DatasetTest {
 protected:
  Localization line(std::uint32_t n) { return at("a.c", n, 1); }
  static Localization wildcard(Localization place = {}) {
    place.wildcard = true;
    return place;
  }

  /// Lines of the macros of a name, in the order of eachMacro; a name's macros have to be adjacent.
  std::vector<std::uint32_t> group(std::string_view text) {
    std::vector<std::uint32_t> lines;
    std::set<const Identifier*> left;
    const Identifier* current = nullptr;
    data->eachMacro([&](const Macro& macro) {
      if (macro.getIdentifier() != current) {
        EXPECT_TRUE(left.insert(macro.getIdentifier()).second) << "a group in two pieces";
        current = macro.getIdentifier();
      }
      if (current == name(text)) lines.push_back(macro.getLine());
    });
    return lines;
  }

  Macro* find(std::string_view text, const Localization& place) {
    return data->getMacro(name(text), place);
  }
};

TEST_F(MacroGroups, AreWalkedFromTheFirstInsertedThenFromTheNewestToTheOldest) {
  for (std::uint32_t n = 1; n <= 5; ++n) {
    macro("M", line(n));
    macro("N" + std::to_string(n), line(n));
  }
  EXPECT_EQ(group("M"), (std::vector<std::uint32_t>{1, 5, 4, 3, 2}));
  EXPECT_EQ(data->getMacro(name("M"))->getLine(), 1u);
  EXPECT_EQ(find("M", line(3))->getLine(), 3u);
  EXPECT_EQ(find("M", line(9)), nullptr);
  EXPECT_EQ(find("M", at("b.c", 3, 1)), nullptr);
  EXPECT_EQ(find("M", at("", 3, 1)), nullptr);
  EXPECT_EQ(find("N1", line(2)), nullptr);
  EXPECT_EQ(data->getMacro(name("no macro")), nullptr);
  EXPECT_EQ(find("no macro", wildcard()), nullptr);
}

// Large groups are searched by an index of positions, and a position can be set in many ways.
TEST_F(MacroGroups, MovedMacro_IsFoundWhereItIs) {
  const struct {
    const char* name;
    void (*move)(Macro&, File*);
    Localization to;
  } moves[] = {
      {"setLine", [](Macro& m, File*) { m.setLine(99); }, line(99)},
      {"setColumn", [](Macro& m, File*) { m.setColumn(7); }, at("a.c", 5, 7)},
      {"setFile", [](Macro& m, File* b) { m.setFile(b); }, at("b.c", 5, 1)},
      {"setLocalization",
       [](Macro& m, File* b) {
         m.setLocalization({b, 3, 3});
       },
       at("b.c", 3, 3)},
      {"through a base",
       [](Macro& m, File* b) {
         static_cast<LocatedElement&>(m).setLocalization({b, 4, 4});
       },
       at("b.c", 4, 4)},
      {"assigned to a base",
       [](Macro& m, File* b) {
         static_cast<NamedElement&>(m) = NamedElement(m.getIdentifier(), {b, 6, 6}, 1);
       },
       at("b.c", 6, 6)},
      {"assigned",
       [](Macro& m, File* b) {
         m = Macro(m.getIdentifier(), {b, 8, 8}, 1);
       },
       at("b.c", 8, 8)},
  };
  for (const auto& [text, move, to] : moves) {
    SCOPED_TRACE(text);
    for (std::uint32_t n = 1; n <= 12; ++n) macro(text, line(n));
    Macro* moved = find(text, line(5));
    move(*moved, file("b.c"));
    EXPECT_EQ(find(text, to), moved);
    EXPECT_EQ(find(text, line(5)), nullptr);
    EXPECT_EQ(find(text, line(6))->getLine(), 6u);
  }
}

// Rehashes must not turn a group round, and look-ups must stay right through them.
TEST_F(MacroGroups, KeepTheirOrderWhenLargeAndRehashed) {
  constexpr std::uint32_t kMacros = 3000;
  std::vector<std::uint32_t> expected{1};
  for (std::uint32_t n = 1; n <= kMacros; ++n) {
    macro("M", line(n));
    for (const char* prefix : {"A", "B", "C"}) macro(prefix + std::to_string(n), line(n));
    if (n > 1) expected.insert(expected.begin() + 1, n);
    if (n % 700 == 0) {
      ASSERT_EQ(group("M"), expected);
      ASSERT_EQ(find("M", wildcard())->getLine(), 1u);
    }
  }
  EXPECT_EQ(group("M"), expected);
  for (std::uint32_t n = 1; n <= kMacros; ++n) ASSERT_EQ(find("M", line(n))->getLine(), n);
}

TEST_F(MacroGroups, TheFirstMacroWithAValueIsTheFirstOfTheGroupThatHasOne) {
  EXPECT_EQ(data->getaMacroWithValue("M"), nullptr) << "unknown name";
  name("M");
  EXPECT_EQ(data->getaMacroWithValue("M"), nullptr) << "no macro of that name";
  macro("M", line(1));
  for (std::uint32_t n = 2; n <= 4; ++n) macro("M", line(n));
  EXPECT_EQ(data->getaMacroWithValue("M")->getLine(), 2u) << "none has a value: the last walked";
  find("M", line(2))->setValue(std::int64_t{0});
  EXPECT_EQ(data->getaMacroWithValue("M")->getLine(), 2u);
  find("M", line(3))->setValue(std::uint64_t{1});
  EXPECT_EQ(data->getaMacroWithValue("M")->getLine(), 3u);
  find("M", line(1))->setValue(std::uint64_t{1});
  EXPECT_EQ(data->getaMacroWithValue("M")->getLine(), 1u);
}

TEST_F(MacroGroups, AWildcardSoughtTakesTheFirstAlsoBeforeAnExactMatch) {
  for (std::uint32_t n = 1; n <= 3; ++n) macro("M", line(n));
  EXPECT_EQ(find("M", wildcard(line(3)))->getLine(), 1u);
  Macro& second = data->emplaceMacro("M", wildcard(line(7)), /*accumulate=*/true, /*refCount=*/2);
  EXPECT_EQ(&second, find("M", line(1)));
  EXPECT_EQ(second.getRefCount(), 2u);
  EXPECT_EQ(group("M").size(), 3u);
}

// In the order 1 N N-1 ... 2, a wildcard at 3 matches whatever is not met at 1 or from N to 4. Long
// groups are searched another way than short ones, which must not show.
TEST_F(MacroGroups, AStoredWildcardMatchesWhereTheWalkMeetsItBeforeAnExactMatch) {
  using Lines = std::vector<std::uint32_t>;
  for (const std::uint32_t size : {4u, 100u}) {
    const std::string text = "M" + std::to_string(size);
    for (std::uint32_t n = 1; n <= size; ++n) macro(text, line(n));
    Macro* const stored = find(text, line(3));
    const auto found = [&] {
      Lines lines;
      for (const std::uint32_t n : {1u, size, 3u, 2u, 99999u}) {
        const Macro* const m = find(text, line(n));
        lines.push_back(m == nullptr ? 0 : m->getLine());
      }
      return lines;
    };
    const Lines exact = {1, size, 3, 2, 0}, withWildcard = {1, size, 3, 3, 3};
    EXPECT_EQ(found(), exact);
    stored->setLocalization(wildcard(line(3)));
    EXPECT_EQ(found(), withWildcard);
    EXPECT_EQ(&data->emplaceMacro(text, line(99999), false, 0), stored) << "no element of its own";
    stored->setLocalization(line(3));
    Macro changed = *stored;
    changed.setLocalization(wildcard(line(3)));
    EXPECT_EQ(found(), exact) << "a copy is no macro of the dataset";
    *stored = changed;
    EXPECT_EQ(found(), withWildcard) << "assigned to";
  }
}

TEST_F(MacroGroups, ACopyOutlivesTheDatasetAndChangesNothingInIt) {
  macro("M", line(1));
  const Localization place = line(2);
  Macro copy(*macro("M", place));
  Macro assigned;
  assigned = *find("M", place);
  for (Macro* const m : {&copy, &assigned}) {
    m->setLocalization(wildcard(place));
    EXPECT_EQ(find("M", line(9)), nullptr);
  }
  data.reset();
  copy.setLocalization({});
  assigned.setLocalization({});
  assigned = copy;
}

TEST_F(MacroGroups, TheMacrosOfTheTranslationUnitAreThoseWithAFile) {
  bool first = true;
  EXPECT_EQ(data->listTranslationUnitMacro(first), nullptr);
  EXPECT_FALSE(first);
  macro("commandLine", at("", 0, 1));
  macro("predefined", at("", 0, 3));
  first = true;
  EXPECT_EQ(data->listTranslationUnitMacro(first), nullptr);
  EXPECT_EQ(data->listTranslationUnitMacro(first), nullptr) << "still at the end";

  std::multiset<const Macro*> expected;
  for (const char* text : {"M", "N", "commandLine"}) {
    for (std::uint32_t n = 1; n <= 9; ++n) expected.insert(macro(text, line(n)));
  }
  for (int walk = 0; walk < 2; ++walk) {
    std::multiset<const Macro*> listed;
    first = true;
    while (const Macro* const m = data->listTranslationUnitMacro(first)) listed.insert(m);
    EXPECT_EQ(listed, expected);
  }
}

}  // namespace
}  // namespace fe_db_tests
