#pragma once

#include <memory>
#include <string>

#include "ast_recorder.h"
#include "fact_sink.h"

namespace clang {
class ASTContext;
class Preprocessor;
}  // namespace clang

namespace fe_db_tools {

class FileTable;
class Properties;

/// Records what preprocessing shows: files, macros, their uses, and the preprocessed text.
/// REQUIRES: made before the main file is entered; lives as long as the preprocessor works.
class PpRecorder {
 public:
  PpRecorder(FactSink& sink, FileTable& files, Properties& properties,
             clang::Preprocessor& preprocessor, SystemFacts system, ReferenceFacts references);
  ~PpRecorder();

  /// At the end of the unit: what still waits for a token gets none.
  void finish();
  /// After the whole unit: enum constants have values too.
  void recordMacroValues(const clang::ASTContext& context);
  /// What the preprocessed lines and columns of the facts refer to.
  const std::string& preprocessedText() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl;
};

}  // namespace fe_db_tools
