#include "compilation_schema.h"
#include "subcommands.h"

namespace fe_db_tools {

/// A file made by hand is one that many processes will save into, so it gets the key indexes.
int init(const InitOptions& options) {
  if (options.kind == kCompilationKind) {
    createCompilationDatabase(options.file, KeyIndexes::yes);
  } else {
    createPreprocessingDatabase(options.file);
  }
  return kDone;
}

}  // namespace fe_db_tools
