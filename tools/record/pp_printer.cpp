#include "pp_printer.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "clang/Lex/Lexer.h"
#include "clang/Lex/Preprocessor.h"
#include "llvm/Support/raw_ostream.h"

namespace fe_db_tools {

namespace {

/// More than that many lines are skipped by a line marker.
constexpr unsigned kMaxBlankLines = 8;

/// Pragmas that the preprocessor consumes, so that they are gone from the output.
constexpr std::string_view kSwallowedPragmas[] = {"once",   "push_macro", "pop_macro",
                                                  "region", "endregion",  "include_alias"};
constexpr std::string_view kSwallowedVendorPragmas[] = {"system_header", "poison", "dependency"};

bool isSwallowed(const std::vector<std::string>& words) {
  const auto isIn = [&words](std::size_t index, const auto& names) {
    return index < words.size() &&
           std::find(std::begin(names), std::end(names), words[index]) != std::end(names);
  };
  const bool isVendor = !words.empty() && (words[0] == "GCC" || words[0] == "clang");
  return isVendor ? isIn(1, kSwallowedVendorPragmas) : isIn(0, kSwallowedPragmas);
}

}  // namespace

PpPrinter::PpPrinter(clang::Preprocessor& preprocessor)
    : preprocessor(preprocessor),
      sources(preprocessor.getSourceManager()),
      concatenation(preprocessor) {
  previous.startToken();
  beforePrevious.startToken();
}

PpPrinter::Place PpPrinter::place() const {
  for (std::size_t newLine = text.find('\n', counted); newLine != std::string::npos;
       newLine = text.find('\n', newLine + 1)) {
    ++line;
    lineStart = newLine + 1;
  }
  counted = text.size();
  return {line, static_cast<unsigned>(text.size() - lineStart + 1), text.size()};
}

unsigned PpPrinter::presumedLine(clang::SourceLocation at) const {
  const clang::PresumedLoc presumed = sources.getPresumedLoc(at);
  return presumed.isValid() ? presumed.getLine() : currentLine;
}

void PpPrinter::endLine() {
  if (!hasTokens && !hasDirective) return;
  text += '\n';
  hasTokens = hasDirective = false;
}

void PpPrinter::writeLineMarker(const char* flag) {
  endLine();
  std::string escaped;
  llvm::raw_string_ostream(escaped).write_escaped(fileName);
  text += "# " + std::to_string(currentLine) + " \"" + escaped + '"' + flag;
  if (fileKind == clang::SrcMgr::C_System) text += " 3";
  if (fileKind == clang::SrcMgr::C_ExternCSystem) text += " 3 4";
  text += '\n';
}

/// True when the text is on a new line now.
bool PpPrinter::moveToLine(unsigned target, bool startNewLine) {
  bool isNewLine = false;
  if ((startNewLine && hasTokens) || hasDirective) {
    endLine();
    ++currentLine;
    isNewLine = true;
  }
  // Unsigned: a line further up is far away too.
  const unsigned distance = target - currentLine;
  currentLine = target;
  if (distance == 0) return isNewLine;
  if (distance <= kMaxBlankLines) {
    text.append(distance, '\n');
  } else {
    writeLineMarker("");
  }
  hasTokens = hasDirective = false;
  return true;
}

void PpPrinter::fileChanged(clang::SourceLocation at, clang::PPCallbacks::FileChangeReason reason,
                            clang::SrcMgr::CharacteristicKind kind) {
  const clang::PresumedLoc presumed = sources.getPresumedLoc(at);
  if (presumed.isInvalid()) return;
  if (reason == clang::PPCallbacks::EnterFile && presumed.getIncludeLoc().isValid()) {
    moveToLine(presumedLine(presumed.getIncludeLoc()), /*startNewLine=*/false);
  }
  currentLine = presumed.getLine();
  // The marker is on the line after the pragma.
  if (reason == clang::PPCallbacks::SystemHeaderPragma) ++currentLine;
  fileName = presumed.getFilename();
  fileKind = kind;
  if (!hasMarker) {
    writeLineMarker("");
    hasMarker = true;
  }
  if (reason == clang::PPCallbacks::EnterFile && !isMainFileEntered) {
    isMainFileEntered = true;
    return;
  }
  switch (reason) {
    case clang::PPCallbacks::EnterFile:
      return writeLineMarker(" 1");
    case clang::PPCallbacks::ExitFile:
      return writeLineMarker(" 2");
    default:
      return writeLineMarker("");
  }
}

void PpPrinter::pragma(clang::SourceLocation hash) {
  const auto [id, offset] = sources.getDecomposedLoc(hash);
  const llvm::StringRef buffer = sources.getBufferData(id);
  clang::Lexer lexer(sources.getLocForStartOfFile(id), preprocessor.getLangOpts(), buffer.begin(),
                     buffer.begin() + offset, buffer.end());
  std::vector<std::string> words;
  std::string line = "#pragma";
  clang::Token token;
  lexer.LexFromRawLexer(token);  // #
  lexer.LexFromRawLexer(token);  // pragma
  for (lexer.LexFromRawLexer(token); token.isNot(clang::tok::eof) && !token.isAtStartOfLine();
       lexer.LexFromRawLexer(token)) {
    words.push_back(clang::Lexer::getSpelling(token, sources, preprocessor.getLangOpts()));
    if (token.hasLeadingSpace() || words.size() == 1) line += ' ';
    line += words.back();
  }
  if (isSwallowed(words)) return;
  moveToLine(presumedLine(hash), /*startNewLine=*/true);
  text += line;
  hasTokens = hasDirective = true;
}

void PpPrinter::ident(clang::SourceLocation at, std::string_view words) {
  moveToLine(presumedLine(at), /*startNewLine=*/true);
  text += "#ident ";
  text += words;
  hasTokens = true;
}

void PpPrinter::spaceBefore(const clang::Token& token, bool onSameLine) {
  const clang::PresumedLoc presumed = sources.getPresumedLoc(token.getLocation());
  bool isNewLine = false;
  if (!onSameLine || hasDirective) {
    isNewLine = moveToLine(presumed.isValid() ? presumed.getLine() : currentLine,
                           /*startNewLine=*/hasDirective);
    isNewLine |= token.isAtStartOfLine() && presumed.isValid() && presumed.getLine() == 1;
  }
  if (isNewLine) {
    indent(token);
  } else if (token.hasLeadingSpace() ||
             ((hasTokens || hasDirective) &&
              concatenation.AvoidConcat(beforePrevious, previous, token))) {
    text += ' ';
  }
  beforePrevious = previous;
  previous = token;
}

void PpPrinter::indent(const clang::Token& token) {
  unsigned column = sources.getExpansionColumnNumber(token.getLocation());
  // An expansion in column 1 that begins with an empty argument still wants its blank.
  if (column == 1 && token.hasLeadingSpace()) column = 2;
  // A # that an expansion brings to column 1 must not become a directive.
  if (column <= 1 && token.is(clang::tok::hash)) text += ' ';
  if (column > 1) text.append(column - 1, ' ');
}

void PpPrinter::print(const clang::Token& token) {
  if (const clang::IdentifierInfo* name = token.getIdentifierInfo()) {
    text.append(name->getNameStart(), name->getLength());
  } else if (token.isLiteral() && !token.needsCleaning() && token.getLiteralData() != nullptr) {
    text.append(token.getLiteralData(), token.getLength());
  } else {
    llvm::SmallString<256> buffer;
    const llvm::StringRef spelling = preprocessor.getSpelling(token, buffer);
    text.append(spelling.data(), spelling.size());
    if (token.is(clang::tok::unknown)) currentLine += spelling.count('\n');
  }
  hasTokens = true;
}

}  // namespace fe_db_tools
