#pragma once

#include "fe_db/localization.h"
#include "persistence/generic_element.h"

namespace orvalesca::databases_merger {

/// An element with a source position, and the position's parts as its table stores them.
class LocatedElement : public persistence::GenericElement {
 public:
  LocatedElement() = default;
  explicit LocatedElement(const Localization& localization) : localization(localization) {}

  const Localization& getLocalization() const { return localization; }
  /// Line, column and file belong to most keys: change them only outside a dataset.
  void setLocalization(const Localization& position) { localization = position; }

  File* getFile() const { return localization.file; }
  void setFile(File* file) { localization.file = file; }
  std::uint32_t getLine() const { return localization.line; }
  void setLine(std::uint32_t line) { localization.line = line; }
  std::uint32_t getColumn() const { return localization.column; }
  void setColumn(std::uint32_t column) { localization.column = column; }

 protected:
  Localization localization;
};

}  // namespace orvalesca::databases_merger
