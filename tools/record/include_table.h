#pragma once

#include <vector>

#include "clang/Basic/SourceLocation.h"
#include "fact_sink.h"

namespace clang {
class FileEntry;
class Token;
}  // namespace clang

namespace fe_db_tools {

class FileTable;

/// Who includes whom. A header that is found and not entered, since all of it has been read before,
/// is included as well.
class IncludeTable {
 public:
  /// `at`: the `#`; `name`: where the header's name begins.
  void add(clang::SourceLocation at, const clang::Token& keyword, clang::SourceLocation name,
           bool isAngled, const clang::FileEntry& header);
  /// After the last include: from here on all files that have been entered are known.
  void record(FactSink& sink, FileTable& files, dm::File* mainFile) const;

 private:
  struct Directive {
    clang::SourceLocation at;
    const clang::FileEntry* header;
    dm::IncludeKind kind;
  };
  std::vector<Directive> directives;
};

}  // namespace fe_db_tools
