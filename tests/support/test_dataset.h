#pragma once

#include <memory>
#include <string>

#include "fe_db/compilation_data.h"
#include "tests/support/quiet_test.h"

namespace fe_db_tests {

using namespace orvalesca::databases_merger;

/// The flags that outlive a dataset, back to what they are when a process starts.
inline void resetProcessFlags() {
  CompilationData::deleteInstance();
  persistence::GenericElement::setOptimisticInsert(false);
  AllElements::each([]<class T>() { T::isLoaded = T::isPreLoaded = false; });
}

/// A fixture that owns a dataset without databases. The helpers make what they name unless it is
/// there, count nothing, and leave what is not said at a plain value.
class DatasetTest : public QuietTest {
 protected:
  DatasetTest() { resetProcessFlags(); }
  ~DatasetTest() override { resetProcessFlags(); }

  File* file(std::string_view path) { return &data->emplaceFile(path, FileKind{}, {}); }
  Identifier* name(std::string_view text) {
    return data->emplaceIdentifier(text, IdentifierKind{}, /*accumulate=*/false, /*count=*/0);
  }
  Localization at(std::string_view path, std::uint32_t line, std::uint32_t column) {
    return {path.empty() ? nullptr : file(path), line, column, /*wildcard=*/false};
  }
  Type* type(std::string_view text, const Localization& place) {
    return data->emplaceType(name(text), /*unnamed=*/false, place, TypeKind::Named512,
                             /*accumulate=*/false, /*refCount=*/0, /*refTagCount=*/0,
                             /*local=*/false, /*incomplete=*/false);
  }
  Variable* variable(std::string_view text, const Localization& place) {
    return data->emplaceVariable(name(text), place, /*type=*/nullptr, /*isDefined=*/false,
                                 LinkageKind::None, /*accumulate=*/false, /*refCount=*/0);
  }
  Function* function(std::string_view text, const Localization& place) {
    return data->emplaceFunction(name(text), name(text), place, /*isDefined=*/false,
                                 /*isSpecial=*/false, EffectKind::Unknown, LinkageKind::None,
                                 /*accumulate=*/false);
  }
  Macro* macro(std::string_view text, const Localization& place, Macro::Value value = {}) {
    return &data->emplaceMacro(name(text), place, value, /*isDefined=*/true, /*accumulate=*/false,
                               /*refCount=*/0, /*text=*/"", /*isObjectLike=*/true,
                               /*isVariadic=*/false, /*isCommandLineDefinition=*/false,
                               /*isPredefined=*/false);
  }

  std::unique_ptr<CompilationData> data = CompilationData::newInstance("", "");
};

}  // namespace fe_db_tests
