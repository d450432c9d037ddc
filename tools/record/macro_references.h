#pragma once

#include <vector>

#include "ast_recorder.h"
#include "clang/Basic/SourceLocation.h"
#include "fact_sink.h"

namespace fe_db_tools {

class FileTable;

/// Where macros are expanded, asked for and undefined. Which places and macros are the system's is
/// known after the last include.
class MacroReferences {
 public:
  void add(dm::Macro* macro, clang::SourceLocation definition, clang::SourceLocation place,
           dm::ReferenceRoles roles) {
    seen.push_back({macro, definition, place, roles});
  }
  /// REQUIRES: FileTable::settleKinds().
  void record(FactSink& sink, FileTable& files, SystemFacts system);

 private:
  struct Seen {
    dm::Macro* macro;
    clang::SourceLocation definition;
    clang::SourceLocation place;
    dm::ReferenceRoles roles;
  };
  std::vector<Seen> seen;
};

}  // namespace fe_db_tools
