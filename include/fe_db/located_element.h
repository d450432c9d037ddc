#pragma once

#include "fe_db/export.h"
#include "fe_db/localization.h"
#include "fe_db/not_copied.h"
#include "persistence/generic_element.h"

namespace orvalesca::databases_merger {

/// An element with a source position, and the position's parts as its table stores them.
class LocatedElement : public persistence::GenericElement {
 public:
  LocatedElement() = default;
  explicit LocatedElement(const Localization& localization) : localization(localization) {}
  LocatedElement(const LocatedElement& other) = default;
  LocatedElement& operator=(const LocatedElement& other) {
    GenericElement::operator=(other);
    setLocalization(other.localization);
    return *this;
  }

  const Localization& getLocalization() const { return localization; }
  /// Line, column and file belong to most keys: change them only outside a dataset. A macro is
  /// found at its new position, and with a wildcard set or cleared.
  void setLocalization(const Localization& position) {
    localization = position;
    noteMove();
  }

  File* getFile() const { return localization.file; }
  void setFile(File* file) {
    localization.file = file;
    noteMove();
  }
  std::uint32_t getLine() const { return localization.line; }
  void setLine(std::uint32_t line) {
    localization.line = line;
    noteMove();
  }
  std::uint32_t getColumn() const { return localization.column; }
  void setColumn(std::uint32_t column) {
    localization.column = column;
    noteMove();
  }

 protected:
  /// The element is a macro that its dataset finds by an index of positions.
  NotCopied<bool> isIndexed;
  Localization localization;

 private:
  void noteMove() {
    if (isIndexed.value) forgetIndexedPositions();
  }
  FE_DB_EXPORT void forgetIndexedPositions();
};

}  // namespace orvalesca::databases_merger
