// The plain way: what has been merged is in tables of an in-memory database, with their keys
// as constraints. Each source is attached in turn; its rows go in by INSERT ... ON CONFLICT, and a
// table of its ids and what they became leads its references to them. A missing file is 0 until the
// result is written, as NULL would not be equal to itself.
//
// Not handled: a source that has two rows of one key. They would count twice, where a merge counts
// them once. Files of one unit have none.
#include <string>

#include "alternatives.h"
#include "raw_sqlite.h"

namespace fe_db_benchmarks {
namespace {

/// Tables that others refer to have their ids, the others no more than their keys. Seen counts the
/// sources that have the fact, for its name. Columns that are searched say INTEGER: an index on one
/// without a type is of no use to a comparison with one that has it. They list their columns
/// themselves on purpose: a comparison shares nothing with the library.
constexpr char kTables[] = R"sql(
PRAGMA journal_mode = OFF;
CREATE TABLE File (FileId INTEGER PRIMARY KEY, Path TEXT UNIQUE, Kind, Lang, Huge);
CREATE TABLE Identifier (IdentifierId INTEGER PRIMARY KEY, Name TEXT UNIQUE, Count, Kind);
CREATE TABLE Function (
  FunctionId INTEGER PRIMARY KEY, IdentifierId INTEGER, SourceNameId, DeclFileId INTEGER,
  DeclLineNum INTEGER, DeclColNum INTEGER, isDefined, isSpecial, Effect, Linkage,
  UNIQUE (IdentifierId, DeclFileId, DeclLineNum, DeclColNum));
CREATE TABLE CallPoint (
  FileId, LineNum, ColNum, IsValueUsed, CallerId, CalleeId,
  PRIMARY KEY (CallerId, FileId, LineNum, ColNum)) WITHOUT ROWID;
CREATE TABLE EnumConstant (
  IdentifierId, DeclFileId, DeclLineNum, DeclColNum, Seen,
  PRIMARY KEY (IdentifierId, DeclFileId, DeclLineNum, DeclColNum)) WITHOUT ROWID;
CREATE TABLE Type (
  TypeId INTEGER PRIMARY KEY, IdentifierId INTEGER, Unnamed, Local, Incomplete, DeclFileId INTEGER,
  DeclLineNum INTEGER, DeclColNum INTEGER, Kind, RefCount, RefTagCount,
  UNIQUE (IdentifierId, DeclFileId, DeclLineNum, DeclColNum));
CREATE TABLE Field (
  IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount, Seen,
  PRIMARY KEY (IdentifierId, DeclFileId, DeclLineNum, DeclColNum)) WITHOUT ROWID;
CREATE TABLE Label (
  IdentifierId, DeclFileId, DeclLineNum, DeclColNum, Seen,
  PRIMARY KEY (IdentifierId, DeclFileId, DeclLineNum, DeclColNum)) WITHOUT ROWID;
CREATE TABLE Macro (
  IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount, Value, ValueIsSigned, IsObjectLike,
  IsVariadic, IsCommandLineDefinition, IsPredefined, Text,
  PRIMARY KEY (IdentifierId, DeclFileId, DeclLineNum, DeclColNum)) WITHOUT ROWID;
CREATE TABLE TypeReference (DeclaredType INTEGER PRIMARY KEY, ReferencedType);
CREATE TABLE Variable (
  VariableId INTEGER PRIMARY KEY, IdentifierId INTEGER, DeclFileId INTEGER, DeclLineNum INTEGER,
  DeclColNum INTEGER, TypeId, isDefined, Linkage, RefCount,
  UNIQUE (IdentifierId, DeclFileId, DeclLineNum, DeclColNum));
CREATE TABLE ExternalIdentifier (
  IdentifierId, Kind, EntityId, PRIMARY KEY (IdentifierId, Kind, EntityId)) WITHOUT ROWID;

-- What the ids of the attached source became.
CREATE TABLE FileMap (Old INTEGER PRIMARY KEY, New INTEGER);
CREATE TABLE IdentifierMap (Old INTEGER PRIMARY KEY, New INTEGER);
CREATE TABLE FunctionMap (Old INTEGER PRIMARY KEY, New INTEGER);
CREATE TABLE TypeMap (Old INTEGER PRIMARY KEY, New INTEGER);
CREATE TABLE VariableMap (Old INTEGER PRIMARY KEY, New INTEGER);
)sql";

/// CROSS JOIN: row by row of the source, whatever the planner thinks of tables that it knows no
/// size of. WHERE true: without it ON CONFLICT would read as a condition of the join.
constexpr char kFold[] = R"sql(
BEGIN;

INSERT INTO File SELECT NULL, Path, Kind, Lang, Huge FROM source.File WHERE true
ON CONFLICT DO NOTHING;
DELETE FROM FileMap;
INSERT INTO FileMap SELECT S.FileId, F.FileId FROM source.File S CROSS JOIN File F USING (Path);

INSERT INTO Identifier SELECT NULL, Name, Count, Kind FROM source.Identifier WHERE true
ON CONFLICT (Name) DO UPDATE SET Count = Count + excluded.Count, Kind = Kind | excluded.Kind;
DELETE FROM IdentifierMap;
INSERT INTO IdentifierMap
SELECT S.IdentifierId, I.IdentifierId FROM source.Identifier S CROSS JOIN Identifier I USING (Name);

INSERT INTO Function
SELECT NULL, I.New, N.New, ifnull(F.New, 0), DeclLineNum, DeclColNum, isDefined, isSpecial, Effect,
  Linkage
FROM source.Function S CROSS JOIN IdentifierMap I ON I.Old = S.IdentifierId
CROSS JOIN IdentifierMap N ON N.Old = S.SourceNameId LEFT JOIN FileMap F ON F.Old = S.DeclFileId
WHERE true ON CONFLICT DO NOTHING;
DELETE FROM FunctionMap;
INSERT INTO FunctionMap
SELECT S.FunctionId, T.FunctionId
FROM source.Function S CROSS JOIN IdentifierMap I ON I.Old = S.IdentifierId
LEFT JOIN FileMap F ON F.Old = S.DeclFileId
CROSS JOIN Function T ON T.IdentifierId = I.New AND T.DeclFileId = ifnull(F.New, 0) AND
  T.DeclLineNum = S.DeclLineNum AND T.DeclColNum = S.DeclColNum;

INSERT INTO CallPoint
SELECT ifnull(F.New, 0), LineNum, ColNum, IsValueUsed, A.New, B.New
FROM source.CallPoint S CROSS JOIN FunctionMap A ON A.Old = S.CallerId
CROSS JOIN FunctionMap B ON B.Old = S.CalleeId LEFT JOIN FileMap F ON F.Old = S.FileId
WHERE true ON CONFLICT DO NOTHING;

INSERT INTO EnumConstant
SELECT I.New, ifnull(F.New, 0), DeclLineNum, DeclColNum, 1
FROM source.EnumConstant S CROSS JOIN IdentifierMap I ON I.Old = S.IdentifierId
LEFT JOIN FileMap F ON F.Old = S.DeclFileId
WHERE true ON CONFLICT DO UPDATE SET Seen = Seen + 1;

INSERT INTO Type
SELECT NULL, I.New, Unnamed, Local, Incomplete, ifnull(F.New, 0), DeclLineNum, DeclColNum, Kind,
  RefCount, RefTagCount
FROM source.Type S CROSS JOIN IdentifierMap I ON I.Old = S.IdentifierId
LEFT JOIN FileMap F ON F.Old = S.DeclFileId
WHERE true ON CONFLICT (IdentifierId, DeclFileId, DeclLineNum, DeclColNum) DO UPDATE
SET Unnamed = Unnamed | excluded.Unnamed, Local = Local | excluded.Local,
  Incomplete = Incomplete | excluded.Incomplete, RefCount = RefCount + excluded.RefCount,
  RefTagCount = RefTagCount + excluded.RefTagCount;
DELETE FROM TypeMap;
INSERT INTO TypeMap
SELECT S.TypeId, T.TypeId
FROM source.Type S CROSS JOIN IdentifierMap I ON I.Old = S.IdentifierId
LEFT JOIN FileMap F ON F.Old = S.DeclFileId
CROSS JOIN Type T ON T.IdentifierId = I.New AND T.DeclFileId = ifnull(F.New, 0) AND
  T.DeclLineNum = S.DeclLineNum AND T.DeclColNum = S.DeclColNum;

INSERT INTO Field
SELECT I.New, ifnull(F.New, 0), DeclLineNum, DeclColNum, RefCount, 1
FROM source.Field S CROSS JOIN IdentifierMap I ON I.Old = S.IdentifierId
LEFT JOIN FileMap F ON F.Old = S.DeclFileId
WHERE true ON CONFLICT DO UPDATE SET RefCount = RefCount + excluded.RefCount, Seen = Seen + 1;

INSERT INTO Label
SELECT I.New, ifnull(F.New, 0), DeclLineNum, DeclColNum, 1
FROM source.Label S CROSS JOIN IdentifierMap I ON I.Old = S.IdentifierId
LEFT JOIN FileMap F ON F.Old = S.DeclFileId
WHERE true ON CONFLICT DO UPDATE SET Seen = Seen + 1;

INSERT INTO Macro
SELECT I.New, ifnull(F.New, 0), DeclLineNum, DeclColNum, RefCount, Value, ValueIsSigned,
  IsObjectLike, IsVariadic, IsCommandLineDefinition, IsPredefined, Text
FROM source.Macro S CROSS JOIN IdentifierMap I ON I.Old = S.IdentifierId
LEFT JOIN FileMap F ON F.Old = S.DeclFileId
WHERE true ON CONFLICT DO UPDATE SET RefCount = RefCount + excluded.RefCount,
  ValueIsSigned = iif(Value IS NULL, excluded.ValueIsSigned, ValueIsSigned),
  Value = ifnull(Value, excluded.Value)
WHERE excluded.RefCount <> 0 OR Value IS NULL AND excluded.Value IS NOT NULL;

INSERT INTO TypeReference
SELECT D.New, R.New
FROM source.TypeReference S CROSS JOIN TypeMap D ON D.Old = S.DeclaredType
LEFT JOIN TypeMap R ON R.Old = S.ReferencedType
WHERE true ON CONFLICT DO NOTHING;

INSERT INTO Variable
SELECT NULL, I.New, F.New, DeclLineNum, DeclColNum, T.New, isDefined, Linkage, RefCount
FROM source.Variable S CROSS JOIN IdentifierMap I ON I.Old = S.IdentifierId
CROSS JOIN FileMap F ON F.Old = S.DeclFileId LEFT JOIN TypeMap T ON T.Old = S.TypeId
WHERE true ON CONFLICT (IdentifierId, DeclFileId, DeclLineNum, DeclColNum) DO UPDATE
SET RefCount = RefCount + excluded.RefCount;
DELETE FROM VariableMap;
INSERT INTO VariableMap
SELECT S.VariableId, T.VariableId
FROM source.Variable S CROSS JOIN IdentifierMap I ON I.Old = S.IdentifierId
CROSS JOIN FileMap F ON F.Old = S.DeclFileId
CROSS JOIN Variable T ON T.IdentifierId = I.New AND T.DeclFileId = F.New AND
  T.DeclLineNum = S.DeclLineNum AND T.DeclColNum = S.DeclColNum;

INSERT INTO ExternalIdentifier
SELECT I.New, S.Kind, ifnull(iif(S.Kind = 0, V.New, C.New), 0)
FROM source.ExternalIdentifier S CROSS JOIN IdentifierMap I ON I.Old = S.IdentifierId
LEFT JOIN VariableMap V ON S.Kind = 0 AND V.Old = S.EntityId
LEFT JOIN FunctionMap C ON S.Kind = 1 AND C.Old = S.EntityId
WHERE true ON CONFLICT DO NOTHING;

COMMIT;
)sql";

/// What counts for the names, once at the end: 16 external, 32 enum constant, 64 field, 128 label.
constexpr char kCountNames[] = R"sql(
UPDATE Identifier SET Kind = Kind | 16
WHERE IdentifierId IN (SELECT IdentifierId FROM ExternalIdentifier);
UPDATE Identifier SET Kind = Kind | Bit, Count = Count + Sum
FROM (SELECT IdentifierId AS Id, 32 AS Bit, sum(Seen) AS Sum FROM EnumConstant GROUP BY 1)
WHERE IdentifierId = Id;
UPDATE Identifier SET Kind = Kind | Bit, Count = Count + Sum
FROM (SELECT IdentifierId AS Id, 64 AS Bit, sum(Seen) AS Sum FROM Field GROUP BY 1)
WHERE IdentifierId = Id;
UPDATE Identifier SET Kind = Kind | Bit, Count = Count + Sum
FROM (SELECT IdentifierId AS Id, 128 AS Bit, sum(Seen) AS Sum FROM Label GROUP BY 1)
WHERE IdentifierId = Id;
)sql";

/// Counts have 32 bits; one from 2^31 on is stored as a negative number.
constexpr char kWrite[] = R"sql(
PRAGMA target.cache_size = -65536;
BEGIN IMMEDIATE;
INSERT INTO target.File (FileId, Path, Kind, Lang, Huge)
SELECT FileId, Path, Kind, Lang, Huge FROM main.File;
INSERT INTO target.Identifier (IdentifierId, Name, Count, Kind)
SELECT IdentifierId, Name, (Count + 0x80000000 & 0xFFFFFFFF) - 0x80000000, Kind
FROM main.Identifier;
INSERT INTO target.Function (FunctionId, IdentifierId, SourceNameId, DeclFileId, DeclLineNum,
  DeclColNum, isDefined, isSpecial, Effect, Linkage, RefCount)
SELECT FunctionId, IdentifierId, SourceNameId, nullif(DeclFileId, 0), DeclLineNum, DeclColNum,
  isDefined, isSpecial, Effect, Linkage, 0 FROM main.Function;
INSERT INTO target.CallPoint (FileId, LineNum, ColNum, IsValueUsed, CallerId, CalleeId)
SELECT nullif(FileId, 0), LineNum, ColNum, IsValueUsed, CallerId, CalleeId FROM main.CallPoint;
INSERT INTO target.EnumConstant (IdentifierId, DeclFileId, DeclLineNum, DeclColNum)
SELECT IdentifierId, nullif(DeclFileId, 0), DeclLineNum, DeclColNum FROM main.EnumConstant;
INSERT INTO target.Type (TypeId, IdentifierId, Unnamed, Local, Incomplete, DeclFileId, DeclLineNum,
  DeclColNum, Kind, RefCount, RefTagCount)
SELECT TypeId, IdentifierId, Unnamed, Local, Incomplete, nullif(DeclFileId, 0), DeclLineNum,
  DeclColNum, Kind, (RefCount + 0x80000000 & 0xFFFFFFFF) - 0x80000000,
  (RefTagCount + 0x80000000 & 0xFFFFFFFF) - 0x80000000 FROM main.Type;
INSERT INTO target.Field (IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount)
SELECT IdentifierId, nullif(DeclFileId, 0), DeclLineNum, DeclColNum,
  (RefCount + 0x80000000 & 0xFFFFFFFF) - 0x80000000 FROM main.Field;
INSERT INTO target.Label (IdentifierId, DeclFileId, DeclLineNum, DeclColNum)
SELECT IdentifierId, nullif(DeclFileId, 0), DeclLineNum, DeclColNum FROM main.Label;
INSERT INTO target.Macro (IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount, Value,
  ValueIsSigned, IsObjectLike, IsVariadic, IsCommandLineDefinition, IsPredefined, Text)
SELECT IdentifierId, nullif(DeclFileId, 0), DeclLineNum, DeclColNum,
  (RefCount + 0x80000000 & 0xFFFFFFFF) - 0x80000000, Value, ValueIsSigned, IsObjectLike, IsVariadic,
  IsCommandLineDefinition, IsPredefined, Text FROM main.Macro;
INSERT INTO target.TypeReference (DeclaredType, ReferencedType)
SELECT DeclaredType, ReferencedType FROM main.TypeReference;
INSERT INTO target.Variable (VariableId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum, TypeId,
  isDefined, Linkage, RefCount)
SELECT VariableId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum, TypeId, isDefined, Linkage,
  (RefCount + 0x80000000 & 0xFFFFFFFF) - 0x80000000 FROM main.Variable;
INSERT INTO target.ExternalIdentifier (IdentifierId, Kind, EntityId)
SELECT IdentifierId, Kind, EntityId FROM main.ExternalIdentifier;
COMMIT;
)sql";

void attach(Connection& connection, const std::string& path, const std::string& name) {
  Statement statement(connection, "ATTACH ? AS " + name);
  statement.bind(1, path);
  statement.run();
}

}  // namespace

void mergeBySql(const std::vector<std::string>& sources, const std::string& target) {
  Connection merged(":memory:");
  merged.execute(kTables);
  for (const std::string& source : sources) {
    attach(merged, source, "source");
    merged.execute(kFold);
    merged.execute("DETACH source");
  }
  merged.execute(kCountNames);
  attach(merged, target, "target");
  merged.execute(kWrite);
}

}  // namespace fe_db_benchmarks
