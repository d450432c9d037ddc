#include "excluded_text.h"

#include <algorithm>

#include "clang/Basic/SourceManager.h"
#include "clang/Lex/Lexer.h"
#include "file_table.h"

namespace fe_db_tools {

namespace {

/// Directives whose lines name nothing.
bool isWithoutNames(llvm::StringRef directive) {
  static constexpr llvm::StringRef kWords[] = {"include", "include_next", "import", "error",
                                               "warning", "pragma",       "line",   "ident"};
  return std::find(std::begin(kWords), std::end(kWords), directive) != std::end(kWords);
}

}  // namespace

void ExcludedText::skipped(const clang::SourceManager& sources, clang::SourceLocation condition,
                           clang::SourceLocation end) {
  const auto [file, from] = sources.getDecomposedLoc(condition);
  ranges[file].emplace_back(from, sources.getFileOffset(end));
}

bool ExcludedText::isLeftOutBy(clang::FileID inclusion, unsigned offset) const {
  const auto known = ranges.find(inclusion);
  return known != ranges.end() &&
         std::any_of(known->second.begin(), known->second.end(), [offset](const Range& range) {
           return offset >= range.first && offset < range.second;
         });
}

void ExcludedText::read(const clang::SourceManager& sources, const clang::LangOptions& language,
                        const FileTable& files, SystemFacts system) {
  for (const auto& [file, same] : inclusions) {
    const auto first = ranges.find(same.front());
    if (first == ranges.end()) continue;
    const clang::SourceLocation start = sources.getLocForStartOfFile(same.front());
    if (system == SystemFacts::referenced && files.isInSystemHeader(start)) continue;
    for (const Range& range : first->second) readRange(sources, language, range, same);
  }
}

void ExcludedText::readRange(const clang::SourceManager& sources,
                             const clang::LangOptions& language, const Range& range,
                             const FileIds& same) {
  const llvm::StringRef text = sources.getBufferData(same.front());
  const clang::SourceLocation start = sources.getLocForStartOfFile(same.front());
  clang::Lexer lexer(start, language, text.begin(), text.begin() + range.first, text.end());
  const auto offsetOf = [&](const clang::Token& token) {
    return static_cast<unsigned>(token.getLocation().getRawEncoding() - start.getRawEncoding());
  };
  clang::Token token;
  bool isLeftAlone = true;  // the condition itself is read by the compiler
  bool isDirective = false;
  lexer.LexFromRawLexer(token);  // its #
  for (lexer.LexFromRawLexer(token); token.isNot(clang::tok::eof); lexer.LexFromRawLexer(token)) {
    if (offsetOf(token) >= range.second) return;
    if (token.isAtStartOfLine()) {
      isLeftAlone = false;
      isDirective = token.is(clang::tok::hash);
    }
    if (isLeftAlone || token.isNot(clang::tok::raw_identifier)) continue;
    const llvm::StringRef name = token.getRawIdentifier();
    if (isDirective) {
      isDirective = false;
      isLeftAlone = isWithoutNames(name);
      continue;
    }
    const auto isLeftOut = [&](clang::FileID id) { return isLeftOutBy(id, offsetOf(token)); };
    if (std::all_of(same.begin() + 1, same.end(), isLeftOut)) found.insert(name);
  }
}

}  // namespace fe_db_tools
