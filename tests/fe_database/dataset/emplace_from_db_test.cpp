#include <gtest/gtest.h>

#include "tests/support/test_dataset.h"

namespace fe_db_tests {
namespace {

// The model test plays rows of every class; these are the rules that differ from a plain sighting.
class EmplaceFromDB : public DatasetTest {
 protected:
  Localization here() { return at("a.c", 3, 5); }

  /// A row as a load hands it in: its id belongs to the file, not to the element.
  template <class T>
  static T row(T element) {
    element.setId(77);
    element.dirty = true;
    return element;
  }
};

TEST_F(EmplaceFromDB, AnUnknownFileIsCopiedAndAKnownOneStaysAsItIs) {
  const File stored = row(File("a.c", FileKind{1}, results_api::LanguageKind{2}, /*huge=*/true));
  File* const file = data->emplaceFromDB(stored, /*accumulate=*/true);
  EXPECT_EQ(file->getPath(), "a.c");
  EXPECT_EQ(file->getKind(), FileKind{1});
  EXPECT_TRUE(file->getHuge());
  EXPECT_EQ(file->getId(), 0) << "the caller gives the id";
  file->setId(5);
  EXPECT_EQ(data->emplaceFromDB(row(File("a.c", FileKind{8})), /*accumulate=*/true), file);
  EXPECT_EQ(file->getKind(), FileKind{1});
  EXPECT_TRUE(file->getHuge());
  EXPECT_EQ(file->getId(), 5);
}

TEST_F(EmplaceFromDB, FieldsEnumConstantsAndLabelsGoByNameAndCountIt) {
  Identifier* const x = data->emplaceIdentifier("x", IdentifierKind{}, false, 1);
  const Field field = row(Field(x, here(), 6));
  const EnumConstant constant = row(EnumConstant(x, here()));
  const Label label = row(Label(x, here()));
  const auto emplaceAll = [&](bool accumulate) {
    x->setId(7);
    EXPECT_EQ(data->emplaceFromDB(field, accumulate)->getIdentifier(), x);
    data->emplaceFromDB(constant, accumulate);
    data->emplaceFromDB(label, accumulate);
  };
  emplaceAll(/*accumulate=*/false);
  EXPECT_EQ(x->getCount(), 1u);
  EXPECT_EQ(x->getId(), 7);
  EXPECT_EQ(data->getField(here(), x)->getRefCount(), 6u);
  EXPECT_EQ(data->getField(here(), x)->getId(), 0);
  emplaceAll(/*accumulate=*/true);
  EXPECT_EQ(x->getCount(), 4u) << "first sights of theirs, three more sights of the name";
  EXPECT_EQ(x->getKind(),
            IdentifierKind::Field | IdentifierKind::EnumConstant | IdentifierKind::Label);
  EXPECT_EQ(x->getId(), 0);
  EXPECT_EQ(data->getField(here(), x)->getRefCount(), 12u);
}

TEST_F(EmplaceFromDB, ARowThatCannotBecomeAnElementGivesNull) {
  Identifier* const empty = name("");
  EXPECT_EQ(data->emplaceFromDB(EnumConstant(empty, here()), true), nullptr);
  EXPECT_EQ(data->emplaceFromDB(Label(empty, here()), true), nullptr);
  EXPECT_NE(data->emplaceFromDB(Field(empty, here()), true), nullptr);
  EXPECT_EQ(data->emplaceFromDB(Variable(name("v"), {}, nullptr, false, {}, 0), true), nullptr)
      << "no file";
}

TEST_F(EmplaceFromDB, AFunctionComesWithoutItsCount) {
  Function stored(name("f"), name("source"), here(), true, true, EffectKind::NoEffect,
                  LinkageKind::External);
  stored.setRefCount(9);
  Function* const f = data->emplaceFromDB(row(stored), /*accumulate=*/true);
  EXPECT_EQ(f->getRefCount(), 0u);
  EXPECT_EQ(f->getSourceName(), name("source"));
  EXPECT_TRUE(f->getIsDefined() && f->getIsSpecial());
  f->setRefCount(2);
  EXPECT_EQ(data->emplaceFromDB(row(stored), /*accumulate=*/true), f);
  EXPECT_EQ(f->getRefCount(), 2u);
  EXPECT_TRUE(f->dirty);
}

TEST_F(EmplaceFromDB, AMacroInvocationTakesTheFileOfItsPositionForItsRange) {
  const MacroInvocation stored(macro("M", here()), here(), {file("pp.i"), 8, 2, 5});
  const MacroInvocation* const use = data->emplaceFromDB(row(stored), /*accumulate=*/true);
  EXPECT_EQ(use->getRange().file, here().file);
  EXPECT_EQ(use->getRange().line, 8u);
  EXPECT_NE(data->emplaceFromDB(row(stored), /*accumulate=*/true), use);
}

}  // namespace
}  // namespace fe_db_tests
