#include "fe_database/compilation_data/element_lookup.h"
#include "fe_database/compilation_data/insertion_order.h"
#include "fe_database/elements/macro_groups.h"
#include "fe_db/compilation_data.h"
#include "persistence/debug.h"

/// Reading the dataset: nothing here makes an element or touches a database.
namespace orvalesca::databases_merger {

// --- By key.

Type* CompilationData::getType(const Localization& localization, Identifier* identifier) const {
  return findElement(types, LocIdentifierKey{localization, identifier});
}

Field* CompilationData::getField(const Localization& localization, Identifier* identifier) const {
  return findElement(fields, LocIdentifierKey{localization, identifier});
}

EnumConstant* CompilationData::getEnumConstant(const Localization& localization,
                                               Identifier* identifier) const {
  return findElement(enumConstants, LocIdentifierKey{localization, identifier});
}

Label* CompilationData::getLabel(const Localization& localization, Identifier* identifier) const {
  return findElement(labels, LocIdentifierKey{localization, identifier});
}

CallPoint* CompilationData::getCallPoint(const Localization& localization, Function* caller) const {
  return findElement(callPoints, LocCallerKey{localization, caller});
}

Variable* CompilationData::getVariable(const Localization& localization,
                                       Identifier* identifier) const {
  return findElement(variables, LocIdentifierKey{localization, identifier});
}

Function* CompilationData::getFunction(std::string_view name,
                                       const Localization& localization) const {
  const Identifier* identifier = getIdentifier(name);
  if (identifier == nullptr) return nullptr;
  return findElement(functions, LocIdentifierKey{localization, identifier});
}

TypeReference* CompilationData::getTypeReference(Type* declared) const {
  return findElement(typeReferences, declared);
}

Property* CompilationData::getProperty(const EntityReference& entity) const {
  return findElement(properties, keyFields(entity));
}

// --- Macros.

Macro* CompilationData::getMacro(Identifier* identifier) const {
  Macro* known = findElement(macros, identifier);
  return known != nullptr ? &MacroGroups::first(*known) : nullptr;
}

Macro* CompilationData::getMacro(Identifier* identifier, const Localization& localization) {
  Macro* known = findElement(macros, identifier);
  return known != nullptr ? MacroGroups::find(*known, localization) : nullptr;
}

Macro* CompilationData::getaMacroWithValue(std::string_view name) const {
  const Identifier* identifier = getIdentifier(name);
  Macro* known = identifier != nullptr ? findElement(macros, identifier) : nullptr;
  if (known == nullptr) return nullptr;
  Macro* found = nullptr;
  MacroGroups::eachOfName(*known, [&found](Macro& macro) {
    if (found == nullptr || !found->hasValue()) found = &macro;
  });
  return found;
}

const Macro* CompilationData::listTranslationUnitMacro(bool& first) {
  persistence::Debug debug(2, "listTranslationUnitMacro");
  if (first) {
    macroCursor = macros.cbegin();
    first = false;
  }
  while (macroCursor != macros.cend()) {
    const Macro& macro = *macroCursor++;
    const File* file = macro.getFile();
    if (debug.canDebug()) {
      const char* name = macro.getIdentifier()->getName().c_str();
      const auto id = static_cast<int>(macro.getId());
      if (file != nullptr) {
        debug.print("macro=%s id=%d file(%p)=%s id=%d", name, id, static_cast<const void*>(file),
                    file->getPath().c_str(), static_cast<int>(file->getId()));
      } else {
        debug.print("macro=%s id=%d file(nullptr)", name, id);
      }
    }
    if (file != nullptr) return &macro;
  }
  return nullptr;
}

void CompilationData::eachMacro(std::function<void(const Macro&)> callback) const {
  MacroGroups::each(insertionOrder->of<Macro>(), callback);
}

void CompilationData::eachMacroExpansion(
    std::function<void(const MacroExpansion&)> callback) const {
  for (const MacroExpansion& expansion : macroExpansions) callback(expansion);
}

// --- By line of the preprocessed text.

std::pair<MacroInvocationSet::const_iterator, MacroInvocationSet::const_iterator>
CompilationData::getMacroInvocationForLine(unsigned ppLine) const {
  MacroInvocation key;
  key.setPpLine(ppLine);
  return macroInvocations.equal_range(key);
}

std::pair<MacroExpansionSet::const_iterator, MacroExpansionSet::const_iterator>
CompilationData::getMacroExpansionForLine(unsigned ppLine) const {
  MacroExpansion key;
  key.setPpLine(ppLine);
  return macroExpansionsByLine.equal_range(key);
}

bool CompilationData::isMacroExpansionLoaded() const {
  return macroExpansionState == MacroExpansionState::Loaded;
}

// --- Containers.

const TypeSet& CompilationData::getTypes() const { return types; }
const VariableSet& CompilationData::getVariables() const { return variables; }
const FunctionSet& CompilationData::getFunctions() const { return functions; }
const FieldSet& CompilationData::getFields() const { return fields; }
const EnumConstantSet& CompilationData::getEnumConstants() const { return enumConstants; }
const LabelSet& CompilationData::getLabels() const { return labels; }
const UnitSet& CompilationData::getUnits() const { return units; }
const UnitFileSet& CompilationData::getUnitFiles() const { return unitFiles; }
const IncludeSet& CompilationData::getIncludes() const { return includes; }
const ReferenceSet& CompilationData::getReferences() const { return references; }
const PropertySet& CompilationData::getProperties() const { return properties; }

}  // namespace orvalesca::databases_merger
