#include "include_table.h"

#include "clang/Basic/IdentifierTable.h"
#include "clang/Lex/Token.h"
#include "file_table.h"

namespace fe_db_tools {

void IncludeTable::add(clang::SourceLocation at, const clang::Token& keyword,
                       clang::SourceLocation name, bool isAngled, const clang::FileEntry& header) {
  using Kind = dm::IncludeKind;
  Kind kind = isAngled ? Kind::Angled : Kind::Quoted;
  if (name.isMacroID()) kind = kind | Kind::ByMacro;
  const clang::IdentifierInfo* word = keyword.getIdentifierInfo();
  if (word != nullptr && word->isStr("include_next")) kind = kind | Kind::Next;
  directives.push_back({at, &header, kind});
}

void IncludeTable::record(FactSink& sink, FileTable& files, dm::File* mainFile) const {
  for (const Directive& directive : directives) {
    dm::File* header = files.known(*directive.header);
    if (header == nullptr) continue;
    const dm::Localization at = files.locate(directive.at);
    if (at.file != nullptr) {
      sink.include(at, header, directive.kind);
    } else if (mainFile != nullptr) {
      // The command line becomes directives in a buffer of the compiler's.
      sink.include({mainFile, 0, 0}, header, dm::IncludeKind::Forced);
    }
  }
}

}  // namespace fe_db_tools
