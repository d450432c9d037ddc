#include "fe_db/compilation_data.h"
#include "fe_db/compilation_database.h"
#include "persistence/debug.h"

/// The find operations: a named search gives row ids, get() makes them elements of the dataset.
namespace orvalesca::databases_merger {

using persistence::Debug;

namespace {

int traced(long long id) { return static_cast<int>(id); }
template <class Kind>
int number(Kind kind) {
  return static_cast<int>(static_cast<std::uint32_t>(kind));
}

constexpr int kVariable = 0;
constexpr int kFunction = 1;

}  // namespace

/// A row that cannot become an element is passed over: null would say that the walk is at its end.
template <class T, class NextId>
T* CompilationData::findNext(const char* operation, NextId&& nextId) const {
  FrontendDatabase* db = selectDb(/*fromCompDb=*/true, operation);
  if (db == nullptr) return nullptr;
  for (;;) {
    const long long id = nextId(*db);
    if (id == 0) return nullptr;
    if (T* element = db->getFound<T>(id)) return element;
  }
}

// --- Whole tables.

CallPoint* CompilationData::findCallPoint(bool& first) {
  Debug debug(2, "findCallPoint");
  return findNext<CallPoint>("findCallPoint", [&](FrontendDatabase& db) {
    const long long id = db.listId<CallPoint>(first);
    debug.print("callPointId=%d", traced(id));
    return id;
  });
}

Identifier* CompilationData::findIdentifier(bool& first) {
  return findNext<Identifier>("findIdentifier",
                              [&](FrontendDatabase& db) { return db.listId<Identifier>(first); });
}

Macro* CompilationData::findMacro(bool& first) {
  return findNext<Macro>("findMacro",
                         [&](FrontendDatabase& db) { return db.listId<Macro>(first); });
}

// --- By identifier.

EnumConstant* CompilationData::findEnumConstantFromIdentifier(Identifier* identifier, bool& first) {
  return findNext<EnumConstant>("findEnumConstantFromIdentifier", [&](FrontendDatabase& db) {
    return db.listEnumConstantIdFromIdentifier(identifier, first);
  });
}

ExternalIdentifier* CompilationData::findExternalIdentifierFromIdentifier(
    const Identifier* identifier, bool& first) {
  return findNext<ExternalIdentifier>(
      "findExternalIdentifierFromIdentifier", [&](FrontendDatabase& db) {
        return db.listExternalIdentifierFromIdentifier(identifier, first);
      });
}

Field* CompilationData::findFieldFromIdentifier(Identifier* identifier, bool& first) {
  return findNext<Field>("findFieldFromIdentifier", [&](FrontendDatabase& db) {
    return db.listFieldIdFromIdentifier(identifier, first);
  });
}

Function* CompilationData::findFunctionFromIdentifier(Identifier* identifier, bool& first) {
  return findNext<Function>("findFunctionFromIdentifier", [&](FrontendDatabase& db) {
    return db.listEntityIdFromIdentifier(kFunction, identifier, first);
  });
}

Function* CompilationData::findFunctionFromIdentifierAndLinkage(Identifier* identifier,
                                                                LinkageKind linkage, bool& first) {
  return findNext<Function>("findFunctionFromIdentifierAndLinkage", [&](FrontendDatabase& db) {
    return db.listEntityIdFromIdentifier(kFunction, identifier, number(linkage), first);
  });
}

Label* CompilationData::findLabelFromIdentifier(Identifier* identifier, bool& first) {
  return findNext<Label>("findLabelFromIdentifier", [&](FrontendDatabase& db) {
    return db.listLabelIdFromIdentifier(identifier, first);
  });
}

Macro* CompilationData::findMacroFromIdentifier(const Identifier* identifier, bool& first) {
  return findNext<Macro>("findMacroFromIdentifier", [&](FrontendDatabase& db) {
    return db.listMacroIdFromIdentifier(identifier, first);
  });
}

Type* CompilationData::findTypeFromIdentifier(Identifier* identifier, bool& first) {
  return findNext<Type>("findTypeFromIdentifier", [&](FrontendDatabase& db) {
    return db.listTypeIdFromIdentifier(identifier, first);
  });
}

Type* CompilationData::findTypeFromIdentifierAndKind(Identifier* identifier, TypeKind kind,
                                                     bool& first) {
  return findNext<Type>("findTypeFromIdentifierAndKind", [&](FrontendDatabase& db) {
    return db.listTypeIdFromIdentifierAndKind(identifier, number(kind), first);
  });
}

Variable* CompilationData::findVariableFromIdentifier(Identifier* identifier, bool& first) {
  return findNext<Variable>("findVariableFromIdentifier", [&](FrontendDatabase& db) {
    return db.listEntityIdFromIdentifier(kVariable, identifier, first);
  });
}

Variable* CompilationData::findVariableFromIdentifierAndLinkage(Identifier* identifier,
                                                                LinkageKind linkage, bool& first) {
  return findNext<Variable>("findVariableFromIdentifierAndLinkage", [&](FrontendDatabase& db) {
    return db.listEntityIdFromIdentifier(kVariable, identifier, number(linkage), first);
  });
}

Function* CompilationData::findExternalDefinedFunction(Identifier* identifier) {
  FrontendDatabase* db = selectDb(/*fromCompDb=*/true, "findExternalDefinedFunction");
  if (db == nullptr) return nullptr;
  const long long id = db->getExternalDefinedFunction(identifier);
  return id == 0 ? nullptr : db->getFound<Function>(id);
}

// --- By count, kind, effect, declared type.

CallPoint* CompilationData::findCallPointWithNoEffect(bool& first) {
  Debug debug(2, "findCallPointWithNoEffect");
  return findNext<CallPoint>("findCallPointWithNoEffect", [&](FrontendDatabase& db) {
    const long long id = db.listCallPointIdWithNoEffect(first);
    debug.print("callPointId=%d", traced(id));
    return id;
  });
}

Field* CompilationData::findFieldFromRefCount(int refCount, bool& first) {
  Debug debug(2, "findFieldFromRefCount", "refCount=%d", refCount);
  return findNext<Field>("findFieldFromRefCount", [&](FrontendDatabase& db) {
    const long long id = db.listFieldIdFromRefCount(static_cast<unsigned>(refCount), first);
    debug.print("fieldId=%d", traced(id));
    return id;
  });
}

Identifier* CompilationData::findIdentifierFromKind(IdentifierKind kind, bool& first) {
  return findNext<Identifier>("findIdentifierFromKind", [&](FrontendDatabase& db) {
    return db.listIdentifierIdFromKind(number(kind), first);
  });
}

Identifier* CompilationData::findIdentifierFromKindAndCount(IdentifierKind kind, int count,
                                                            persistence::OperationKind operation,
                                                            bool& first) {
  return findNext<Identifier>("findIdentifierFromKindAndCount", [&](FrontendDatabase& db) {
    return db.listIdentifierIdFromKindAndCount(number(kind), static_cast<unsigned>(count),
                                               number(operation), first);
  });
}

Macro* CompilationData::findMacroFromRefCount(int refCount, bool& first) {
  Debug debug(2, "findMacroFromRefCount", "refCount=%d", refCount);
  return findNext<Macro>("findMacroFromRefCount", [&](FrontendDatabase& db) {
    const long long id = db.listMacroIdFromRefCount(static_cast<unsigned>(refCount), first);
    debug.print("macroId=%d", traced(id));
    return id;
  });
}

Type* CompilationData::findTypeFromRefCount(int refCount, bool& first) {
  Debug debug(2, "findTypeFromRefCount", "refCount=%d", refCount);
  return findNext<Type>("findTypeFromRefCount", [&](FrontendDatabase& db) {
    const long long id = db.listTypeIdFromRefCount(static_cast<unsigned>(refCount), first);
    debug.print("typeId=%d", traced(id));
    return id;
  });
}

Type* CompilationData::findTypeFromRefTagCount(int refTagCount, bool& first) {
  Debug debug(2, "findTypeFromRefTagCount", "refTagCount=%d", refTagCount);
  return findNext<Type>("findTypeFromRefTagCount", [&](FrontendDatabase& db) {
    const long long id = db.listTypeIdFromRefTagCount(static_cast<unsigned>(refTagCount), first);
    debug.print("typeId=%d", traced(id));
    return id;
  });
}

TypeReference* CompilationData::findTypeReferenceFromType(Type* declared, bool& first) {
  return findNext<TypeReference>("findTypeReferenceFromType", [&](FrontendDatabase& db) {
    return db.listTypeReferenceIdFromType(declared, first);
  });
}

Variable* CompilationData::findVariableFromRefCountAndLinkage(int refCount, LinkageKind linkage,
                                                              bool& first) {
  Debug debug(2, "findVariableFromRefCount", "refCount=%d", refCount);
  return findNext<Variable>("findVariableFromRefCountAndLinkage", [&](FrontendDatabase& db) {
    const long long id = db.listVariableIdFromRefCountAndLinkage(
        static_cast<unsigned>(refCount), static_cast<unsigned>(linkage), first);
    debug.print("variableId=%d", traced(id));
    return id;
  });
}

// --- By the length of the name.

template <class T>
NamedElement* CompilationData::findFromMinLength(std::size_t minLength, LinkageKind& linkage,
                                                 bool& first) {
  T* element = findNext<T>("findObjectFromMinLength", [&](FrontendDatabase& db) {
    return db.listIdFromMinLength<T>(minLength, first);
  });
  if constexpr (std::is_base_of_v<LinkedElement, T>) {
    if (element != nullptr) linkage = element->getLinkage();
  }
  return element;
}

NamedElement* CompilationData::findObjectFromMinLength(IdentifierKind kind, std::size_t minLength,
                                                       LinkageKind& linkage, bool& first) {
  linkage = LinkageKind::None;
  switch (kind) {
    case IdentifierKind::Type:
      return findFromMinLength<Type>(minLength, linkage, first);
    case IdentifierKind::Function:
      return findFromMinLength<Function>(minLength, linkage, first);
    case IdentifierKind::Variable:
      return findFromMinLength<Variable>(minLength, linkage, first);
    case IdentifierKind::Macro:
      return findFromMinLength<Macro>(minLength, linkage, first);
    case IdentifierKind::EnumConstant:
      return findFromMinLength<EnumConstant>(minLength, linkage, first);
    case IdentifierKind::Field:
      return findFromMinLength<Field>(minLength, linkage, first);
    case IdentifierKind::Label:
      return findFromMinLength<Label>(minLength, linkage, first);
    default:
      return nullptr;
  }
}

}  // namespace orvalesca::databases_merger
