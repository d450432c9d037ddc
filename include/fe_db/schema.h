#pragma once

#include <array>

/// The schema texts that every database of this library has. SQLite keeps the texts of tables,
/// indexes and views as they are here, so a reader of a file sees them: change nothing but the
/// format itself.
namespace orvalesca::databases_merger::schema {

inline constexpr char kPageSize[] = "PRAGMA page_size=32768";

/// The six tables of both kinds of database.
inline constexpr std::array<const char*, 6> kSharedTables = {
    "CREATE TABLE IF NOT EXISTS File (FileId INTEGER PRIMARY KEY AUTOINCREMENT, Path "
    "VARCHAR(32768) UNIQUE, Kind INTEGER, Lang INTEGER, Huge INTEGER)",
    "CREATE TABLE IF NOT EXISTS Identifier (IdentifierId INTEGER PRIMARY KEY AUTOINCREMENT, Name "
    "VARCHAR(1024) UNIQUE, Count INTEGER, Kind INTEGER)",
    "CREATE TABLE IF NOT EXISTS Macro (MacroId INTEGER PRIMARY KEY AUTOINCREMENT, IdentifierId "
    "INTEGER, DeclFileId INTEGER, DeclLineNum INTEGER, DeclColNum INTEGER, RefCount INTEGER, Value "
    "INTEGER, ValueIsSigned BOOL, IsObjectLike BOOL, IsVariadic BOOL, IsCommandLineDefinition "
    "BOOL, IsPredefined BOOL, Text TEXT)",
    "CREATE TABLE IF NOT EXISTS MacroInvocation (MacroInvocationId INTEGER PRIMARY KEY "
    "AUTOINCREMENT, MacroId INTEGER, FileId INTEGER, LineNum INTEGER, ColNum INTEGER, ppFileId "
    "INTEGER, ppLineNum INTEGER, ppStartColNum INTEGER, ppEndColNum INTEGER)",
    "CREATE TABLE IF NOT EXISTS MacroInvocationCodeOrigin ( FileId INTEGER, LineNum INTEGER, "
    "ColNum INTEGER, MacroInvocationId INTEGER, OffsetColumnInInvocation INTEGER, "
    "EndOffsetColumnInInvocation INTEGER, IsParameter BOOL, TokenString Varchar(1024))",
    "CREATE TABLE IF NOT EXISTS MacroExpansion ( MacroCall Varchar(1024), ExpandedCode "
    "VARCHAR(32768), FileId INTEGER, LineNum INTEGER, ColNum INTEGER, PpLineNum INTEGER, PpColNum "
    "INTEGER)",
};

/// Indexes and views of a preprocessing database.
inline constexpr std::array<const char*, 5> kPreprocessingIndexesAndViews = {
    "CREATE INDEX Identifier_Index ON Identifier (Name)",
    "CREATE INDEX Macro_Index ON Macro (IdentifierId, DeclFileId)",
    "CREATE VIEW IF NOT EXISTS MacroView AS   SELECT Macro.MacroId, File.Path AS File,         "
    "Macro.DeclLineNum, Macro.DeclColNum,         Identifier.Name AS Macro, Macro.RefCount,        "
    " Macro.Value, Macro.ValueIsSigned,          Macro.IsObjectLike, Macro.IsVariadic,          "
    "Macro.IsCommandLineDefinition,          Macro.IsPredefined, Macro.Text  FROM Macro   LEFT "
    "JOIN Identifier ON Identifier.IdentifierId=Macro.IdentifierId   LEFT JOIN File ON "
    "File.FileId=Macro.DeclFileId",
    "CREATE VIEW IF NOT EXISTS MacroInvocationView AS   SELECT MacroInvocation.MacroInvocationId, "
    "File.Path AS File,         MacroInvocation.LineNum, MacroInvocation.ColNum,         "
    "Identifier.Name AS Macro, MacroInvocation.ppLineNum,         MacroInvocation.ppStartColNum, "
    "MacroInvocation.ppEndColNum   FROM MacroInvocation   LEFT JOIN Macro ON "
    "Macro.MacroId=MacroInvocation.MacroId   LEFT JOIN Identifier ON "
    "Identifier.IdentifierId=Macro.IdentifierId   LEFT JOIN File ON "
    "File.FileId=MacroInvocation.FileId",
    "CREATE VIEW IF NOT EXISTS MacroInvocationCodeOriginView AS SELECT IFNULL(File.Path, 'command "
    "line(col=1) or predefined macro(col=3)') AS TokenFile, MacroInvocationCodeOrigin.LineNum AS "
    "TokenLineNum, MacroInvocationCodeOrigin.ColNum AS TokenColNum, "
    "MacroInvocationCodeOrigin.OffsetColumnInInvocation + macroInvocationView.ppStartColnum AS "
    "TokenStartInPp, MacroInvocationCodeOrigin.EndOffsetColumnInInvocation   + "
    "macroinvocationview.ppStartColnum AS TokenEndInPp, MacroInvocationCodeOrigin.IsParameter, "
    "MacroInvocationCodeOrigin.TokenString, macroinvocationview.* FROM      macroinvocationview "
    "INNER JOIN MacroInvocationCodeOrigin ON        "
    "MacroInvocationCodeOrigin.macroinvocationid=macroinvocationview.macroinvocationid LEFT JOIN "
    "File ON File.FileId=MacroInvocationCodeOrigin.FileId",
};

}  // namespace orvalesca::databases_merger::schema
