#include "fe_db/compilation_data.h"

#include "fe_database/compilation_data/element_store.h"
#include "fe_database/compilation_data/last_save.h"
#include "fe_database/elements/macro_groups.h"
#include "fe_db/compilation_database.h"

namespace orvalesca::databases_merger {

// --- Life.

std::unique_ptr<CompilationData> CompilationData::compilationDataset;

CompilationData::CompilationData(std::string_view compilationPath,
                                 std::string_view preprocessingPath)
    : macroCursor(macros.cend()),
      insertionOrder(std::make_unique<InsertionOrder>()),
      macroGroups(std::make_unique<MacroGroups>()) {
  if (!compilationPath.empty()) {
    compDb.reset(new CompilationDatabase(compilationPath, this));
  }
  if (!preprocessingPath.empty()) {
    ppDb.reset(new PreprocessingDatabase(preprocessingPath, this));
  }
}

CompilationData::~CompilationData() {
  clear();
  compDb.reset();
  ppDb.reset();
}

void CompilationData::clear() {
  insertionOrder->clear();
  ExtensionElements::each([this]<class T>() { elementsOf<T>().clear(); });
  files.clear();
  macros.clear();
  macroGroups->clear();
  macroInvocations.clear();
  macroInvocationCodeOrigins.clear();
  macroExpansions.clear();
  macroExpansionsByLine.clear();
  macroExpansionState = MacroExpansionState::Pending;
  types.clear();
  typeReferences.clear();
  variables.clear();
  functions.clear();
  externalIdentifiers.clear();
  fields.clear();
  enumConstants.clear();
  labels.clear();
  callPoints.clear();
  identifiers.clear();
}

void CompilationData::newCompilationInstanceIfNotAlreadyDone(std::string_view compilationPath,
                                                             std::string_view preprocessingPath) {
  if (compilationDataset == nullptr) {
    compilationDataset = newInstance(compilationPath, preprocessingPath);
  }
}

std::unique_ptr<CompilationData> CompilationData::newInstance(std::string_view compilationPath,
                                                              std::string_view preprocessingPath) {
  return std::make_unique<CompilationData>(compilationPath, preprocessingPath);
}

CompilationData* CompilationData::compilationDatabase() { return compilationDataset.get(); }

void CompilationData::deleteInstance() {
  // Out of the singleton first: nobody finds a dataset that is half destroyed.
  const std::unique_ptr<CompilationData> ended = std::move(compilationDataset);
}

CompilationDatabase& CompilationData::getCompDb() { return *compDb; }
PreprocessingDatabase& CompilationData::getPpDb() { return *ppDb; }

void CompilationData::setDataNeededForDbLink() { dataNeededForDbLink = true; }
void CompilationData::setPropagateMacroInfo() { propagateMacroInfo = true; }

// --- Files and names.

File& CompilationData::emplaceFile(std::string_view path, FileKind kind,
                                   results_api::LanguageKind language) {
  if (File* known = findElement(files, path)) {
    known->setKind(kind);
    known->setLanguage(language);
    return *known;
  }
  return addElement<File>(path, kind, language);
}

Identifier* CompilationData::emplaceIdentifier(std::string_view name, IdentifierKind kind,
                                               bool accumulate, unsigned count) {
  if (Identifier* known = findElement(identifiers, name)) {
    if (accumulate) known->addOccurrence(kind, count);
    return known;
  }
  return &addElement<Identifier>(name, kind, count);
}

File* CompilationData::getFile(std::string_view path) const { return findElement(files, path); }

Identifier* CompilationData::getIdentifier(std::string_view name) const {
  return findElement(identifiers, name);
}

void CompilationData::setHugeFile(std::string_view path) {
  File* file = getFile(path);
  if (file == nullptr) file = &emplaceFile(path, FileKind{}, results_api::LanguageKind{});
  file->setHuge(true);
}

bool CompilationData::isHugeFile(std::string_view path) const {
  const File* file = getFile(path);
  return file != nullptr && file->getHuge();
}

}  // namespace orvalesca::databases_merger
