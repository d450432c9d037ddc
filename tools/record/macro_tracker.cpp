#include "macro_tracker.h"

#include <algorithm>

#include "clang/Basic/SourceManager.h"
#include "clang/Lex/Lexer.h"
#include "clang/Lex/Preprocessor.h"
#include "fe_db/macro.h"
#include "file_table.h"

namespace fe_db_tools {

namespace {

const clang::SrcMgr::ExpansionInfo& expansionOf(const clang::SourceManager& sources,
                                                clang::SourceLocation at) {
  return sources.getSLocEntry(sources.getFileID(at)).getExpansion();
}

/// Whether the line that the text ends in goes on in the next one.
bool isContinued(llvm::StringRef text) { return text.rtrim('\r').take_back(1) == "\\"; }

}  // namespace

MacroTracker::MacroTracker(FactSink& sink, FileTable& files,
                           const clang::Preprocessor& preprocessor, const PpPrinter& printer)
    : sink(sink),
      files(files),
      preprocessor(preprocessor),
      sources(preprocessor.getSourceManager()),
      printer(printer) {}

// --- Announcements.

void MacroTracker::expands(dm::Macro* macro, clang::SourceLocation name, clang::SourceRange call) {
  if (isInDirective(sources.getExpansionLoc(name))) return;
  const bool isNested =
      !waiting.empty() && (name.isMacroID() || containsName(waiting.back(), name));
  if (isNested) {
    Outer& outer = waiting.back();
    outer.nestedByName.try_emplace(name, outer.nested.size());
    outer.nested.push_back({macro, name});
    extendCall(outer, call.getEnd());
    return;
  }
  if (name.isMacroID()) return;  // out of a _Pragma, say
  const auto [file, offset] = sources.getDecomposedLoc(name);
  Outer& outer = waiting.emplace_back();
  outer.macro = macro;
  outer.name = name;
  outer.file = file;
  outer.nameOffset = offset;
  outer.endOffset = endOffsetOf(name);
  extendCall(outer, call.getEnd());
}

/// Whether the line of the location, continuations included, begins with a #. Such
/// expansions end in the directive; only those of #if can be told from Clang's state.
bool MacroTracker::isInDirective(clang::SourceLocation at) const {
  const auto [file, offset] = sources.getDecomposedLoc(at);
  const llvm::StringRef buffer = sources.getBufferData(file);
  std::size_t line = offset;  // becomes the start of the line
  while (line > 0 && (buffer[line - 1] != '\n' || isContinued(buffer.take_front(line - 1)))) --line;
  const llvm::StringRef text = buffer.slice(line, offset).ltrim();
  return text.substr(0, 1) == "#" || text.substr(0, 2) == "%:";
}

bool MacroTracker::containsName(const Outer& outer, clang::SourceLocation name) const {
  const auto [file, offset] = sources.getDecomposedLoc(name);
  return file == outer.file && offset >= outer.nameOffset && offset < outer.endOffset;
}

/// A nested call may take its parentheses from the source after the outer one:
///   #define ALIAS ADD
///   ALIAS (1, 2)
void MacroTracker::extendCall(Outer& outer, clang::SourceLocation end) const {
  if (!end.isFileID() || sources.getFileID(end) != outer.file) return;
  outer.endOffset = std::max(outer.endOffset, endOffsetOf(end));
}

unsigned MacroTracker::endOffsetOf(clang::SourceLocation lastToken) const {
  return sources.getFileOffset(lastToken) +
         clang::Lexer::MeasureTokenLength(lastToken, sources, preprocessor.getLangOpts());
}

// --- Tokens.

bool MacroTracker::continues(clang::SourceLocation token) const {
  return token.isMacroID() && !waiting.empty() && waiting.front().isOpen &&
         sources.getExpansionLoc(token) == waiting.front().name;
}

void MacroTracker::leave(clang::SourceLocation token) {
  if (!waiting.empty() && waiting.front().isOpen) recordFront();
  // An empty expansion is after the text that its own line has so far, or else in front of
  // the next token.
  const clang::SourceLocation next = sources.getExpansionLoc(token);
  const unsigned nextLine = sources.getPresumedLoc(next).getLine();
  while (!waiting.empty() && waiting.front().name != next &&
         sources.getPresumedLoc(waiting.front().name).getLine() != nextLine) {
    waiting.front().start = printer.place();
    recordFront();
  }
}

void MacroTracker::addToken(clang::SourceLocation token) {
  const clang::SourceLocation at = sources.getExpansionLoc(token);
  while (!waiting.empty() && (token.isFileID() || waiting.front().name != at)) {
    waiting.front().start = printer.place();
    recordFront();
  }
  if (waiting.empty()) return;
  waiting.front().isOpen = true;
  waiting.front().start = printer.place();
  nestedByEntry.clear();
}

void MacroTracker::printed(clang::SourceLocation token, const PpPrinter::Place& start) {
  if (waiting.empty() || !waiting.front().isOpen) return;
  Outer& outer = waiting.front();
  outer.textEnd = printer.getText().size();
  outer.tokens.push_back({token, static_cast<unsigned>(start.offset - outer.start.offset),
                          static_cast<unsigned>(outer.textEnd - start.offset)});
  growNested(outer, outer.tokens.back());
}

void MacroTracker::flush() {
  while (!waiting.empty()) {
    if (!waiting.front().isOpen) waiting.front().start = printer.place();
    recordFront();
  }
}

// --- Nested calls.

/// A nested call reaches over the unbroken run of its tokens. An argument that its macro uses twice
/// is expanded once: the first use counts.
void MacroTracker::growNested(Outer& outer, const Token& token) {
  for (const std::size_t index : nestedAround(outer, token.at)) {
    Nested& nested = outer.nested[index];
    const std::size_t number = outer.tokens.size();
    if (nested.lastToken == 0) {
      nested.start = outer.start.column + token.offset;
    } else if (nested.lastToken + 1 != number) {
      continue;
    }
    nested.lastToken = number;
    nested.end = outer.start.column + token.offset + token.length;
  }
}

/// All tokens of one expansion entry come from the same calls.
const MacroTracker::NestedList& MacroTracker::nestedAround(const Outer& outer,
                                                           clang::SourceLocation at) {
  static const NestedList kNone;
  if (outer.nested.empty()) return kNone;
  const auto [known, isNew] = nestedByEntry.try_emplace(sources.getFileID(at));
  if (isNew) {
    std::vector<clang::FileID> seen;
    collectNested(outer, at, known->second, seen);
  }
  return known->second;
}

/// From a token of a body one gets to the name of the call; from one of an argument both to
/// the parameter in the body and to the place where the argument is written.
void MacroTracker::collectNested(const Outer& outer, clang::SourceLocation at, NestedList& found,
                                 std::vector<clang::FileID>& seen) const {
  while (at.isMacroID()) {
    const clang::FileID entry = sources.getFileID(at);
    if (std::find(seen.begin(), seen.end(), entry) != seen.end()) return;
    seen.push_back(entry);
    const clang::SrcMgr::ExpansionInfo& expansion = expansionOf(sources, at);
    const clang::SourceLocation start = expansion.getExpansionLocStart();
    if (expansion.isMacroArgExpansion()) {
      collectNested(outer, start, found, seen);
      at = sources.getImmediateSpellingLoc(at);
      continue;
    }
    const auto nested = outer.nestedByName.find(start);
    if (nested != outer.nestedByName.end()) found.push_back(nested->second);
    at = start;
  }
}

// --- Recording.

void MacroTracker::recordFront() {
  Outer& outer = waiting.front();
  const PpPrinter::Place& start = outer.start;
  const std::string_view code =
      outer.isOpen
          ? std::string_view(printer.getText()).substr(start.offset, outer.textEnd - start.offset)
          : std::string_view();
  const ExpansionFacts facts{.macro = outer.macro,
                             .at = files.locate(outer.name),
                             .ppLine = start.line,
                             .ppStart = start.column,
                             .ppEnd = start.column + static_cast<unsigned>(code.size())};
  const llvm::StringRef call =
      sources.getBufferData(outer.file).slice(outer.nameOffset, outer.endOffset);
  dm::MacroInvocation* invocation = sink.macroInvocation(facts);
  sink.macroExpansion(facts, code, {call.data(), call.size()});
  recordOrigins(outer, invocation);
  for (const Nested& nested : outer.nested) {
    const bool isEmpty = nested.lastToken == 0;
    sink.macroInvocation({.macro = nested.macro,
                          .at = files.locateSpelling(nested.name),
                          .ppLine = start.line,
                          .ppStart = isEmpty ? start.column : nested.start,
                          .ppEnd = isEmpty ? start.column : nested.end});
  }
  waiting.pop_front();
}

void MacroTracker::recordOrigins(const Outer& outer, dm::MacroInvocation* invocation) {
  const std::string_view text = printer.getText();
  for (const Token& token : outer.tokens) {
    sink.codeOrigin(invocation, originOf(outer, token.at), token.offset,
                    token.offset + token.length, isParameterOf(outer, token.at),
                    text.substr(outer.start.offset + token.offset, token.length));
  }
}

/// Whether the token came in through an argument of the outer call itself.
bool MacroTracker::isParameterOf(const Outer& outer, clang::SourceLocation token) const {
  for (; token.isMacroID(); token = sources.getImmediateSpellingLoc(token)) {
    const clang::SrcMgr::ExpansionInfo& expansion = expansionOf(sources, token);
    if (!expansion.isMacroArgExpansion()) continue;
    const clang::SourceLocation parameter = expansion.getExpansionLocStart();
    if (parameter.isMacroID() &&
        expansionOf(sources, parameter).getExpansionLocStart() == outer.name) {
      return true;
    }
  }
  return false;
}

/// Where the token is written. Pasted tokens, strings made by # and what the compiler's own macros
/// give are written nowhere: the first two are at their operator in the macro's body, the last
/// count as predefined, or are at their name if that came in as an argument.
dm::Localization MacroTracker::originOf(const Outer& outer, clang::SourceLocation token) {
  bool isArgument = false;
  while (token.isMacroID()) {
    const clang::SrcMgr::ExpansionInfo& expansion = expansionOf(sources, token);
    isArgument |= expansion.isMacroArgExpansion();
    const clang::SourceLocation spelling = sources.getImmediateSpellingLoc(token);
    if (!sources.isWrittenInScratchSpace(spelling)) {
      token = spelling;
      continue;
    }
    const clang::SourceLocation start = expansion.getExpansionLocStart();
    const bool isNameOfCall = start == outer.name || outer.nestedByName.count(start) != 0;
    if (isNameOfCall && !isArgument) return {nullptr, 0, kinds::kPredefinedColumn};
    token = start;
    if (!isNameOfCall) return files.locateSpelling(start);
  }
  return files.locateSpelling(token);
}

}  // namespace fe_db_tools
