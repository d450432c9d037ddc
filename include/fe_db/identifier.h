#pragma once

#include <string>
#include <string_view>

#include "fe_db/kinds.h"
#include "persistence/generic_element.h"

namespace orvalesca::databases_merger {

class FrontendDatabase;

/// One name, shared by everything that bears it. Unique in a dataset by its bytes.
class Identifier : public persistence::GenericElement {
 public:
  Identifier() = default;
  Identifier(std::string_view name, IdentifierKind kind, std::uint32_t count)
      : name(name), count(count), kind(kind) {}

  /// The key: not changed inside a dataset.
  const std::string& getName() const { return name; }
  void setName(const std::string& newName) { name = newName; }
  /// Uses counted for the name: one for each by-name emplace that is a first or an accumulating
  /// occurrence of the name.
  std::uint32_t getCount() const { return count; }
  void setCount(std::uint32_t newCount) { count = newCount; }
  IdentifierKind getKind() const { return kind; }
  void setKind(IdentifierKind newKind) { kind = newKind; }

 private:
  friend class CompilationData;
  friend class FrontendDatabase;
  friend struct ElementSave;

  /// Merges a repeated occurrence of the name into this element; its id goes back to 0.
  void addOccurrence(IdentifierKind seenKind, std::uint32_t seenCount);
  /// Merges the stored row of the name into this element, which takes the row's id. True when the
  /// row has to be written again.
  bool updateFromRow(const Identifier& row);

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;

  std::string name;
  std::uint32_t count = 1;
  IdentifierKind kind{};
};

}  // namespace orvalesca::databases_merger
