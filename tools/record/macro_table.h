#pragma once

#include "fact_sink.h"
#include "llvm/ADT/DenseMap.h"

namespace clang {
class IdentifierInfo;
class MacroInfo;
class Preprocessor;
}  // namespace clang

namespace fe_db_tools {

class FileTable;

/// The macros of the unit: Clang's definitions to those of the dataset.
class MacroTable {
 public:
  MacroTable(FactSink& sink, FileTable& files, clang::Preprocessor& preprocessor)
      : sink(sink), files(files), preprocessor(preprocessor) {}

  /// Recorded on first sight: the compiler's own (__LINE__) have no definition to be seen.
  dm::Macro* macro(const clang::IdentifierInfo& name, const clang::MacroInfo& definition);
  void undefined(const clang::IdentifierInfo& name, const clang::MacroInfo& definition);

 private:
  std::string replacementText(const clang::MacroInfo& definition) const;

  FactSink& sink;
  FileTable& files;
  clang::Preprocessor& preprocessor;
  llvm::DenseMap<const clang::MacroInfo*, dm::Macro*> macros;
};

}  // namespace fe_db_tools
