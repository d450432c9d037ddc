#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <set>

#include "fe_db/compilation_data.h"

namespace fe_db_tests {

/// What holds of a dataset at any time: every element that can be reached is found by its own key,
/// refers to elements of this dataset, and shares its row with no other element of its class.
class DatasetChecker {
  using Data = orvalesca::databases_merger::CompilationData;
  using Macro = orvalesca::databases_merger::Macro;
  using NamedElement = orvalesca::databases_merger::NamedElement;

 public:
  explicit DatasetChecker(Data& data) : data(data) {}

  void check() {
    each("type", data.getTypes(), &Data::getType);
    each("variable", data.getVariables(), &Data::getVariable);
    each("field", data.getFields(), &Data::getField);
    each("enum constant", data.getEnumConstants(), &Data::getEnumConstant);
    each("label", data.getLabels(), &Data::getLabel);
    each("function", data.getFunctions(),
         [](Data& d, const auto& at, auto* name) { return d.getFunction(name->getName(), at); });
    for (const auto& variable : data.getVariables()) {
      if (auto* type = variable.getType()) {
        EXPECT_EQ(data.getType(type->getLocalization(), type->getIdentifier()), type);
      }
    }
    for (const auto& function : data.getFunctions()) checkName(function.getSourceName());
    data.eachMacro([this](const Macro& macro) { check(macro); });
  }

 private:
  template <class Set, class Get>
  void each(const char* kind, const Set& elements, Get get) {
    SCOPED_TRACE(kind);
    std::set<long long> rows;
    for (const auto& element : elements) {
      const auto& at = element.getLocalization();
      // An id that led to no row has made an empty element.
      if (element.getIdentifier() == nullptr && at.line == 0) continue;
      checkNamed(element);
      EXPECT_EQ(std::invoke(get, data, at, element.getIdentifier()), &element);
      EXPECT_TRUE(element.getId() == 0 || rows.insert(element.getId()).second)
          << "two elements of row " << element.getId();
    }
  }

  /// Macros may share a row: one with a wildcard takes what is loaded for another.
  void check(const Macro& macro) {
    checkNamed(macro);
    const Macro* found = data.getMacro(macro.getIdentifier(), macro.getLocalization());
    if (found == &macro) return;
    ASSERT_NE(found, nullptr);
    EXPECT_TRUE(found->getLocalization().wildcard || macro.getLocalization().wildcard);
  }

  void checkNamed(const NamedElement& element) {
    checkName(element.getIdentifier());
    const auto* file = element.getFile();
    EXPECT_TRUE(file == nullptr || data.getFile(file->getPath()) == file);
  }

  void checkName(const orvalesca::databases_merger::Identifier* name) {
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(data.getIdentifier(name->getName()), name);
  }

  Data& data;
};

inline void checkDataset(orvalesca::databases_merger::CompilationData& data) {
  DatasetChecker(data).check();
}

}  // namespace fe_db_tests
