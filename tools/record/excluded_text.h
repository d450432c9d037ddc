#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "ast_recorder.h"
#include "clang/Basic/SourceLocation.h"
#include "llvm/ADT/DenseMap.h"
#include "llvm/ADT/MapVector.h"
#include "llvm/ADT/StringSet.h"

namespace clang {
class FileEntry;
class LangOptions;
class SourceManager;
class Token;
}  // namespace clang

namespace fe_db_tools {

class FileTable;

/// The names in text that conditionals leave out. Text of a file that is included several times
/// counts only if it is left out each time.
class ExcludedText {
 public:
  void entered(const clang::FileEntry& file, clang::FileID id) { inclusions[&file].push_back(id); }
  /// From the `#` of the condition to the word of the directive that ends it.
  void skipped(const clang::SourceManager& sources, clang::SourceLocation condition,
               clang::SourceLocation end);

  /// Reads it; of system headers only if all of their facts are wanted.
  /// REQUIRES: FileTable::settleKinds(), with the last include.
  void read(const clang::SourceManager& sources, const clang::LangOptions& language,
            const FileTable& files, SystemFacts system);

  bool names(std::string_view name) const {
    return found.count(llvm::StringRef(name.data(), name.size())) != 0;
  }

 private:
  using Range = std::pair<unsigned, unsigned>;  ///< offsets
  using FileIds = std::vector<clang::FileID>;

  void readRange(const clang::SourceManager& sources, const clang::LangOptions& language,
                 const Range& range, const FileIds& same);
  bool isLeftOutBy(clang::FileID inclusion, unsigned offset) const;

  llvm::MapVector<const clang::FileEntry*, FileIds> inclusions;
  llvm::DenseMap<clang::FileID, std::vector<Range>> ranges;
  llvm::StringSet<> found;
};

}  // namespace fe_db_tools
