#include "fe_db/compilation_database.h"

/// How each class of element goes to its row and comes from it.
namespace orvalesca::databases_merger {

namespace {

/// A changed element with a row: the row is written again.
template <class T>
long long rewriteIfDirty(T& element, FrontendDatabase& db) {
  if (element.getId() != 0 && element.dirty) db.update(element);
  return element.getId();
}

/// An element without an id has no row either, or nobody wants to look for one.
template <class T>
bool isInsertedAtOnce() {
  return persistence::GenericElement::getOptimisticInsert() || T::isPreLoaded;
}

template <class T>
long long takeId(T& element, long long id) {
  element.setId(id);
  return id;
}

/// File and Identifier: unique by constraint, so an insert can meet the row that it would double.
template <class T, class Search>
long long saveUnique(T& element, FrontendDatabase& db, Search search) {
  if (element.getId() != 0) return rewriteIfDirty(element, db);
  if (isInsertedAtOnce<T>() || db.getKind() == DatabaseKind::Preprocessing) {
    return takeId(element, db.addOrTakeRow(element));
  }
  return takeId(element, search(element));
}

/// Type, Variable, Function: written to a compilation database only.
template <class T>
long long saveRewritable(T& element, FrontendDatabase& db) {
  if (element.getId() != 0) return rewriteIfDirty(element, db);
  return takeId(element, isInsertedAtOnce<T>() ? db.add(element) : db.add_or_update(element));
}

/// An element with an id is never written again.
template <class T>
long long saveOnce(T& element, FrontendDatabase& db) {
  if (element.getId() != 0) return element.getId();
  const bool atOnce = persistence::GenericElement::getOptimisticInsert();
  return takeId(element, atOnce ? db.add(element) : db.add_or_update(element));
}

/// No key, so nothing to look for.
template <class T>
long long saveAppended(T& element, FrontendDatabase& db) {
  return element.getId() != 0 ? element.getId() : takeId(element, db.add(element));
}

}  // namespace

long long File::saveToDB(FrontendDatabase& db) {
  return saveUnique(*this, db, [&db](File& file) { return db.getIdOrAdd(file); });
}

long long Identifier::saveToDB(FrontendDatabase& db) {
  return saveUnique(*this, db, [&db](Identifier& name) { return db.add_or_update(name); });
}

long long Macro::saveToDB(FrontendDatabase& db) {
  // A wildcard position is no position, so there is no row that it could be.
  if (getId() != 0 || localization.wildcard) {
    if (dirty) db.update(*this);
    return getId();
  }
  const bool atOnce = isInsertedAtOnce<Macro>() || db.getKind() == DatabaseKind::Preprocessing;
  return takeId(*this, atOnce ? db.add(*this) : db.add_or_update(*this));
}

long long MacroInvocation::saveToDB(FrontendDatabase& db) {
  if (getId() != 0) return rewriteIfDirty(*this, db);
  const bool atOnce =
      isInsertedAtOnce<MacroInvocation>() || db.getKind() == DatabaseKind::Preprocessing;
  return takeId(*this, atOnce ? db.add(*this) : db.getIdOrAdd(*this));
}

long long MacroInvocationCodeOrigin::saveToDB(FrontendDatabase& db) {
  return saveAppended(*this, db);
}
long long MacroExpansion::saveToDB(FrontendDatabase& db) { return saveAppended(*this, db); }

long long Type::saveToDB(FrontendDatabase& db) { return saveRewritable(*this, db); }
long long Variable::saveToDB(FrontendDatabase& db) { return saveRewritable(*this, db); }
long long Function::saveToDB(FrontendDatabase& db) { return saveRewritable(*this, db); }

long long TypeReference::saveToDB(FrontendDatabase& db) { return saveOnce(*this, db); }
long long ExternalIdentifier::saveToDB(FrontendDatabase& db) { return saveOnce(*this, db); }
long long Field::saveToDB(FrontendDatabase& db) { return saveOnce(*this, db); }
long long EnumConstant::saveToDB(FrontendDatabase& db) { return saveOnce(*this, db); }
long long Label::saveToDB(FrontendDatabase& db) { return saveOnce(*this, db); }
long long CallPoint::saveToDB(FrontendDatabase& db) { return saveOnce(*this, db); }

void File::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void Identifier::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void Macro::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void MacroInvocation::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void MacroInvocationCodeOrigin::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void MacroExpansion::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void Type::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void TypeReference::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void Variable::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void Function::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void ExternalIdentifier::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void Field::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void EnumConstant::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void Label::loadFromDB(FrontendDatabase& db) { db.get(*this); }
void CallPoint::loadFromDB(FrontendDatabase& db) { db.get(*this); }

}  // namespace orvalesca::databases_merger
