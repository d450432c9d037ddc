#include "fact_sink.h"

#include <algorithm>

#include "fe_db/compilation_data.h"
#include "fe_db/elements.h"

namespace fe_db_tools {

namespace {

constexpr bool kAccumulate = true;

template <class T>
void count(T* element) {
  if (element != nullptr) element->setRefCount(element->getRefCount() + 1);
}

}  // namespace

dm::File* FactSink::file(std::string_view path, dm::FileKind kind,
                         results_api::LanguageKind language) {
  dm::File* file = &data.emplaceFile(path, kind, language);
  if (std::find(files.begin(), files.end(), file) == files.end()) files.push_back(file);
  return file;
}

dm::Macro* FactSink::macroDefined(const MacroFacts& facts) {
  dm::Identifier* identifier =
      data.emplaceIdentifier(facts.name, dm::IdentifierKind::Macro, kAccumulate, /*count=*/1);
  const bool isNowhere = facts.at.file == nullptr;
  dm::Macro& macro = data.emplaceMacro(
      identifier, facts.at, dm::Macro::Value{}, /*isDefined=*/true, kAccumulate, /*refCount=*/0,
      facts.text, facts.isObjectLike, facts.isVariadic,
      /*isCommandLineDefinition=*/isNowhere && facts.at.column == kinds::kCommandLineColumn,
      /*isPredefined=*/isNowhere && facts.at.column == kinds::kPredefinedColumn);
  // All definitions of one name on the command line share a position; the last one counts.
  if (isNowhere && macro.getText() != facts.text) macro.setText(facts.text);
  return &macro;
}

void FactSink::macroUndefined(dm::Macro& macro) {
  data.emplaceMacro(macro.getIdentifier(), macro.getLocalization(), dm::Macro::Value{},
                    /*isDefined=*/false, kAccumulate, /*refCount=*/0, macro.getText(),
                    macro.getIsObjectLike(), macro.getIsVariadic(),
                    macro.getIsCommandLineDefinition(), macro.getIsPredefined());
}

void FactSink::macroValue(dm::Macro& macro, const dm::Macro::Value& value) {
  // Of the definitions that share the command line's position, the last one counts.
  const bool isNowhere = macro.getLocalization().file == nullptr;
  if (isNowhere || !macro.hasValue()) macro.setValue(value);
}

dm::MacroInvocation* FactSink::macroInvocation(const ExpansionFacts& facts) {
  return data.emplaceMacroInvocation(facts.macro, facts.at,
                                     {facts.at.file, facts.ppLine, facts.ppStart, facts.ppEnd});
}

void FactSink::macroExpansion(const ExpansionFacts& facts, std::string_view code,
                              std::string_view call) {
  data.emplaceMacroExpansion(facts.at, code, call, facts.ppLine, facts.ppStart);
}

void FactSink::codeOrigin(dm::MacroInvocation* invocation, const dm::Localization& at,
                          unsigned offset, unsigned endOffset, bool isParameter,
                          std::string_view token) {
  data.emplaceMacroInvocationCodeOrigin(at, invocation, offset, endOffset, isParameter, token);
}

dm::Type* FactSink::type(const TypeFacts& facts) {
  const bool unnamed = facts.name.empty();
  dm::Identifier* identifier = data.emplaceIdentifier(
      unnamed ? "<unnamed>" : facts.name, dm::IdentifierKind::Type, kAccumulate, /*count=*/1);
  return data.emplaceType(identifier, unnamed, facts.at, facts.kind, kAccumulate, /*refCount=*/0,
                          /*refTagCount=*/0, facts.local, facts.incomplete);
}

void FactSink::typeReference(dm::Type* declared, dm::Type* referenced) {
  data.emplaceTypeReference(declared, referenced, kAccumulate);
}

dm::Variable* FactSink::variable(const VariableFacts& facts) {
  if (facts.at.file == nullptr) return nullptr;
  return data.emplaceVariable(facts.name, facts.at, facts.type, facts.isDefined, facts.linkage,
                              kAccumulate);
}

dm::Function* FactSink::function(const FunctionFacts& facts) {
  return data.emplaceFunction(facts.uniqueName, facts.sourceName, facts.at, facts.isDefined,
                              facts.isSpecial, dm::EffectKind::Unknown, facts.linkage, kAccumulate);
}

void FactSink::externalName(std::string_view name, dm::Variable* variable) {
  data.emplaceExternalIdentifier(name, {dm::EntityKind::Variable, variable}, kAccumulate);
}

void FactSink::externalName(std::string_view name, dm::Function* function) {
  data.emplaceExternalIdentifier(name, {dm::EntityKind::Function, function}, kAccumulate);
}

dm::Field* FactSink::field(std::string_view name, const dm::Localization& at) {
  return &data.emplaceField(name, at, kAccumulate, /*refCount=*/0);
}

dm::EnumConstant* FactSink::enumConstant(std::string_view name, const dm::Localization& at) {
  return data.emplaceEnumConstant(name, at, kAccumulate);
}

dm::Label* FactSink::label(std::string_view name, const dm::Localization& at) {
  return data.emplaceLabel(name, at, kAccumulate);
}

void FactSink::call(dm::Function* caller, dm::Function* callee, const dm::Localization& at,
                    bool isValueUsed) {
  data.emplaceCallPoint(caller, callee, at, isValueUsed, kAccumulate);
}

bool FactSink::isOtherCall(dm::Function* caller, const dm::Function* callee,
                           const dm::Localization& at) const {
  const dm::CallPoint* known = data.getCallPoint(at, caller);
  return known != nullptr && known->getCallee() != callee;
}

void FactSink::unit(const UnitFacts& facts) {
  dm::File* mainFile = data.getFile(facts.source);
  if (mainFile == nullptr) return;
  dm::Unit& unit = data.emplaceUnit(mainFile, facts.directory, facts.object, facts.command);
  unit.setName(facts.name);
  unit.setRecorder(facts.recorder);
  unit.setOptions(facts.options);
  unit.setDigest(facts.digest);
  for (dm::File* file : files) data.emplaceUnitFile(&unit, file);
}

void FactSink::include(const dm::Localization& at, dm::File* included, dm::IncludeKind kind) {
  data.emplaceInclude(at.file, at.line, included, kind);
}

void FactSink::reference(const dm::EntityReference& entity, const dm::Localization& at,
                         dm::ReferenceRoles roles) {
  if (at.file != nullptr) data.emplaceReference(entity, at, roles);
}

void FactSink::property(const dm::EntityReference& entity, dm::PropertyFlags flags, dm::Type* owner,
                        std::string_view scope) {
  data.emplaceProperty(entity, flags, owner, scope);
}

void FactSink::refer(dm::Macro* macro) { count(macro); }
void FactSink::refer(dm::Type* type) { count(type); }
void FactSink::refer(dm::Variable* variable) { count(variable); }
void FactSink::refer(dm::Function* function) { count(function); }
void FactSink::refer(dm::Field* field) { count(field); }

void FactSink::referByTag(dm::Type* type) {
  if (type != nullptr) type->setRefTagCount(type->getRefTagCount() + 1);
}

}  // namespace fe_db_tools
