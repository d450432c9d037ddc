#pragma once

#include <vector>

#include "fe_db/located_element.h"

namespace orvalesca::databases_merger {

class FrontendDatabase;
class Macro;
class MacroInvocationCodeOrigin;

/// One use of a macro, with its position in the source and its range in the preprocessed text.
/// Every emplace makes a new element.
class MacroInvocation : public LocatedElement {
 public:
  MacroInvocation() = default;
  MacroInvocation(Macro* macro, const Localization& localization, const OneLineRange& range)
      : LocatedElement(localization), range(range), macro(macro) {}

  /// The file of the range is not stored: a row read back has the file of its position.
  const OneLineRange& getRange() const { return range; }
  void setRange(const OneLineRange& newRange) { range = newRange; }
  Macro* getMacro() const { return macro; }
  void setMacro(Macro* newMacro) { macro = newMacro; }
  /// The tokens of this invocation, ascending by offset; filled by a load only. Not owned.
  const std::vector<MacroInvocationCodeOrigin*>& getCodeOrigins() const { return codeOrigins; }

  std::uint32_t getPpLine() const { return range.line; }
  void setPpLine(std::uint32_t line) { range.line = line; }
  std::uint32_t getPpStartColumn() const { return range.startColumn; }
  void setPpStartColumn(std::uint32_t column) { range.startColumn = column; }
  std::uint32_t getPpEndColumn() const { return range.endColumn; }
  void setPpEndColumn(std::uint32_t column) { range.endColumn = column; }

 private:
  friend class CompilationData;
  friend struct ElementSave;

  /// Puts an origin in front of those with an equal or a larger offset.
  void insertCodeOrigin(MacroInvocationCodeOrigin* origin);
  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;

  OneLineRange range;
  Macro* macro = nullptr;
  std::vector<MacroInvocationCodeOrigin*> codeOrigins;
};

}  // namespace orvalesca::databases_merger
