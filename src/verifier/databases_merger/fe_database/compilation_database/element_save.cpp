#include "fe_db/compilation_database.h"

/// How each class of element goes to its row and comes from it.
namespace orvalesca::databases_merger {

/// The ways in which elements are saved; a struct, so that elements can be friends with all of
/// them.
struct ElementSave {
  /// A changed element with a row: the row is written again.
  template <class T>
  static long long rewriteIfDirty(T& element, FrontendDatabase& db) {
    if (element.getId() != 0 && element.dirty) db.update(element);
    return element.getId();
  }

  /// An element without an id has no row either, or nobody wants to look for one.
  template <class T>
  static bool isInsertedAtOnce() {
    return persistence::GenericElement::getOptimisticInsert() || T::isPreLoaded;
  }

  template <class T>
  static long long setRowId(T& element, long long id) {
    element.setId(id);
    return id;
  }

  /// File and Identifier: unique by constraint, so an insert can meet the row that it would double.
  template <class T, class Search>
  static long long saveUnique(T& element, FrontendDatabase& db, Search search) {
    if (element.getId() != 0) return rewriteIfDirty(element, db);
    if (isInsertedAtOnce<T>() || db.getKind() == DatabaseKind::Preprocessing) {
      return setRowId(element, db.addOrAdoptRow(element));
    }
    return setRowId(element, search(element));
  }

  /// Type, Variable, Function: written to a compilation database only.
  template <class T>
  static long long saveRewritable(T& element, FrontendDatabase& db) {
    if (element.getId() != 0) return rewriteIfDirty(element, db);
    return setRowId(element, isInsertedAtOnce<T>() ? db.add(element) : db.add_or_update(element));
  }

  /// No key, so nothing to look for.
  template <class T>
  static long long saveAppended(T& element, FrontendDatabase& db) {
    return element.getId() != 0 ? element.getId() : setRowId(element, db.add(element));
  }

  static long long save(File& element, FrontendDatabase& db) {
    return saveUnique(element, db, [&db](File& file) { return db.getIdOrAdd(file); });
  }
  static long long save(Identifier& element, FrontendDatabase& db) {
    return saveUnique(element, db, [&db](Identifier& name) { return db.add_or_update(name); });
  }

  static long long save(Macro& macro, FrontendDatabase& db) {
    // A wildcard position is no position, so there is no row that it could be.
    if (macro.getId() != 0 || macro.getLocalization().wildcard) {
      if (macro.dirty) db.update(macro);
      return macro.getId();
    }
    const bool atOnce = isInsertedAtOnce<Macro>() || db.getKind() == DatabaseKind::Preprocessing;
    return setRowId(macro, atOnce ? db.add(macro) : db.add_or_update(macro));
  }

  static long long save(MacroInvocation& use, FrontendDatabase& db) {
    if (use.getId() != 0) return rewriteIfDirty(use, db);
    const bool atOnce =
        isInsertedAtOnce<MacroInvocation>() || db.getKind() == DatabaseKind::Preprocessing;
    return setRowId(use, atOnce ? db.add(use) : db.getIdOrAdd(use));
  }

  static long long save(MacroInvocationCodeOrigin& origin, FrontendDatabase& db) {
    return saveAppended(origin, db);
  }
  static long long save(MacroExpansion& expansion, FrontendDatabase& db) {
    return saveAppended(expansion, db);
  }

  static long long save(Type& type, FrontendDatabase& db) { return saveRewritable(type, db); }
  static long long save(Variable& variable, FrontendDatabase& db) {
    return saveRewritable(variable, db);
  }
  static long long save(Function& function, FrontendDatabase& db) {
    return saveRewritable(function, db);
  }

  /// Its table has been folded, so whatever has no id has no row.
  static long long save(Unit& unit, FrontendDatabase& db) { return saveAppended(unit, db); }
  static long long save(Reference& reference, FrontendDatabase& db) {
    return saveRewritable(reference, db);
  }
  static long long save(Property& property, FrontendDatabase& db) {
    return saveRewritable(property, db);
  }

  /// The others: an element with an id is never written again.
  template <class T>
  static long long save(T& element, FrontendDatabase& db) {
    if (element.getId() != 0) return element.getId();
    const bool atOnce = persistence::GenericElement::getOptimisticInsert();
    return setRowId(element, atOnce ? db.add(element) : db.add_or_update(element));
  }

  template <class T>
  static void load(T& element, FrontendDatabase& db) {
    db.get(element);
  }
};

// clang-format off
long long File::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long Identifier::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long Macro::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long MacroInvocation::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long MacroInvocationCodeOrigin::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long MacroExpansion::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long Type::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long TypeReference::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long Variable::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long Function::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long ExternalIdentifier::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long Field::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long EnumConstant::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long Label::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long CallPoint::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long Unit::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long UnitFile::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long Include::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long Reference::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }
long long Property::saveToDB(FrontendDatabase& db) { return ElementSave::save(*this, db); }

void File::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void Identifier::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void Macro::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void MacroInvocation::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void MacroInvocationCodeOrigin::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void MacroExpansion::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void Type::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void TypeReference::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void Variable::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void Function::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void ExternalIdentifier::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void Field::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void EnumConstant::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void Label::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void CallPoint::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void Unit::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void UnitFile::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void Include::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void Reference::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
void Property::loadFromDB(FrontendDatabase& db) { ElementSave::load(*this, db); }
// clang-format on

}  // namespace orvalesca::databases_merger
