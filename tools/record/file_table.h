#pragma once

#include "clang/Basic/SourceLocation.h"
#include "fact_sink.h"
#include "llvm/ADT/DenseMap.h"
#include "system_headers.h"

namespace clang {
class FileEntry;
class SourceManager;
}  // namespace clang

namespace fe_db_tools {

/// Where the text of a location is in a file.
struct WrittenPlace {
  clang::SourceLocation at;
  bool isThroughBody = false;  ///< from a macro's body: the place is that of the macro's name
};

/// Files and positions: from Clang's locations to those of the dataset.
///
/// Paths are those of the files themselves, absolute and without links or dots, so that they are
/// equal in every unit. Lines and columns (in bytes) are those of the files too: `#line` and line
/// markers do not count.
class FileTable {
 public:
  FileTable(FactSink& sink, const clang::SourceManager& sources, results_api::LanguageKind language)
      : sink(sink), sources(sources), language(language) {}

  /// Null for what is no file: predefined macros, the command line, pasted tokens.
  dm::File* file(clang::FileID id);
  /// Null for one that has not been entered.
  dm::File* known(const clang::FileEntry& entry) const { return byEntry.lookup(&entry); }
  /// `directive`: where the include is.
  void included(clang::SourceLocation directive, const clang::FileEntry& header,
                bool isFoundInSystemDirectory);
  /// After the last include: from here on it is known which headers are the system's.
  void settleKinds();

  WrittenPlace written(clang::SourceLocation at) const;
  /// Where the text of a location is in a file: an argument of a macro call where it is
  /// written, other parts of an expansion at the name of the macro called. Without a file: 0, 0.
  dm::Localization locate(clang::SourceLocation at);
  /// Where the token is spelled. Without a file, the column gives the origin.
  dm::Localization locateSpelling(clang::SourceLocation at);

  /// REQUIRES: settleKinds().
  bool isInSystemHeader(clang::SourceLocation at) const;

 private:
  dm::Localization locateInFile(clang::SourceLocation at);
  dm::FileKind kindOf(clang::FileID id) const;

  FactSink& sink;
  const clang::SourceManager& sources;
  results_api::LanguageKind language;
  llvm::DenseMap<clang::FileID, dm::File*> files;
  llvm::DenseMap<const clang::FileEntry*, dm::File*> byEntry;
  SystemHeaders systemHeaders;
};

}  // namespace fe_db_tools
