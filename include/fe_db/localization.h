#pragma once

#include <cstdint>

#include "fe_db/kinds.h"

namespace orvalesca::databases_merger {

class File;
class LinkedElement;

/// A source position. Line and column count from 1. With a null file, column is the origin:
/// 1 command line, 3 predefined macro.
struct Localization {
  File* file = nullptr;  ///< not owned; an element of the same dataset
  std::uint32_t line = 0;
  std::uint32_t column = 0;
  /// Matches any position of a macro of the same name. Never stored, never part of a key.
  bool wildcard = false;
};

/// The key fields: `wildcard` takes no part.
inline bool samePosition(const Localization& a, const Localization& b) {
  return a.file == b.file && a.line == b.line && a.column == b.column;
}

/// Where a macro invocation is in the preprocessed text; line and columns count from 1.
struct OneLineRange {
  File* file = nullptr;  ///< not owned, not stored
  std::uint32_t line = 0;
  std::uint32_t startColumn = 0;
  std::uint32_t endColumn = 0;
};

/// What an ExternalIdentifier denotes. `entity` is a Variable or a Function of the same
/// dataset, not owned, and means something for those two kinds only.
struct EntityDescription {
  EntityKind kind = EntityKind::None;
  LinkedElement* entity = nullptr;

  bool hasEntity() const { return kind == EntityKind::Variable || kind == EntityKind::Function; }
};

}  // namespace orvalesca::databases_merger
