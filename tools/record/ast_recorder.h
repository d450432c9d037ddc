#pragma once

#include "fact_sink.h"

namespace clang {
class ASTContext;
}

namespace fe_db_tools {

class FileTable;
class Properties;

/// Of which declarations facts are recorded.
enum class SystemFacts {
  referenced,  ///< those of user files, and whatever of system headers these refer to
  all,
};

/// Whether the places of references are recorded, or only their number.
enum class ReferenceFacts { none, all };

/// Records what the syntax tree of a whole unit shows: declarations, references, calls.
/// REQUIRES: preprocessing is recorded.
void recordAst(FactSink& sink, FileTable& files, Properties& properties, clang::ASTContext& context,
               SystemFacts system, ReferenceFacts references);

}  // namespace fe_db_tools
