#include "macro_table.h"

#include "clang/Lex/MacroInfo.h"
#include "clang/Lex/Preprocessor.h"
#include "file_table.h"

namespace fe_db_tools {

dm::Macro* MacroTable::macro(const clang::IdentifierInfo& name,
                             const clang::MacroInfo& definition) {
  dm::Macro*& known = macros[&definition];
  if (known != nullptr) return known;
  const dm::Localization builtin{nullptr, 0, kinds::kPredefinedColumn};
  const clang::SourceLocation at = definition.getDefinitionLoc();
  known = sink.macroDefined({.name = {name.getNameStart(), name.getLength()},
                             .at = at.isValid() ? files.locateSpelling(at) : builtin,
                             .text = replacementText(definition),
                             .isObjectLike = definition.isObjectLike(),
                             .isVariadic = definition.isVariadic()});
  return known;
}

void MacroTable::undefined(const clang::IdentifierInfo& name, const clang::MacroInfo& definition) {
  sink.macroUndefined(*macro(name, definition));
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
