#include <fe_db/compilation_data.h>
#include <fe_db/compilation_data_merger.h>
#include <fe_db/compilation_database.h>
#include <fe_db/elements.h>
#include <fe_db/schema.h>
#include <persistence/column.h>
#include <persistence/database.h>
#include <persistence/debug.h>
#include <persistence/escaped_text.h>
#include <persistence/generic_element.h>
#include <persistence/sqlite_report.h>
#include <persistence/statement.h>

/// Calls every public operation of the installed headers. It is compiled and linked, never run:
/// what an embedder may call has to link. A new public operation gets a line here.
namespace {

using namespace orvalesca::databases_merger;

template <class... T>
void use(T&&...) {}

void useElements(File& file, Identifier& name, Type& type, Function& function) {
  Localization at{&file, 1, 1};
  use(file.getPath(), file.getKind(), file.getLanguage(), file.getHuge(), file.getSpareFlag(),
      file.getHugeForDB());
  file.setPath(""), file.setKind({}), file.setLanguage({}), file.setHuge(true);
  file.setSpareFlag(true), file.setHugeFromDB(1);
  use(name.getName(), name.getCount(), name.getKind());
  name.setName(""), name.setCount(1), name.setKind({});
  File(std::string_view("")), Identifier("", {}, 1);

  Macro macro(&name, at, 1);
  macro = Macro(Macro(1));
  use(macro.getValue(), macro.hasValue(), macro.getText(), macro.getKind(), macro.getIsDefined(),
      macro.getIsObjectLike(), macro.getIsVariadic(), macro.getIsCommandLineDefinition(),
      macro.getIsPredefined(), macro.getIntegralValueForDB(), macro.getSignednessForDB());
  macro.setValue({}), macro.setText(""), macro.setIsDefined(true), macro.setIsObjectLike(true);
  macro.setIsVariadic(true), macro.setIsCommandLineDefinition(true), macro.setIsPredefined(true);
  macro.setIntegralValueFromDB({}), macro.setSignednessFromDB(true);
  use(macro.update(macro), Macro::isLoaded, Macro::isPreLoaded);

  macro.setLocalization(at), macro.setFile(nullptr), macro.setLine(1), macro.setColumn(1);
  use(macro.getLocalization(), macro.getFile(), macro.getLine(), macro.getColumn());
  macro.setIdentifier(&name), macro.setRefCount(1);
  use(macro.getIdentifier(), macro.getRefCount(), macro.NamedElement::update(macro),
      macro.NamedElement::merge(0, 1));
  macro.setId(1), macro.setPlace(1), macro.forgetRow(), macro.dirty = true;
  use(macro.getId(), macro.getPlace(), persistence::GenericElement::getOptimisticInsert());
  persistence::GenericElement::setOptimisticInsert(false);

  MacroInvocation invocation(&macro, at, {});
  use(invocation.getRange(), invocation.getMacro(), invocation.getCodeOrigins(),
      invocation.getPpLine(), invocation.getPpStartColumn(), invocation.getPpEndColumn());
  invocation.setRange({}), invocation.setMacro(nullptr), invocation.setPpLine(1);
  invocation.setPpStartColumn(1), invocation.setPpEndColumn(1);
  MacroInvocationCodeOrigin origin(at, &invocation, 0, 1, true, "");
  use(origin.getInvocation(), origin.getOffset(), origin.getEndOffset(), origin.getIsParameter(),
      origin.getTokenString());
  origin.setInvocation(nullptr), origin.setOffset(0), origin.setEndOffset(1);
  origin.setIsParameter(true), origin.setTokenString("");
  MacroExpansion expansion(at, "", "", 1, 1);
  use(expansion.getExpandedCode(), expansion.getMacroCall(), expansion.getPpLine(),
      expansion.getPpColumn());
  expansion.setExpandedCode(""), expansion.setMacroCall(""), expansion.setPpLine(1);
  expansion.setPpColumn(1);

  type = Type(&name, false, at, TypeKind::None, 1, 1, false, false);
  use(type.getKind(), type.getUnnamed(), type.getLocal(), type.getIncomplete(),
      type.getRefTagCount(), type.update(type), type.merge(0, true, 1, 1, true, true));
  type.setKind({}), type.setUnnamed(true), type.setLocal(true), type.setIncomplete(true);
  type.setRefTagCount(1);
  TypeReference reference(&type, &type);
  use(reference.getDeclaredType(), reference.getReferencedType());
  reference.setDeclaredType(nullptr), reference.setReferencedType(nullptr);

  Variable variable(&name, at, &type, true, LinkageKind::None, 1);
  use(variable.getType(), variable.getIsDefined(), variable.getLinkage());
  variable.setType(nullptr), variable.setIsDefined(true), variable.setLinkage({});
  function = Function(&name, &name, at, true, true, EffectKind::Unknown, LinkageKind::None);
  use(function.getSourceName(), function.getIsSpecial(), function.getEffect());
  function.setSourceName(nullptr), function.setIsSpecial(true), function.setEffect({});
  ExternalIdentifier external(&name, {EntityKind::Variable, &variable});
  use(external.getIdentifier(), external.getDescription(), external.getEntityKind());
  external.setIdentifier(nullptr), external.setDescription({}), external.setEntityKind({});
  use(Field(&name, at, 1), EnumConstant(&name, at, 0), Label(&name, at, 0));
  CallPoint call(&function, &function, at, true);
  use(call.getCaller(), call.getCallee(), call.getIsValueUsed());
  call.setCaller(nullptr), call.setCallee(nullptr), call.setIsValueUsed(true);
}

void useCrossReference(CompilationData& data, File& file, Type& type, Function& function) {
  Unit& unit = data.emplaceUnit(&file, "", "", "");
  UnitFile& unitFile = data.emplaceUnitFile(&unit, &file);
  Include& include = data.emplaceInclude(&file, 1, &file, IncludeKind::Quoted);
  const Localization at{&file, 1, 1};
  Reference& place = data.emplaceReference(&function, at, ReferenceRoles::Call);
  Property& property = data.emplaceProperty(&type, PropertyFlags::Local, &type, "");
  use(data.emplaceFromDB(unit, true), data.emplaceFromDB(unitFile, true),
      data.emplaceFromDB(include, true), data.emplaceFromDB(place, true),
      data.emplaceFromDB(property, true), data.getProperty(&type), data.getUnits(),
      data.getUnitFiles(), data.getIncludes(), data.getReferences(), data.getProperties());
  use(unit.getMainFile(), unit.getDirectory(), unit.getOutput(), unit.getCommand(), unit.getName(),
      unit.getRecorder(), unit.getOptions(), unit.getDigest(), unit.getIsFolded());
  unit.setName(""), unit.setRecorder(""), unit.setOptions(""), unit.setDigest("");
  use(unitFile.getUnit(), unitFile.getFile(), include.getIncluded(), include.getKind());
  use(place.getEntity() == property.getEntity(), place.getRoles(), place.update(place));
  use(property.getFlags(), property.getOwner(), property.getScope(), property.update(property));
}

void useDataset(CompilationData& data) {
  CompilationData::newCompilationInstanceIfNotAlreadyDone("", "");
  use(CompilationData::newInstance("", ""), CompilationData::compilationDatabase());
  CompilationData::deleteInstance();
  CompilationData own("", "");
  data.setDataNeededForDbLink(), data.setPropagateMacroInfo();

  File& file = data.emplaceFile("", {}, {});
  Identifier* name = data.emplaceIdentifier("", {}, true, 1);
  use(data.getFile(""), data.getIdentifier(""), data.isHugeFile(""));
  data.setHugeFile("");
  const Localization at{&file, 1, 1};
  Type* type = data.emplaceType(name, true, at, {}, true, 1, 1, true, true);
  Variable* variable = data.emplaceVariable(name, at, type, true, {}, true, 1);
  Function* function = data.emplaceFunction(name, name, at, true, true, {}, {}, true);
  Macro& macro = data.emplaceMacro(name, at, {}, true, true, 1, "", true, true, true, true);
  ExternalIdentifier* external =
      data.emplaceExternalIdentifier(name, {EntityKind::Variable, variable}, true);
  use(data.emplaceType("", true, at, {}, true, 1, 1),
      data.emplaceVariable("", at, type, true, {}, true),
      data.emplaceFunction("", "", at, true, true, {}, {}, true),
      data.emplaceMacro("", at, true, 1), data.emplaceExternalIdentifier("", {}, true));
  Field& field = data.emplaceField("", at, true, 1);
  EnumConstant* constant = data.emplaceEnumConstant("", at, true);
  Label* label = data.emplaceLabel("", at, true);
  TypeReference* reference = data.emplaceTypeReference(type, type, true);
  CallPoint* call = data.emplaceCallPoint(function, function, at, true, true);
  MacroInvocation* invocation = data.emplaceMacroInvocation(&macro, at, {});
  MacroInvocationCodeOrigin* origin =
      data.emplaceMacroInvocationCodeOrigin(at, invocation, 0, 1, true, "");
  MacroExpansion* expansion = data.emplaceMacroExpansion(at, "", "", 1, 1);
  use(data.emplaceFromDB(file, true), data.emplaceFromDB(*name, true),
      data.emplaceFromDB(macro, true), data.emplaceFromDB(*invocation, true),
      data.emplaceFromDB(*origin, true), data.emplaceFromDB(*expansion, true),
      data.emplaceFromDB(*type, true), data.emplaceFromDB(*reference, true),
      data.emplaceFromDB(*variable, true), data.emplaceFromDB(*function, true),
      data.emplaceFromDB(*external, true), data.emplaceFromDB(field, true),
      data.emplaceFromDB(*constant, true), data.emplaceFromDB(*label, true),
      data.emplaceFromDB(*call, true));
  useCrossReference(data, file, *type, *function);

  use(data.getType(at, name), data.getField(at, name), data.getEnumConstant(at, name),
      data.getLabel(at, name), data.getCallPoint(at, function), data.getVariable(at, name),
      data.getFunction("", at), data.getTypeReference(type), data.getMacro(name),
      data.getMacro(name, at), data.getaMacroWithValue(""));
  bool first = true;
  use(data.listTranslationUnitMacro(first), data.getMacroInvocationForLine(1),
      data.getMacroExpansionForLine(1), data.isMacroExpansionLoaded(), data.getTypes(),
      data.getVariables(), data.getFunctions(), data.getFields(), data.getEnumConstants(),
      data.getLabels());
  data.eachMacro([](const Macro&) {});
  data.eachMacroExpansion([](const MacroExpansion&) {});

  LinkageKind linkage{};
  use(data.findCallPoint(first), data.findIdentifier(first), data.findMacro(first),
      data.findEnumConstantFromIdentifier(name, first),
      data.findExternalIdentifierFromIdentifier(name, first),
      data.findFieldFromIdentifier(name, first), data.findFunctionFromIdentifier(name, first),
      data.findFunctionFromIdentifierAndLinkage(name, {}, first),
      data.findLabelFromIdentifier(name, first), data.findMacroFromIdentifier(name, first),
      data.findTypeFromIdentifier(name, first), data.findTypeFromIdentifierAndKind(name, {}, first),
      data.findVariableFromIdentifier(name, first),
      data.findVariableFromIdentifierAndLinkage(name, {}, first),
      data.findExternalDefinedFunction(name), data.findCallPointWithNoEffect(first),
      data.findFieldFromRefCount(1, first), data.findIdentifierFromKind({}, first),
      data.findIdentifierFromKindAndCount({}, 1, {}, first), data.findMacroFromRefCount(1, first),
      data.findTypeFromRefCount(1, first), data.findTypeFromRefTagCount(1, first),
      data.findTypeReferenceFromType(type, first),
      data.findVariableFromRefCountAndLinkage(1, {}, first),
      data.findObjectFromMinLength({}, 1, linkage, first));

  use(data.preLoadFromDB(true), data.loadFromDB(true),
      data.loadMacroExpansionFromPbDB(data.getPpDb()), data.saveToCompDB(), data.saveToPpDB());
  data.resetIds(data.getPpDb());
  use(macro.saveToDB(data.getCompDb()));
  macro.loadFromDB(data.getCompDb());
  useElements(file, *name, *type, *function);
}

void useDatabases(CompilationData& data) {
  bool first = true;
  CompilationDatabase& db = data.getCompDb();
  use(db.getKind(), db.getFunction(1), db.listEntityIdFromRefCount(0, 1, first),
      db.listCallPointIdFromCaller(nullptr, first), db.listCallPointIdFromCallee(nullptr, first),
      db.countRowsListed(), db.countRowsRead(), db.countRowsAdded(), db.getLeftOutReferences());
  use(data.getPpDb().addTables());
  use(db.quick_connect(true), db.isConnected(), db.beginTransaction(), db.beginReading(),
      db.commitTransaction(), db.rollbackTransaction(), db.lastInsertRowID(), db.execute(""),
      db.hasFailed(), db.lastFailure(), db.leftOutRows(), db.lostReferences(), db.getPath(),
      db.hasTable(""));
  db.setBusyTimeout(1), db.disconnect();
  persistence::Database& base = db;
  use(base.prepareStatements());
  base.finalizeStatements();
  persistence::Database plain("", "", true);
}

void useMerger() {
  CompilationDataMerger target(""), source("");
  use(target.openDB());
  target.beginTransaction(), target.setDebug(), target.loadDataFromDB();
  target.mergeCompilationTables(source);
  target.truncateDataFromDB(), target.saveToDB(), target.commitTransaction(), target.closeDB();
  use(target.getUnits(), target.tablesNotInFile());
}

void usePersistence(sqlite3* connection) {
  persistence::DatabaseStatement reserved(false), text(""), view(std::string_view(""), false);
  persistence::DatabaseStatement copy(text);
  copy.prepare(connection);
  copy.bind(connection, 1ULL), copy.bind(connection, 1LL), copy.bind(connection, 1);
  long long value = 0;
  copy.column(value), copy.exec(connection), copy.reset(connection), copy.finalize(connection);
  copy.reportStatementAtBind(true);
  use(copy.step(), copy.run(connection), copy.result(), copy.isFailureReported(), copy.getText());
  const persistence::DatabaseColumn column("", persistence::kUnique);
  use(column.getName(), column.isPrimaryKey(), column.isUnique(), column.isOption());
  persistence::Debug debug(2, "", "%d", 1), plain(2, "");
  debug.print("%d", 1);
  use(debug.canDebug());
  persistence::DebugTimer timer(2, "");
  timer.reset(), timer.display("%d", 1);
  use(persistence::escaped(""), persistence::printableLength(""));
  std::string out;
  persistence::appendHex(out, 1);
  persistence::reportSqlite(0, 0, connection), persistence::reportQuery("");
  persistence::reportMessage("%d", 1);
}

}  // namespace

int main(int argc, char**) {
  if (argc < 100) return 0;
  CompilationData data("", "");
  useDataset(data);
  useDatabases(data);
  useMerger();
  usePersistence(nullptr);
}
