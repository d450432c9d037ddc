#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "persistence/export.h"

namespace persistence {

/// Flags of a column, a bit mask.
inline constexpr std::uint32_t kPrimaryKey = 1;  ///< holds the row id
inline constexpr std::uint32_t kUnique = 2;      ///< belongs to the key that a row is found by
inline constexpr std::uint32_t kOption = 128;    ///< key column that NULL matches on either side

/// Name and flags of one table column.
class SHARED_PERSISTENCE_EXPORT DatabaseColumn {
 public:
  DatabaseColumn(std::string_view name, std::uint32_t flags) : name(name), flags(flags) {}

  const std::string& getName() const { return name; }
  bool isPrimaryKey() const { return (flags & kPrimaryKey) != 0; }
  bool isUnique() const { return (flags & kUnique) != 0; }
  bool isOption() const { return (flags & kOption) != 0; }

 private:
  std::string name;

 public:
  std::uint32_t flags;
};

}  // namespace persistence
