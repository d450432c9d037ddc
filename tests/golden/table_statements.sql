File add: INSERT INTO File (Path, Kind, Lang, Huge) VALUES (?, ?, ?, ?)
File update: UPDATE File SET Kind=?, Lang=?, Huge=? WHERE FileId=?
File get_id: SELECT FileId, Kind, Lang, Huge FROM File WHERE Path=?
File get_from_id: SELECT Path, Kind, Lang, Huge FROM File WHERE FileId=?
File list_id: SELECT FileId FROM File
File list_all: SELECT FileId, Path, Kind, Lang, Huge FROM File
File max_id: SELECT MAX(FileId) FROM File
File delete_all: DELETE FROM File
Identifier add: INSERT INTO Identifier (Name, Kind, Count) VALUES (?, ?, ?)
Identifier update: UPDATE Identifier SET Kind=?, Count=? WHERE IdentifierId=?
Identifier get_id: SELECT IdentifierId, Kind, Count FROM Identifier WHERE Name=?
Identifier get_from_id: SELECT Name, Kind, Count FROM Identifier WHERE IdentifierId=?
Identifier list_id: SELECT IdentifierId FROM Identifier
Identifier list_all: SELECT IdentifierId, Name, Kind, Count FROM Identifier
Identifier max_id: SELECT MAX(IdentifierId) FROM Identifier
Identifier delete_all: DELETE FROM Identifier
Macro add: INSERT INTO Macro (IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount, Value, ValueIsSigned, IsObjectLike, IsVariadic, IsCommandLineDefinition, IsPredefined, Text) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)
Macro update: UPDATE Macro SET RefCount=?, Value=?, ValueIsSigned=?, IsObjectLike=?, IsVariadic=?, IsCommandLineDefinition=?, IsPredefined=?, Text=? WHERE MacroId=?
Macro get_id: SELECT MacroId, RefCount, Value, ValueIsSigned, IsObjectLike, IsVariadic, IsCommandLineDefinition, IsPredefined, Text FROM Macro WHERE IdentifierId=? AND DeclFileId=? AND DeclLineNum=? AND DeclColNum=?
Macro get_from_id: SELECT IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount, Value, ValueIsSigned, IsObjectLike, IsVariadic, IsCommandLineDefinition, IsPredefined, Text FROM Macro WHERE MacroId=?
Macro list_id: SELECT MacroId FROM Macro
Macro list_all: SELECT MacroId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount, Value, ValueIsSigned, IsObjectLike, IsVariadic, IsCommandLineDefinition, IsPredefined, Text FROM Macro
Macro max_id: SELECT MAX(MacroId) FROM Macro
Macro delete_all: DELETE FROM Macro
MacroInvocation add: INSERT INTO MacroInvocation (MacroId, FileId, LineNum, ColNum, ppLineNum, ppStartColNum, ppEndColNum) VALUES (?, ?, ?, ?, ?, ?, ?)
MacroInvocation update: UPDATE MacroInvocation SET FileId=?, LineNum=?, ColNum=?, ppEndColNum=? WHERE MacroInvocationId=?
MacroInvocation get_id: SELECT MacroInvocationId, FileId, LineNum, ColNum, ppEndColNum FROM MacroInvocation WHERE MacroId=? AND ppLineNum=? AND ppStartColNum=?
MacroInvocation get_from_id: SELECT MacroId, FileId, LineNum, ColNum, ppLineNum, ppStartColNum, ppEndColNum FROM MacroInvocation WHERE MacroInvocationId=?
MacroInvocation list_id: SELECT MacroInvocationId FROM MacroInvocation
MacroInvocation list_all: SELECT MacroInvocationId, MacroId, FileId, LineNum, ColNum, ppLineNum, ppStartColNum, ppEndColNum FROM MacroInvocation
MacroInvocation max_id: SELECT MAX(MacroInvocationId) FROM MacroInvocation
MacroInvocation delete_all: DELETE FROM MacroInvocation
MacroInvocationCodeOrigin add: INSERT INTO MacroInvocationCodeOrigin (FileId, LineNum, ColNum, MacroInvocationId, OffsetColumnInInvocation, EndOffsetColumnInInvocation, IsParameter, TokenString) VALUES (?, ?, ?, ?, ?, ?, ?, ?)
MacroInvocationCodeOrigin update: UPDATE MacroInvocationCodeOrigin SET FileId=?, LineNum=?, ColNum=?, MacroInvocationId=?, OffsetColumnInInvocation=?, EndOffsetColumnInInvocation=?, IsParameter=?, TokenString=? WHERE rowid=?
MacroInvocationCodeOrigin get_id: SELECT rowid, FileId, LineNum, ColNum, MacroInvocationId, OffsetColumnInInvocation, EndOffsetColumnInInvocation, IsParameter, TokenString FROM MacroInvocationCodeOrigin WHERE 
MacroInvocationCodeOrigin get_from_id: SELECT FileId, LineNum, ColNum, MacroInvocationId, OffsetColumnInInvocation, EndOffsetColumnInInvocation, IsParameter, TokenString FROM MacroInvocationCodeOrigin WHERE rowid=?
MacroInvocationCodeOrigin list_id: SELECT rowid FROM MacroInvocationCodeOrigin
MacroInvocationCodeOrigin list_all: SELECT rowid, FileId, LineNum, ColNum, MacroInvocationId, OffsetColumnInInvocation, EndOffsetColumnInInvocation, IsParameter, TokenString FROM MacroInvocationCodeOrigin
MacroInvocationCodeOrigin max_id: SELECT MAX(rowid) FROM MacroInvocationCodeOrigin
MacroInvocationCodeOrigin delete_all: DELETE FROM MacroInvocationCodeOrigin
MacroExpansion add: INSERT INTO MacroExpansion (FileId, LineNum, ColNum, ppLineNum, ppColNum, ExpandedCode, MacroCall) VALUES (?, ?, ?, ?, ?, ?, ?)
MacroExpansion update: UPDATE MacroExpansion SET FileId=?, LineNum=?, ColNum=?, ppLineNum=?, ppColNum=?, ExpandedCode=?, MacroCall=? WHERE rowid=?
MacroExpansion get_id: SELECT rowid, FileId, LineNum, ColNum, ppLineNum, ppColNum, ExpandedCode, MacroCall FROM MacroExpansion WHERE 
MacroExpansion get_from_id: SELECT FileId, LineNum, ColNum, ppLineNum, ppColNum, ExpandedCode, MacroCall FROM MacroExpansion WHERE rowid=?
MacroExpansion list_id: SELECT rowid FROM MacroExpansion
MacroExpansion list_all: SELECT rowid, FileId, LineNum, ColNum, ppLineNum, ppColNum, ExpandedCode, MacroCall FROM MacroExpansion
MacroExpansion max_id: SELECT MAX(rowid) FROM MacroExpansion
MacroExpansion delete_all: DELETE FROM MacroExpansion
Type add: INSERT INTO Type (IdentifierId, Unnamed, Local, Incomplete, DeclFileId, DeclLineNum, DeclColNum, Kind, RefCount, RefTagCount) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)
Type update: UPDATE Type SET Unnamed=?, Local=?, Incomplete=?, RefCount=?, RefTagCount=? WHERE TypeId=?
Type get_id: SELECT TypeId, Unnamed, Local, Incomplete, RefCount, RefTagCount FROM Type WHERE IdentifierId=? AND DeclFileId=? AND DeclLineNum=? AND DeclColNum=? AND Kind=?
Type get_from_id: SELECT IdentifierId, Unnamed, Local, Incomplete, DeclFileId, DeclLineNum, DeclColNum, Kind, RefCount, RefTagCount FROM Type WHERE TypeId=?
Type list_id: SELECT TypeId FROM Type
Type list_all: SELECT TypeId, IdentifierId, Unnamed, Local, Incomplete, DeclFileId, DeclLineNum, DeclColNum, Kind, RefCount, RefTagCount FROM Type
Type max_id: SELECT MAX(TypeId) FROM Type
Type delete_all: DELETE FROM Type
TypeReference add: INSERT INTO TypeReference (DeclaredType, ReferencedType) VALUES (?, ?)
TypeReference update: UPDATE TypeReference SET ReferencedType=? WHERE rowid=?
TypeReference get_id: SELECT rowid, ReferencedType FROM TypeReference WHERE DeclaredType=?
TypeReference get_from_id: SELECT DeclaredType, ReferencedType FROM TypeReference WHERE rowid=?
TypeReference list_id: SELECT rowid FROM TypeReference
TypeReference list_all: SELECT rowid, DeclaredType, ReferencedType FROM TypeReference
TypeReference max_id: SELECT MAX(rowid) FROM TypeReference
TypeReference delete_all: DELETE FROM TypeReference
Variable add: INSERT INTO Variable (IdentifierId, DeclFileId, DeclLineNum, DeclColNum, TypeId, isDefined, Linkage, RefCount) VALUES (?, ?, ?, ?, ?, ?, ?, ?)
Variable update: UPDATE Variable SET TypeId=?, isDefined=?, Linkage=?, RefCount=? WHERE VariableId=?
Variable get_id: SELECT VariableId, TypeId, isDefined, Linkage, RefCount FROM Variable WHERE IdentifierId=? AND DeclFileId=? AND DeclLineNum=? AND DeclColNum=?
Variable get_from_id: SELECT IdentifierId, DeclFileId, DeclLineNum, DeclColNum, TypeId, isDefined, Linkage, RefCount FROM Variable WHERE VariableId=?
Variable list_id: SELECT VariableId FROM Variable
Variable list_all: SELECT VariableId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum, TypeId, isDefined, Linkage, RefCount FROM Variable
Variable max_id: SELECT MAX(VariableId) FROM Variable
Variable delete_all: DELETE FROM Variable
Function add: INSERT INTO Function (IdentifierId, SourceNameId, DeclFileId, DeclLineNum, DeclColNum, isDefined, isSpecial, Effect, Linkage, RefCount) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)
Function update: UPDATE Function SET SourceNameId=?, isDefined=?, isSpecial=?, Effect=?, Linkage=?, RefCount=? WHERE FunctionId=?
Function get_id: SELECT FunctionId, SourceNameId, isDefined, isSpecial, Effect, Linkage, RefCount FROM Function WHERE IdentifierId=? AND DeclFileId=? AND DeclLineNum=? AND DeclColNum=?
Function get_from_id: SELECT IdentifierId, SourceNameId, DeclFileId, DeclLineNum, DeclColNum, isDefined, isSpecial, Effect, Linkage, RefCount FROM Function WHERE FunctionId=?
Function list_id: SELECT FunctionId FROM Function
Function list_all: SELECT FunctionId, IdentifierId, SourceNameId, DeclFileId, DeclLineNum, DeclColNum, isDefined, isSpecial, Effect, Linkage, RefCount FROM Function
Function max_id: SELECT MAX(FunctionId) FROM Function
Function delete_all: DELETE FROM Function
ExternalIdentifier add: INSERT INTO ExternalIdentifier (IdentifierId, Kind, EntityId) VALUES (?, ?, ?)
ExternalIdentifier update: UPDATE ExternalIdentifier SET  WHERE ExternalIdentifierId=?
ExternalIdentifier get_id: SELECT ExternalIdentifierId FROM ExternalIdentifier WHERE IdentifierId=? AND Kind=? AND EntityId=?
ExternalIdentifier get_from_id: SELECT IdentifierId, Kind, EntityId FROM ExternalIdentifier WHERE ExternalIdentifierId=?
ExternalIdentifier list_id: SELECT ExternalIdentifierId FROM ExternalIdentifier
ExternalIdentifier list_all: SELECT ExternalIdentifierId, IdentifierId, Kind, EntityId FROM ExternalIdentifier
ExternalIdentifier max_id: SELECT MAX(ExternalIdentifierId) FROM ExternalIdentifier
ExternalIdentifier delete_all: DELETE FROM ExternalIdentifier
Field add: INSERT INTO Field (IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount) VALUES (?, ?, ?, ?, ?)
Field update: UPDATE Field SET RefCount=? WHERE FieldId=?
Field get_id: SELECT FieldId, RefCount FROM Field WHERE IdentifierId=? AND DeclFileId=? AND DeclLineNum=? AND DeclColNum=?
Field get_from_id: SELECT IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount FROM Field WHERE FieldId=?
Field list_id: SELECT FieldId FROM Field
Field list_all: SELECT FieldId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum, RefCount FROM Field
Field max_id: SELECT MAX(FieldId) FROM Field
Field delete_all: DELETE FROM Field
EnumConstant add: INSERT INTO EnumConstant (IdentifierId, DeclFileId, DeclLineNum, DeclColNum) VALUES (?, ?, ?, ?)
EnumConstant update: UPDATE EnumConstant SET  WHERE EnumConstantId=?
EnumConstant get_id: SELECT EnumConstantId FROM EnumConstant WHERE IdentifierId=? AND DeclFileId=? AND DeclLineNum=? AND DeclColNum=?
EnumConstant get_from_id: SELECT IdentifierId, DeclFileId, DeclLineNum, DeclColNum FROM EnumConstant WHERE EnumConstantId=?
EnumConstant list_id: SELECT EnumConstantId FROM EnumConstant
EnumConstant list_all: SELECT EnumConstantId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum FROM EnumConstant
EnumConstant max_id: SELECT MAX(EnumConstantId) FROM EnumConstant
EnumConstant delete_all: DELETE FROM EnumConstant
Label add: INSERT INTO Label (IdentifierId, DeclFileId, DeclLineNum, DeclColNum) VALUES (?, ?, ?, ?)
Label update: UPDATE Label SET  WHERE LabelId=?
Label get_id: SELECT LabelId FROM Label WHERE IdentifierId=? AND DeclFileId=? AND DeclLineNum=? AND DeclColNum=?
Label get_from_id: SELECT IdentifierId, DeclFileId, DeclLineNum, DeclColNum FROM Label WHERE LabelId=?
Label list_id: SELECT LabelId FROM Label
Label list_all: SELECT LabelId, IdentifierId, DeclFileId, DeclLineNum, DeclColNum FROM Label
Label max_id: SELECT MAX(LabelId) FROM Label
Label delete_all: DELETE FROM Label
CallPoint add: INSERT INTO CallPoint (FileId, LineNum, ColNum, IsValueUsed, CallerId, CalleeId) VALUES (?, ?, ?, ?, ?, ?)
CallPoint update: UPDATE CallPoint SET IsValueUsed=?, CalleeId=? WHERE CallPointId=?
CallPoint get_id: SELECT CallPointId, IsValueUsed, CalleeId FROM CallPoint WHERE FileId=? AND LineNum=? AND ColNum=? AND CallerId=?
CallPoint get_from_id: SELECT FileId, LineNum, ColNum, IsValueUsed, CallerId, CalleeId FROM CallPoint WHERE CallPointId=?
CallPoint list_id: SELECT CallPointId FROM CallPoint ORDER BY LineNum
CallPoint list_all: SELECT CallPointId, FileId, LineNum, ColNum, IsValueUsed, CallerId, CalleeId FROM CallPoint
CallPoint max_id: SELECT MAX(CallPointId) FROM CallPoint
CallPoint delete_all: DELETE FROM CallPoint
Unit add: INSERT INTO Unit (MainFileId, Directory, Output, Command, Name, Recorder, Options, Digest, IsFolded) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)
Unit update: UPDATE Unit SET Command=?, Name=?, Recorder=?, Options=?, Digest=?, IsFolded=? WHERE UnitId=?
Unit get_id: SELECT UnitId, Command, Name, Recorder, Options, Digest, IsFolded FROM Unit WHERE MainFileId=? AND Directory=? AND Output=?
Unit get_from_id: SELECT MainFileId, Directory, Output, Command, Name, Recorder, Options, Digest, IsFolded FROM Unit WHERE UnitId=?
Unit list_id: SELECT UnitId FROM Unit
Unit list_all: SELECT UnitId, MainFileId, Directory, Output, Command, Name, Recorder, Options, Digest, IsFolded FROM Unit
Unit max_id: SELECT MAX(UnitId) FROM Unit
Unit delete_all: DELETE FROM Unit
UnitFile add: INSERT INTO UnitFile (UnitId, FileId) VALUES (?, ?)
UnitFile update: UPDATE UnitFile SET  WHERE rowid=?
UnitFile get_id: SELECT rowid FROM UnitFile WHERE UnitId=? AND FileId=?
UnitFile get_from_id: SELECT UnitId, FileId FROM UnitFile WHERE rowid=?
UnitFile list_id: SELECT rowid FROM UnitFile
UnitFile list_all: SELECT rowid, UnitId, FileId FROM UnitFile
UnitFile max_id: SELECT MAX(rowid) FROM UnitFile
UnitFile delete_all: DELETE FROM UnitFile
Include add: INSERT INTO Include (IncludingFileId, LineNum, IncludedFileId, Kind) VALUES (?, ?, ?, ?)
Include update: UPDATE Include SET Kind=? WHERE rowid=?
Include get_id: SELECT rowid, Kind FROM Include WHERE IncludingFileId=? AND LineNum=? AND IncludedFileId=?
Include get_from_id: SELECT IncludingFileId, LineNum, IncludedFileId, Kind FROM Include WHERE rowid=?
Include list_id: SELECT rowid FROM Include
Include list_all: SELECT rowid, IncludingFileId, LineNum, IncludedFileId, Kind FROM Include
Include max_id: SELECT MAX(rowid) FROM Include
Include delete_all: DELETE FROM Include
Reference add: INSERT INTO Reference (EntityKind, EntityId, FileId, LineNum, ColNum, Roles) VALUES (?, ?, ?, ?, ?, ?)
Reference update: UPDATE Reference SET Roles=? WHERE rowid=?
Reference get_id: SELECT rowid, Roles FROM Reference WHERE EntityKind=? AND EntityId=? AND FileId=? AND LineNum=? AND ColNum=?
Reference get_from_id: SELECT EntityKind, EntityId, FileId, LineNum, ColNum, Roles FROM Reference WHERE rowid=?
Reference list_id: SELECT rowid FROM Reference
Reference list_all: SELECT rowid, EntityKind, EntityId, FileId, LineNum, ColNum, Roles FROM Reference
Reference max_id: SELECT MAX(rowid) FROM Reference
Reference delete_all: DELETE FROM Reference
Property add: INSERT INTO Property (EntityKind, EntityId, Flags, OwnerId, Scope) VALUES (?, ?, ?, ?, ?)
Property update: UPDATE Property SET Flags=? WHERE rowid=?
Property get_id: SELECT rowid, Flags, OwnerId, Scope FROM Property WHERE EntityKind=? AND EntityId=?
Property get_from_id: SELECT EntityKind, EntityId, Flags, OwnerId, Scope FROM Property WHERE rowid=?
Property list_id: SELECT rowid FROM Property
Property list_all: SELECT rowid, EntityKind, EntityId, Flags, OwnerId, Scope FROM Property
Property max_id: SELECT MAX(rowid) FROM Property
Property delete_all: DELETE FROM Property
