#pragma once

#include <string>
#include <string_view>

#include "fe_db/located_element.h"

namespace orvalesca::databases_merger {

class FrontendDatabase;

/// The text of a macro call and the code that it expands to, at one place of the preprocessed text
/// (line and column from 1). Every occurrence is an element of its own.
class MacroExpansion : public LocatedElement {
 public:
  MacroExpansion() = default;
  MacroExpansion(const Localization& localization, std::string_view expandedCode,
                 std::string_view macroCall, std::uint32_t ppLine, std::uint32_t ppColumn)
      : LocatedElement(localization),
        expandedCode(expandedCode),
        macroCall(macroCall),
        ppLine(ppLine),
        ppColumn(ppColumn) {}

  const std::string& getExpandedCode() const { return expandedCode; }
  void setExpandedCode(const std::string& code) { expandedCode = code; }
  const std::string& getMacroCall() const { return macroCall; }
  void setMacroCall(const std::string& call) { macroCall = call; }
  std::uint32_t getPpLine() const { return ppLine; }
  void setPpLine(std::uint32_t line) { ppLine = line; }
  std::uint32_t getPpColumn() const { return ppColumn; }
  void setPpColumn(std::uint32_t column) { ppColumn = column; }

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;

  std::string expandedCode;
  std::string macroCall;
  std::uint32_t ppLine = 0;
  std::uint32_t ppColumn = 0;
};

}  // namespace orvalesca::databases_merger
