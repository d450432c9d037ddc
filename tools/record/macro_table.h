#pragma once

#include "fact_sink.h"
#include "llvm/ADT/MapVector.h"
#include "macro_value.h"

namespace clang {
class ASTContext;
class IdentifierInfo;
class MacroInfo;
class Preprocessor;
}  // namespace clang

namespace fe_db_tools {

class FileTable;
class Properties;

/// The macros of the unit: Clang's definitions to those of the dataset.
class MacroTable {
 public:
  MacroTable(FactSink& sink, FileTable& files, clang::Preprocessor& preprocessor)
      : sink(sink), files(files), preprocessor(preprocessor) {}

  /// Recorded on first sight: the compiler's own (__LINE__) have no definition to be seen.
  dm::Macro* macro(const clang::IdentifierInfo& name, const clang::MacroInfo& definition);
  /// Its value is what it meant before this. Called for a macro that is defined anew, too.
  void ends(const clang::IdentifierInfo& name, const clang::MacroInfo& definition);
  void undefined(const clang::IdentifierInfo& name, const clang::MacroInfo& definition);
  /// Of every macro: at its end, or under the definitions that are in force now.
  void recordValues(const clang::ASTContext& context);
  /// What kind of macro each is.
  /// REQUIRES: all headers have been read to their ends.
  void recordProperties(Properties& properties) const;

 private:
  struct Known {
    dm::Macro* macro = nullptr;
    const clang::IdentifierInfo* name = nullptr;
    bool hasEnded = false;
    bool isUndefined = false;  ///< by a directive
  };

  std::string replacementText(const clang::MacroInfo& definition) const;

  FactSink& sink;
  FileTable& files;
  clang::Preprocessor& preprocessor;
  llvm::MapVector<const clang::MacroInfo*, Known> macros;
  std::vector<std::pair<dm::Macro*, Tokens>> ended;
};

}  // namespace fe_db_tools
