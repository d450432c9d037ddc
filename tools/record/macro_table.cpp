#include "macro_table.h"

#include "clang/Lex/MacroInfo.h"
#include "clang/Lex/Preprocessor.h"
#include "file_table.h"
#include "properties.h"

namespace fe_db_tools {

dm::Macro* MacroTable::macro(const clang::IdentifierInfo& name,
                             const clang::MacroInfo& definition) {
  Known& known = macros[&definition];
  if (known.macro != nullptr) return known.macro;
  const dm::Localization builtin{nullptr, 0, kinds::kPredefinedColumn};
  const clang::SourceLocation at = definition.getDefinitionLoc();
  known.name = &name;
  known.macro = sink.macroDefined({.name = {name.getNameStart(), name.getLength()},
                                   .at = at.isValid() ? files.locateSpelling(at) : builtin,
                                   .text = replacementText(definition),
                                   .isObjectLike = definition.isObjectLike(),
                                   .isVariadic = definition.isVariadic()});
  return known.macro;
}

void MacroTable::ends(const clang::IdentifierInfo& name, const clang::MacroInfo& definition) {
  dm::Macro* element = macro(name, definition);
  macros[&definition].hasEnded = true;
  ended.emplace_back(element, expandedText(name, definition, preprocessor));
}

void MacroTable::undefined(const clang::IdentifierInfo& name, const clang::MacroInfo& definition) {
  ends(name, definition);
  macros[&definition].isUndefined = true;
  sink.macroUndefined(*macro(name, definition));
}

void MacroTable::recordValues(const clang::ASTContext& context) {
  const EnumConstants constants(context);
  for (const auto& [macro, text] : ended) {
    FactSink::macroValue(*macro, valueOf(text, preprocessor, constants));
  }
  for (const auto& [definition, known] : macros) {
    if (known.hasEnded) continue;
    const Tokens text = expandedText(*known.name, *definition, preprocessor);
    FactSink::macroValue(*known.macro, valueOf(text, preprocessor, constants));
  }
}

void MacroTable::recordProperties(Properties& properties) const {
  using Flag = dm::PropertyFlags;
  for (const auto& [definition, known] : macros) {
    const Flag guard = definition->isUsedForHeaderGuard() ? Flag::IncludeGuard : Flag::None;
    properties.add(known.macro, guard | (known.isUndefined ? Flag::Undefined : Flag::None));
  }
}

std::string MacroTable::replacementText(const clang::MacroInfo& definition) const {
  std::string text;
  llvm::SmallString<128> buffer;
  for (const clang::Token& token : definition.tokens()) {
    if (!text.empty() && token.hasLeadingSpace()) text += ' ';
    text += preprocessor.getSpelling(token, buffer).str();
  }
  return text;
}

}  // namespace fe_db_tools
