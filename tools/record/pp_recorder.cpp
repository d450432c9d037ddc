#include "pp_recorder.h"

#include <cstring>
#include <utility>

#include "clang/Basic/Version.h"
#include "clang/Lex/HeaderSearch.h"
#include "clang/Lex/MacroArgs.h"
#include "clang/Lex/MacroInfo.h"
#include "clang/Lex/PPCallbacks.h"
#include "clang/Lex/Preprocessor.h"
#include "file_table.h"
#include "include_table.h"
#include "llvm/Support/Path.h"
#include "macro_references.h"
#include "macro_table.h"
#include "macro_tracker.h"
#include "pp_printer.h"
#include "properties.h"

namespace fe_db_tools {

class PpRecorder::Impl {
 public:
  Impl(FactSink& sink, FileTable& files, Properties& properties, clang::Preprocessor& preprocessor,
       SystemFacts system, ReferenceFacts referenceFacts)
      : sink(sink),
        files(files),
        properties(properties),
        system(system),
        hasReferences(referenceFacts == ReferenceFacts::all),
        preprocessor(preprocessor),
        sources(preprocessor.getSourceManager()),
        printer(preprocessor),
        macros(sink, files, preprocessor),
        tracker(sink, files, preprocessor, printer) {}

  void token(const clang::Token& token);
  bool isFromPredefines(const clang::Token& token);
  bool isNextToIncluder(clang::SourceLocation directive, llvm::StringRef directory) const;

  FactSink& sink;
  FileTable& files;
  Properties& properties;
  const SystemFacts system;
  const bool hasReferences;
  const clang::Preprocessor& preprocessor;
  const clang::SourceManager& sources;
  IncludeTable includes;
  MacroReferences references;
  PpPrinter printer;
  MacroTable macros;
  MacroTracker tracker;
  bool isInText = false;       ///< tokens of the buffer of predefined macros come first
  bool isFinished = false;     ///< what is expanded now is no part of the unit
  bool isStartOfLine = false;  ///< kept over tokens that are not printed
};

namespace {

/// Prints the token unless it belongs to the predefined macros. Clang marks the tokens that it
/// invents; their pragmas have been printed.
bool isPrinted(const clang::Token& token) {
  return token.isNot(clang::tok::eof) && token.isNot(clang::tok::eod) && !token.isAnnotation();
}

}  // namespace

bool PpRecorder::Impl::isFromPredefines(const clang::Token& token) {
  if (isInText) return false;
  if (token.getLocation().isFileID()) {
    const clang::PresumedLoc presumed = sources.getPresumedLoc(token.getLocation());
    if (presumed.isValid() && std::strcmp(presumed.getFilename(), "<built-in>") == 0) return true;
  }
  isInText = true;
  return false;
}

void PpRecorder::Impl::token(const clang::Token& token) {
  isStartOfLine = isStartOfLine || token.isAtStartOfLine();
  if (!isPrinted(token) || isFromPredefines(token)) return;
  const clang::SourceLocation at = token.getLocation();
  const bool continues = tracker.continues(at);
  if (!continues) tracker.leave(at);
  printer.spaceBefore(token, /*onSameLine=*/continues || !isStartOfLine);
  if (!continues) tracker.addToken(at);
  isStartOfLine = false;
  const PpPrinter::Place start = printer.place();
  printer.print(token);
  tracker.printed(at, start);
}

/// Whether a header in quotes was found in the directory of the file that includes it, which is
/// searched before all others.
bool PpRecorder::Impl::isNextToIncluder(clang::SourceLocation directive,
                                        llvm::StringRef directory) const {
  const auto includer = sources.getFileEntryRefForID(sources.getFileID(directive));
  // The command line includes from the working directory.
  return directory == (includer ? includer->getDir().getName() : llvm::StringRef("."));
}

namespace {

#if CLANG_VERSION_MAJOR >= 15
const clang::FileEntry* fileOf(const clang::OptionalFileEntryRef& file) {
  return file ? &file->getFileEntry() : nullptr;
}
#else
const clang::FileEntry* fileOf(const clang::FileEntry* file) { return file; }
#endif

template <class Impl>
class Callbacks : public clang::PPCallbacks {
 public:
  explicit Callbacks(Impl& impl) : impl(impl) {}

  void FileChanged(clang::SourceLocation at, FileChangeReason reason,
                   clang::SrcMgr::CharacteristicKind kind, clang::FileID) override {
    impl.tracker.flush();
    const clang::FileID file = impl.sources.getFileID(impl.sources.getFileLoc(at));
    if (reason == EnterFile) entered(file);
    impl.printer.fileChanged(at, reason, kind);
  }

#if CLANG_VERSION_MAJOR >= 19
  void InclusionDirective(clang::SourceLocation at, const clang::Token& word, llvm::StringRef name,
                          bool isAngled, clang::CharSourceRange range,
                          clang::OptionalFileEntryRef header, llvm::StringRef directory,
                          llvm::StringRef, const clang::Module*, bool,
                          clang::SrcMgr::CharacteristicKind) override {
#elif CLANG_VERSION_MAJOR >= 15
  void InclusionDirective(clang::SourceLocation at, const clang::Token& word, llvm::StringRef name,
                          bool isAngled, clang::CharSourceRange range,
                          clang::OptionalFileEntryRef header, llvm::StringRef directory,
                          llvm::StringRef, const clang::Module*,
                          clang::SrcMgr::CharacteristicKind) override {
#else
  void InclusionDirective(clang::SourceLocation at, const clang::Token& word, llvm::StringRef name,
                          bool isAngled, clang::CharSourceRange range,
                          const clang::FileEntry* header, llvm::StringRef directory,
                          llvm::StringRef, const clang::Module*,
                          clang::SrcMgr::CharacteristicKind) override {
#endif
    const clang::FileEntry* file = fileOf(header);
    if (file == nullptr) return;
    const bool isByDirectory =
        !llvm::sys::path::is_absolute(name) && (isAngled || !impl.isNextToIncluder(at, directory));
    impl.files.included(at, *file, isByDirectory && wasFoundInSystemDirectory(header));
    impl.includes.add(at, word, range.getBegin(), isAngled, *file);
  }

  void SourceRangeSkipped(clang::SourceRange range, clang::SourceLocation end) override {
    impl.properties.excludedText().skipped(impl.sources, range.getBegin(), end);
  }

  void PragmaDirective(clang::SourceLocation at, clang::PragmaIntroducerKind introducer) override {
    // A _Pragma may be in the middle of an expansion.
    if (introducer != clang::PIK_HashPragma) return;
    impl.tracker.flush();
    impl.printer.pragma(at);
  }

  void Ident(clang::SourceLocation at, llvm::StringRef text) override {
    impl.tracker.flush();
    impl.printer.ident(at, {text.data(), text.size()});
  }

  void MacroDefined(const clang::Token& name, const clang::MacroDirective* directive) override {
    impl.macros.macro(*name.getIdentifierInfo(), *directive->getMacroInfo());
    const auto* before = llvm::dyn_cast_or_null<clang::DefMacroDirective>(directive->getPrevious());
    if (before != nullptr) impl.macros.ends(*name.getIdentifierInfo(), *before->getInfo());
  }

  void MacroUndefined(const clang::Token& name, const clang::MacroDefinition& definition,
                      const clang::MacroDirective*) override {
    if (const clang::MacroInfo* known = definition.getMacroInfo()) {
      impl.macros.undefined(*name.getIdentifierInfo(), *known);
      note(name, *known, Roles::Conditional);
    }
  }

  void MacroExpands(const clang::Token& name, const clang::MacroDefinition& definition,
                    clang::SourceRange range, const clang::MacroArgs*) override {
    if (impl.isFinished) return;
    // An operator, whatever Clang makes of it.
    if (name.getIdentifierInfo()->isStr("_Pragma")) return;
    const bool isAsked = impl.preprocessor.isParsingIfOrElifDirective();
    if (dm::Macro* macro =
            refer(name, definition, isAsked ? Roles::Conditional : Roles::Expansion)) {
      impl.tracker.expands(macro, name.getLocation(), range);
    }
  }

  void Defined(const clang::Token& name, const clang::MacroDefinition& definition,
               clang::SourceRange) override {
    refer(name, definition, Roles::Conditional);
  }
  void Ifdef(clang::SourceLocation, const clang::Token& name,
             const clang::MacroDefinition& definition) override {
    refer(name, definition, Roles::Conditional);
  }
  void Ifndef(clang::SourceLocation, const clang::Token& name,
              const clang::MacroDefinition& definition) override {
    refer(name, definition, Roles::Conditional);
  }
  using clang::PPCallbacks::Elifdef;
  void Elifdef(clang::SourceLocation, const clang::Token& name,
               const clang::MacroDefinition& definition) override {
    refer(name, definition, Roles::Conditional);
  }
  using clang::PPCallbacks::Elifndef;
  void Elifndef(clang::SourceLocation, const clang::Token& name,
                const clang::MacroDefinition& definition) override {
    refer(name, definition, Roles::Conditional);
  }

 private:
  using Roles = dm::ReferenceRoles;

  void entered(clang::FileID file) {
    impl.files.file(file);
    if (const auto entry = impl.sources.getFileEntryRefForID(file)) {
      impl.properties.excludedText().entered(entry->getFileEntry(), file);
    }
  }

  /// Null for a name that is no macro there.
  dm::Macro* refer(const clang::Token& name, const clang::MacroDefinition& definition, Roles role) {
    const clang::MacroInfo* known = definition.getMacroInfo();
    if (known == nullptr) return nullptr;
    dm::Macro* macro = note(name, *known, role);
    FactSink::refer(macro);
    return macro;
  }

  /// Without counting it.
  dm::Macro* note(const clang::Token& name, const clang::MacroInfo& definition, Roles role) {
    dm::Macro* macro = impl.macros.macro(*name.getIdentifierInfo(), definition);
    if (impl.hasReferences) {
      impl.references.add(macro, definition.getDefinitionLoc(), name.getLocation(), role);
    }
    return macro;
  }

  /// Valid right after the search: `#pragma GCC system_header` in the file changes it.
  template <class HeaderFile>
  bool wasFoundInSystemDirectory(const HeaderFile& header) const {
    clang::HeaderSearch& search = impl.preprocessor.getHeaderSearchInfo();
#if CLANG_VERSION_MAJOR >= 18
    return clang::SrcMgr::isSystem(search.getFileDirFlavor(*header));
#else
    return clang::SrcMgr::isSystem(search.getFileDirFlavor(fileOf(header)));
#endif
  }

  Impl& impl;
};

}  // namespace

PpRecorder::PpRecorder(FactSink& sink, FileTable& files, Properties& properties,
                       clang::Preprocessor& preprocessor, SystemFacts system,
                       ReferenceFacts references)
    : impl(std::make_unique<Impl>(sink, files, properties, preprocessor, system, references)) {
  preprocessor.addPPCallbacks(std::make_unique<Callbacks<Impl>>(*impl));
  preprocessor.setTokenWatcher([this](const clang::Token& token) {
    if (!impl->isFinished) impl->token(token);
  });
}

PpRecorder::~PpRecorder() = default;

void PpRecorder::finish() {
  impl->tracker.flush();
  impl->printer.finish();
  impl->files.settleKinds();
  impl->includes.record(impl->sink, impl->files, impl->files.file(impl->sources.getMainFileID()));
  impl->properties.excludedText().read(impl->sources, impl->preprocessor.getLangOpts(), impl->files,
                                       impl->system);
  impl->macros.recordProperties(impl->properties);
  impl->references.record(impl->sink, impl->files, impl->system);
  impl->isFinished = true;
}

void PpRecorder::recordMacroValues(const clang::ASTContext& context) {
  impl->macros.recordValues(context);
}

const std::string& PpRecorder::preprocessedText() const { return impl->printer.getText(); }

}  // namespace fe_db_tools
