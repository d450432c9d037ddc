#pragma once

#include <algorithm>
#include <array>

/// The indexes that a compilation database may have, for searching only: a file without them gives
/// the same answers. A merge drops them by their names and makes them again.
namespace fe_db_tools {

struct SearchIndex {
  const char* name;
  const char* table;
  const char* sql;
};

/// The indexes that look up a row by its key, as a save into a file with rows in it does.
///
/// No index may change what a query without ORDER BY answers first: several searches take the
/// first row. Each of these is therefore partial. `X IS NOT NULL` follows from `X=?`, so that a key
/// look-up uses the index, and from nothing that the whole-table reads and the searches by name,
/// count or callee ask, so that SQLite never walks the index there in place of the table. Equality
/// on all of its columns gives rows in row order. Rows without a file are not in it, and no key
/// look-up finds them.
///
/// None holds all columns of its table: enum
/// constants and labels go without the identifier, external identifiers without the kind.
// clang-format off
inline constexpr std::array<SearchIndex, 10> kKeyIndexes = {{
    {"Macro_Key_Index", "Macro",
     "CREATE INDEX Macro_Key_Index ON Macro (DeclFileId, DeclLineNum, DeclColNum, IdentifierId)"
     " WHERE DeclFileId IS NOT NULL"},
    {"Type_Key_Index", "Type",
     "CREATE INDEX Type_Key_Index ON Type (DeclFileId, DeclLineNum, DeclColNum, IdentifierId)"
     " WHERE DeclFileId IS NOT NULL"},
    {"TypeReference_Key_Index", "TypeReference",
     "CREATE INDEX TypeReference_Key_Index ON TypeReference (DeclaredType)"
     " WHERE DeclaredType IS NOT NULL"},
    {"Variable_Key_Index", "Variable",
     "CREATE INDEX Variable_Key_Index ON Variable"
     " (DeclFileId, DeclLineNum, DeclColNum, IdentifierId) WHERE DeclFileId IS NOT NULL"},
    {"Function_Key_Index", "Function",
     "CREATE INDEX Function_Key_Index ON Function"
     " (DeclFileId, DeclLineNum, DeclColNum, IdentifierId) WHERE DeclFileId IS NOT NULL"},
    {"ExternalIdentifier_Key_Index", "ExternalIdentifier",
     "CREATE INDEX ExternalIdentifier_Key_Index ON ExternalIdentifier (EntityId, IdentifierId)"
     " WHERE EntityId IS NOT NULL"},
    {"Field_Key_Index", "Field",
     "CREATE INDEX Field_Key_Index ON Field (DeclFileId, DeclLineNum, DeclColNum, IdentifierId)"
     " WHERE DeclFileId IS NOT NULL"},
    {"EnumConstant_Key_Index", "EnumConstant",
     "CREATE INDEX EnumConstant_Key_Index ON EnumConstant (DeclFileId, DeclLineNum, DeclColNum)"
     " WHERE DeclFileId IS NOT NULL"},
    {"Label_Key_Index", "Label",
     "CREATE INDEX Label_Key_Index ON Label (DeclFileId, DeclLineNum, DeclColNum)"
     " WHERE DeclFileId IS NOT NULL"},
    {"CallPoint_Key_Index", "CallPoint",
     "CREATE INDEX CallPoint_Key_Index ON CallPoint (FileId, LineNum, ColNum, CallerId)"
     " WHERE FileId IS NOT NULL"},
}};
// clang-format on

/// The indexes that the named searches of the library filter on: by name, by the length of names,
/// by count, by caller and callee; and by the name in the source, which fe_db find asks for. One
/// column each, compared by equality (the length: from a least one on), so that the rows of one
/// value come in row order, as they do without the index.
// clang-format off
inline constexpr std::array<SearchIndex, 18> kQueryIndexes = {{
    {"Identifier_Length_Index", "Identifier",
     "CREATE INDEX Identifier_Length_Index ON Identifier (length(Name))"},
    {"Macro_Identifier_Index", "Macro",
     "CREATE INDEX Macro_Identifier_Index ON Macro (IdentifierId)"},
    {"Macro_RefCount_Index", "Macro",
     "CREATE INDEX Macro_RefCount_Index ON Macro (RefCount)"},
    {"Type_Identifier_Index", "Type",
     "CREATE INDEX Type_Identifier_Index ON Type (IdentifierId)"},
    {"Type_RefCount_Index", "Type",
     "CREATE INDEX Type_RefCount_Index ON Type (RefCount)"},
    {"Type_RefTagCount_Index", "Type",
     "CREATE INDEX Type_RefTagCount_Index ON Type (RefTagCount)"},
    {"Variable_Identifier_Index", "Variable",
     "CREATE INDEX Variable_Identifier_Index ON Variable (IdentifierId)"},
    {"Variable_RefCount_Index", "Variable",
     "CREATE INDEX Variable_RefCount_Index ON Variable (RefCount)"},
    {"Function_Identifier_Index", "Function",
     "CREATE INDEX Function_Identifier_Index ON Function (IdentifierId)"},
    {"Function_RefCount_Index", "Function",
     "CREATE INDEX Function_RefCount_Index ON Function (RefCount)"},
    {"Function_SourceName_Index", "Function",
     "CREATE INDEX Function_SourceName_Index ON Function (SourceNameId)"},
    {"ExternalIdentifier_Identifier_Index", "ExternalIdentifier",
     "CREATE INDEX ExternalIdentifier_Identifier_Index ON ExternalIdentifier (IdentifierId)"},
    {"Field_Identifier_Index", "Field",
     "CREATE INDEX Field_Identifier_Index ON Field (IdentifierId)"},
    {"Field_RefCount_Index", "Field",
     "CREATE INDEX Field_RefCount_Index ON Field (RefCount)"},
    {"EnumConstant_Identifier_Index", "EnumConstant",
     "CREATE INDEX EnumConstant_Identifier_Index ON EnumConstant (IdentifierId)"},
    {"Label_Identifier_Index", "Label",
     "CREATE INDEX Label_Identifier_Index ON Label (IdentifierId)"},
    {"CallPoint_Caller_Index", "CallPoint",
     "CREATE INDEX CallPoint_Caller_Index ON CallPoint (CallerId)"},
    {"CallPoint_Callee_Index", "CallPoint",
     "CREATE INDEX CallPoint_Callee_Index ON CallPoint (CalleeId)"},
}};
// clang-format on

/// Tells SQLite's planner of a small table of names. Knowing nothing, it takes the conditions on
/// types for more selective than a least length, and walks all types to find the long names among
/// them. Gone with the index.
inline constexpr char kLengthIndexHint[] =
    "ANALYZE Identifier_Length_Index;"
    "DELETE FROM sqlite_stat1 WHERE idx = 'Identifier_Length_Index';"
    "INSERT INTO sqlite_stat1 VALUES ('Identifier', 'Identifier_Length_Index', '1000 10')";

/// Calls visit(index) for each index of either list until one answers false; true when none does.
template <class Visit>
bool everySearchIndex(Visit&& visit) {
  return std::all_of(kKeyIndexes.begin(), kKeyIndexes.end(), visit) &&
         std::all_of(kQueryIndexes.begin(), kQueryIndexes.end(), visit);
}

/// Calls visit(index) for each index of either list.
template <class Visit>
void eachSearchIndex(Visit&& visit) {
  everySearchIndex([&](const SearchIndex& index) { return visit(index), true; });
}

}  // namespace fe_db_tools
