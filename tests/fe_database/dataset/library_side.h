#pragma once

#include <memory>
#include <string>
#include <vector>

#include "element_facts.h"
#include "fe_db/compilation_data.h"

namespace fe_db_tests::model {

/// A dataset of the library, spoken to in facts of the model.
struct LibrarySide {
  std::unique_ptr<CompilationData> data;
  Known known;

  Element* emplace(const Fact& f, bool accumulate);
  Element* emplaceByName(const Fact& f, const std::string& name, const std::string& sourceName,
                         bool accumulate);
  Element* emplaceFromDb(const Fact& f, bool accumulate);
  /// The element with the key of the fact, through the look-ups.
  Element* locate(const Fact& f);
  /// The macros of a name in the order of eachMacro.
  std::vector<Macro*> group(const Identifier* name) const;

  Localization place(const Fact& f) const { return placeOf(known, f); }
  Identifier* name(const Fact& f) const { return known.get<Identifier>(f.name); }
  EntityDescription description(const Fact& f) const {
    return {EntityKind(f.kind), known.get<LinkedElement>(f.subject)};
  }
};

}  // namespace fe_db_tests::model
