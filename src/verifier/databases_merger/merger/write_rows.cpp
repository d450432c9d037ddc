#include <iostream>

#include "fe_database/compilation_data/element_store.h"
#include "fe_database/compilation_database/columns.h"
#include "merger/merger_impl.h"

namespace orvalesca::databases_merger {

namespace {

/// What setDebug() prints in front of the number of a table's rows.
// clang-format off
template <class T> constexpr const char* kLabel = nullptr;
template <> constexpr const char* kLabel<File>               = "File:";
template <> constexpr const char* kLabel<Identifier>         = "Identifiers:";
template <> constexpr const char* kLabel<Function>           = "Functions:";
template <> constexpr const char* kLabel<CallPoint>          = "CallPoints:";
template <> constexpr const char* kLabel<EnumConstant>       = "EnumConstants:";
template <> constexpr const char* kLabel<Type>               = "Type:";
template <> constexpr const char* kLabel<Field>              = "Fields:";
template <> constexpr const char* kLabel<Label>              = "Labels:";
template <> constexpr const char* kLabel<Macro>              = "Macros:";
template <> constexpr const char* kLabel<TypeReference>      = "TypeReferences:";
template <> constexpr const char* kLabel<Variable>           = "Variables:";
template <> constexpr const char* kLabel<ExternalIdentifier> = "ExternalIdentifier:";
// clang-format on

}  // namespace

/// Whatever id an element has, it becomes a new row: the tables are empty, and the elements that it
/// refers to have got their new ids before it.
template <class T>
void mergerImpl::writeTable() {
  if (!database->has<T>()) return;
  if (debug && kLabel<T> != nullptr)
    std::cout << kLabel<T> << dataset->elementsOf<T>().size() << '\n';
  dataset->eachElement<T>([this](T& element) { database->add(element); });
}

/// The tables were empty and every row was accepted, so anything else than these rows is the doing
/// of the tables' own definitions. Found here, it is not committed.
void mergerImpl::checkWhatWasWritten() {
  MergedElements::each([this]<class T>() {
    if (!database->has<T>() || database->hasTransactionFailed()) return;
    database->holdsJust<T>(dataset->elementsOf<T>().size());
  });
}

std::vector<std::string> mergerImpl::tablesNotInFile() const {
  std::vector<std::string> tables;
  MergedElements::each([&]<class T>() {
    if (!database->has<T>() && !dataset->elementsOf<T>().empty()) {
      tables.emplace_back(TableColumns<T>::kName);
    }
  });
  return tables;
}

void mergerImpl::saveToDB() {
  if (!mayRewrite("saveToDB")) return;
  MergedElements::each([this]<class T>() { writeTable<T>(); });
  checkWhatWasWritten();
}

}  // namespace orvalesca::databases_merger
