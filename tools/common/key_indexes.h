#pragma once

#include <array>

namespace fe_db_tools {

struct KeyIndex {
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
/// A merge drops these by name and makes them again. None holds all columns of its table: enum
/// constants and labels go without the identifier, external identifiers without the kind.
// clang-format off
inline constexpr std::array<KeyIndex, 10> kKeyIndexes = {{
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

}  // namespace fe_db_tools
