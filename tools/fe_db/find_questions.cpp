#include "find_questions.h"

#include <fnmatch.h>

#include <algorithm>

#include "fe_db/compilation_database.h"

namespace fe_db_tools {
namespace {

using dm::CompilationData;
using dm::IdentifierKind;
using Names = std::vector<std::string>;

// --- The program's own questions to the file, where the library has none.

using Parameter = std::variant<std::monostate, long long, std::string>;

/// REQUIRES: `visit` does not ask the same. A question is compiled once.
template <class Visit>
void eachRow(Search& search, const char* sql, const Parameter& parameter, Visit&& visit) {
  Statement& statement = search.statements[sql];
  if (statement == nullptr) statement = search.file.prepare(sql);
  sqlite3_stmt* row = statement.get();
  if (const auto* number = std::get_if<long long>(&parameter)) {
    sqlite3_bind_int64(row, 1, *number);
  } else if (const auto* text = std::get_if<std::string>(&parameter)) {
    sqlite3_bind_text(row, 1, text->data(), static_cast<int>(text->size()), SQLITE_TRANSIENT);
  }
  while (search.file.step(statement)) visit(row);
  sqlite3_reset(row);
}

/// The first column.
Names names(Search& search, const char* sql, const Parameter& parameter = {}) {
  Names found;
  eachRow(search, sql, parameter, [&](sqlite3_stmt* row) {
    const unsigned char* text = sqlite3_column_text(row, 0);
    if (text != nullptr) found.emplace_back(reinterpret_cast<const char*>(text));
  });
  return found;
}

std::unordered_set<long long> numbers(Search& search, const char* sql,
                                      const Parameter& parameter = {}) {
  std::unordered_set<long long> found;
  const auto take = [&](sqlite3_stmt* row) { found.insert(sqlite3_column_int64(row, 0)); };
  eachRow(search, sql, parameter, take);
  return found;
}

// --- What meets the filter.

/// False for the element that stands for a row that is not there: it has nothing, not even a name.
template <class T>
bool isThere(const T& element) {
  if constexpr (requires { element.getIdentifier(); }) return element.getIdentifier() != nullptr;
  return true;
}

/// REQUIRES: isThere(element).
template <class T>
bool accepts(const FindFilter& filter, const T& element) {
  if constexpr (std::is_base_of_v<dm::NamedElement, T>) {
    const std::string& identifier = element.getIdentifier()->getName();
    if (filter.name && filter.name != identifier && filter.name != nameOf(&element)) return false;
    if (filter.minLength && charactersIn(identifier) < *filter.minLength) return false;
    if (filter.refCount && static_cast<int>(element.getRefCount()) != *filter.refCount) {
      return false;
    }
  }
  if constexpr (std::is_base_of_v<dm::LinkedElement, T>) {
    if (filter.linkage && element.getLinkage() != dm::LinkageKind{*filter.linkage}) return false;
    if (filter.defined && !element.getIsDefined()) return false;
  }
  if constexpr (std::is_same_v<dm::Type, T>) {
    if (filter.defined && element.getIncomplete()) return false;
  }
  if (!filter.fileGlob) return true;
  const dm::File* file = positionOf(&element).file;
  return file != nullptr && fnmatch(filter.fileGlob->c_str(), file->getPath().c_str(), 0) == 0;
}

constexpr auto kAny = [](const auto&) { return true; };
/// For what has to be in memory and is no answer.
constexpr auto kNone = [](const auto&) { return false; };

template <class T, class Wanted>
void add(Search& search, T& element, Wanted&& wanted) {
  if (!isThere(element)) return static_cast<void>(++search.passedOver);
  if (!wanted(element)) return;
  if constexpr (std::is_same_v<dm::Function, T>) {
    // A dataset does not take over the count of a function.
    eachRow(search, "SELECT RefCount FROM Function WHERE FunctionId=?1", element.getId(),
            [&](sqlite3_stmt* row) {
              element.setRefCount(static_cast<std::uint32_t>(sqlite3_column_int64(row, 0)));
            });
  }
  if (accepts(search.filter, element) && search.found.insert(&element).second) {
    search.findings.emplace_back(&element);
  }
}

// --- The library's cursors, run to their end.

template <class Wanted, class Cursor, class... Arguments>
void addFrom(Search& search, Wanted&& wanted, Cursor cursor, Arguments... arguments) {
  bool first = true;
  while (auto* element = (search.data.*cursor)(arguments..., first)) add(search, *element, wanted);
}

template <class Wanted, class Cursor>
void addByName(Search& search, Wanted&& wanted, Cursor cursor, const Names& names) {
  for (const std::string& name : names) {
    dm::Identifier identifier(name, {}, /*count=*/0);
    addFrom(search, wanted, cursor, &identifier);
  }
}

/// The whole table when no length is asked for.
template <class T>
void addByLength(Search& search, IdentifierKind kind) {
  const std::size_t least = search.filter.minLength.value_or(0);
  dm::LinkageKind linkage;
  bool first = true;
  while (auto* element = search.data.findObjectFromMinLength(kind, least, linkage, first)) {
    add(search, *static_cast<T*>(element), kAny);
  }
}

template <class T, IdentifierKind kKind, auto kByName, auto kByRefCount = nullptr>
void askThings(Search& search) {
  const FindFilter& filter = search.filter;
  if (filter.name) return addByName(search, kAny, kByName, {*filter.name});
  if constexpr (!std::is_null_pointer_v<decltype(kByRefCount)>) {
    if (filter.refCount) return addFrom(search, kAny, kByRefCount, *filter.refCount);
  }
  addByLength<T>(search, kKind);
}

// --- Things.

constexpr auto kFunctionsOf = &CompilationData::findFunctionFromIdentifier;
constexpr auto kVariablesOf = &CompilationData::findVariableFromIdentifier;
constexpr auto kTypesOf = &CompilationData::findTypeFromIdentifier;
constexpr auto kMacrosOf = &CompilationData::findMacroFromIdentifier;
constexpr auto kVariablesOfCount = &CompilationData::findVariableFromRefCountAndLinkage;
constexpr char kLinkagesOfCount[] = "SELECT DISTINCT Linkage FROM Variable WHERE RefCount=?1";

/// The name itself, and the identifiers of the functions that the source writes so.
Names identifiersOf(Search& search) {
  const std::string& name = *search.filter.name;
  Names found =
      names(search,
            "SELECT DISTINCT I.Name FROM Identifier Written CROSS JOIN Function F"
            " ON F.SourceNameId=Written.IdentifierId AND F.IdentifierId<>F.SourceNameId"
            " CROSS JOIN Identifier I ON I.IdentifierId=F.IdentifierId WHERE Written.Name=?1",
            name);
  found.push_back(name);
  return found;
}

void askFunctions(Search& search) {
  if (search.filter.name) return addByName(search, kAny, kFunctionsOf, identifiersOf(search));
  if (!search.filter.refCount) return addByLength<dm::Function>(search, IdentifierKind::Function);
  addByName(search, kAny, kFunctionsOf,
            names(search,
                  "SELECT DISTINCT I.Name FROM Function F CROSS JOIN Identifier I"
                  " USING (IdentifierId) WHERE F.RefCount=?1",
                  *search.filter.refCount));
}

/// The cursor by count takes that of all rows of a name together when they are external.
void askVariables(Search& search) {
  const FindFilter& filter = search.filter;
  if (filter.name || !filter.refCount) {
    return askThings<dm::Variable, IdentifierKind::Variable, kVariablesOf>(search);
  }
  addByName(search, kAny, kVariablesOf,
            names(search,
                  "SELECT DISTINCT I.Name FROM Variable V CROSS JOIN Identifier I"
                  " USING (IdentifierId) WHERE V.RefCount=?1 AND V.Linkage=1",
                  *filter.refCount));
  for (const long long linkage : numbers(search, kLinkagesOfCount, *filter.refCount)) {
    const auto kind = static_cast<dm::LinkageKind>(linkage);
    if (kind != dm::LinkageKind::External) {
      addFrom(search, kAny, kVariablesOfCount, *filter.refCount, kind);
    }
  }
}

/// Unnamed types, which have few names, and those of the compiler are in the search by name only.
void askTypes(Search& search) {
  askThings<dm::Type, IdentifierKind::Type, kTypesOf, &CompilationData::findTypeFromRefCount>(
      search);
  if (search.filter.name || search.filter.refCount || search.filter.minLength) return;
  addByName(search, kAny, kTypesOf,
            names(search,
                  "SELECT DISTINCT I.Name FROM Type T CROSS JOIN Identifier I USING (IdentifierId)"
                  " WHERE T.Unnamed<>0 OR T.Kind&964=0"));
}

constexpr auto askMacros =
    askThings<dm::Macro, IdentifierKind::Macro, kMacrosOf, &CompilationData::findMacroFromRefCount>;
constexpr auto askFields =
    askThings<dm::Field, IdentifierKind::Field, &CompilationData::findFieldFromIdentifier,
              &CompilationData::findFieldFromRefCount>;
constexpr auto askEnumConstants = askThings<dm::EnumConstant, IdentifierKind::EnumConstant,
                                            &CompilationData::findEnumConstantFromIdentifier>;
constexpr auto askLabels =
    askThings<dm::Label, IdentifierKind::Label, &CompilationData::findLabelFromIdentifier>;

/// The cursor needs their names.
void askExternals(Search& search) {
  constexpr char kAll[] =
      "SELECT DISTINCT I.Name FROM ExternalIdentifier E CROSS JOIN Identifier I"
      " USING (IdentifierId)";
  addByName(search, kAny, &CompilationData::findExternalIdentifierFromIdentifier,
            search.filter.name ? Names{*search.filter.name} : names(search, kAll));
}

void askLongNames(Search& search) {
  for (const auto ask : {askFunctions, askVariables, askTypes, +askMacros, +askFields,
                         +askEnumConstants, +askLabels}) {
    ask(search);
  }
}

/// Of a name all rows that are its definition, or all others.
template <bool kDefinitions>
void askRows(Search& search) {
  const auto linked = [](const auto& element) { return element.getIsDefined() == kDefinitions; };
  const auto typed = [](const dm::Type& type) { return type.getIncomplete() != kDefinitions; };
  const Names name = {*search.filter.name};
  addByName(search, linked, kFunctionsOf, identifiersOf(search));
  addByName(search, linked, kVariablesOf, name);
  addByName(search, typed, kTypesOf, name);
  if (kDefinitions) addByName(search, kAny, kMacrosOf, name);
}

// --- Calls.

/// Comes into memory with all functions of its name.
dm::Function* functionOf(Search& search, long long id) {
  constexpr char kName[] =
      "SELECT I.Name FROM Function F CROSS JOIN Identifier I USING (IdentifierId)"
      " WHERE F.FunctionId=?1";
  dm::CompilationDatabase& db = search.data.getCompDb();
  if (db.getFunction(id) == nullptr) {
    addByName(search, kNone, kFunctionsOf, names(search, kName, id));
  }
  return db.getFunction(id);
}

/// No cursor leads from the id of a call to its element.
void addCall(Search& search, long long id) {
  constexpr char kRow[] =
      "SELECT Path, LineNum, ColNum, IsValueUsed, CallerId, CalleeId FROM CallPoint"
      " LEFT JOIN File USING (FileId) WHERE CallPointId=?1";
  const auto [known, isNew] = search.calls.try_emplace(id);
  dm::CallPoint& call = known->second;
  const auto read = [&](sqlite3_stmt* row) {
    const auto number = [row](int column) { return sqlite3_column_int64(row, column); };
    const auto* path = reinterpret_cast<const char*>(sqlite3_column_text(row, 0));
    call = {functionOf(search, number(4)),
            functionOf(search, number(5)),
            {path == nullptr ? nullptr : &search.data.emplaceFile(path, {}, {}),
             static_cast<std::uint32_t>(number(1)), static_cast<std::uint32_t>(number(2))},
            number(3) != 0};
  };
  if (isNew) eachRow(search, kRow, id, read);
  add(search, call, kAny);
}

struct Side {
  long long (dm::FrontendDatabase::*calls)(dm::Function*, bool&);
  const char* sql;
};
constexpr Side kCaller = {&dm::FrontendDatabase::listCallPointIdFromCaller,
                          "SELECT CallPointId FROM CallPoint WHERE CallerId=?1"};
constexpr Side kCallee = {&dm::FrontendDatabase::listCallPointIdFromCallee,
                          "SELECT CallPointId FROM CallPoint WHERE CalleeId=?1"};

/// Of all rows of the name: a call leads to the declaration that stands before it. The library
/// looks a function up by its place, and so finds none without a file.
template <const Side& kSide>
void askCallsOf(Search& search) {
  std::vector<dm::Function*> functions;
  const auto collect = [&](dm::Function& function) {
    return functions.push_back(&function), false;
  };
  addByName(search, collect, kFunctionsOf, identifiersOf(search));
  for (dm::Function* function : functions) {
    if (function->getFile() == nullptr) {
      for (const long long id : numbers(search, kSide.sql, function->getId())) addCall(search, id);
      continue;
    }
    bool first = true;
    while (const long long id = (search.data.getCompDb().*kSide.calls)(function, first)) {
      addCall(search, id);
    }
  }
}

void askCalls(Search& search) {
  if (!search.filter.name) return addFrom(search, kAny, &CompilationData::findCallPoint);
  askCallsOf<kCaller>(search);
  askCallsOf<kCallee>(search);
}

/// The cursor gives a call once for each definition of its callee.
void askNoEffectCalls(Search& search) {
  addFrom(search, kAny, &CompilationData::findCallPointWithNoEffect);
}

// --- What nothing uses.

/// A forward declaration is a row of its own; uses count for it or for the type that it announces.
void addUnusedTags(Search& search) {
  constexpr char kUsedElsewhere[] =
      "SELECT T.TypeId FROM Type T CROSS JOIN Type U ON U.IdentifierId=T.IdentifierId"
      " WHERE T.RefTagCount=0 AND T.Unnamed=0 AND T.Kind IN (4,64,128,256)"
      " AND U.Kind IN (4,64,128,256)"
      " AND (T.Incomplete OR U.Incomplete) AND (U.RefCount<>0 OR U.RefTagCount<>0)";
  const auto isUnused = [used = numbers(search, kUsedElsewhere)](const dm::Type& type) {
    return type.getRefCount() == 0 && !used.contains(type.getId());
  };
  addFrom(search, isUnused, &CompilationData::findTypeFromRefTagCount, 0);
}

/// External rows of one name are one variable, which the cursor knows; internal ones are when they
/// stand in one file.
void addUnusedVariables(Search& search) {
  constexpr char kUsedElsewhere[] =
      "SELECT V.VariableId FROM Variable V CROSS JOIN Variable U ON U.IdentifierId=V.IdentifierId"
      " AND U.DeclFileId=V.DeclFileId AND U.Linkage=V.Linkage"
      " WHERE V.RefCount=0 AND V.Linkage NOT IN (0,1) AND U.RefCount<>0";
  const auto isUnused = [used = numbers(search, kUsedElsewhere)](const dm::Variable& variable) {
    return !used.contains(variable.getId());
  };
  for (const long long linkage : numbers(search, kLinkagesOfCount, 0)) {
    addFrom(search, isUnused, kVariablesOfCount, 0, static_cast<dm::LinkageKind>(linkage));
  }
}

void askUnused(Search& search) {
  const auto isAsked = [&kinds = search.filter.words](const char* kind) {
    return kinds.empty() || std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
  };
  const auto stands = [](const dm::Macro& macro) { return macro.getFile() != nullptr; };
  const auto hasNoTag = [](const dm::Type& type) { return !hasTag(type); };
  if (isAsked("macros")) addFrom(search, stands, &CompilationData::findMacroFromRefCount, 0);
  if (isAsked("types")) addFrom(search, hasNoTag, &CompilationData::findTypeFromRefCount, 0);
  if (isAsked("tags")) addUnusedTags(search);
  if (isAsked("variables")) addUnusedVariables(search);
  if (isAsked("fields")) addFrom(search, kAny, &CompilationData::findFieldFromRefCount, 0);
}

// clang-format off
constexpr Question kQuestions[] = {
    {"functions", "", "--name --min-length --ref-count --linkage --defined", askFunctions},
    {"variables", "", "--name --min-length --ref-count --linkage --defined", askVariables},
    {"types", "", "--name --min-length --ref-count --defined", askTypes},
    {"macros", "", "--name --min-length --ref-count", askMacros},
    {"fields", "", "--name --min-length --ref-count", askFields},
    {"enum-constants", "", "--name --min-length", askEnumConstants},
    {"labels", "", "--name --min-length", askLabels},
    {"calls", "", "--name", askCalls},
    {"externals", "", "--name", askExternals},
    {"unused", "macros types tags variables fields", "--sarif", askUnused},
    {"no-effect-calls", "", "--sarif", askNoEffectCalls},
    {"long-names", "", "--min-length --sarif", askLongNames},
    {"definition", "NAME", "", askRows<true>},
    {"declarations", "NAME", "", askRows<false>},
    {"callers", "NAME", "", askCallsOf<kCallee>},
    {"callees", "NAME", "", askCallsOf<kCaller>},
};
// clang-format on

}  // namespace

std::span<const Question> findQuestions() { return kQuestions; }

}  // namespace fe_db_tools
