#pragma once

#include <vector>

#include "llvm/ADT/DenseMap.h"
#include "llvm/ADT/DenseSet.h"

namespace clang {
class FileEntry;
}  // namespace clang

namespace fe_db_tools {

/// Which headers are the system's: those that no chain of includes reaches from the source without
/// passing through a system directory. `#pragma GCC system_header` does not count: headers of a
/// project say it too, to keep warnings quiet.
///
/// A header that is found both ways is the project's, in whatever order the includes come, and so
/// are the headers that it includes by itself.
class SystemHeaders {
 public:
  /// `includer`: null for what the command line includes.
  void included(const clang::FileEntry* includer, const clang::FileEntry& header,
                bool isFoundInSystemDirectory);
  /// After the last included(). `source`: the main file.
  void settle(const clang::FileEntry* source);

  bool isSystem(const clang::FileEntry& file) const { return projectFiles.count(&file) == 0; }

 private:
  using Files = std::vector<const clang::FileEntry*>;

  llvm::DenseMap<const clang::FileEntry*, Files> includedByPath;  ///< not by system directories
  llvm::DenseSet<const clang::FileEntry*> projectFiles;
};

}  // namespace fe_db_tools
