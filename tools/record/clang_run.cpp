#include "clang_run.h"

#include <optional>

#include "clang/AST/ASTConsumer.h"
#include "clang/AST/ASTContext.h"
#include "clang/Basic/DiagnosticOptions.h"
#include "clang/Frontend/CompilerInstance.h"
#include "clang/Frontend/FrontendAction.h"
#include "clang/Frontend/TextDiagnosticPrinter.h"
#include "clang/Tooling/Tooling.h"
#include "file_table.h"
#include "llvm/Support/raw_ostream.h"
#include "pp_recorder.h"
#include "watched_files.h"

namespace fe_db_tools {

namespace {

/// What one parse needs; outlives the compiler, whose preprocessor calls back until its end.
struct Parse {
  FactSink& sink;
  const ParseOptions& options;
  std::optional<FileTable> files;
  std::optional<PpRecorder> preprocessing;
  bool isDone = false;
};

class RecordConsumer : public clang::ASTConsumer {
 public:
  explicit RecordConsumer(Parse& parse) : parse(parse) {}

  void HandleTranslationUnit(clang::ASTContext& context) override {
    if (context.getDiagnostics().hasErrorOccurred() && !parse.options.keepGoing) return;
    parse.preprocessing->finish();
    recordAst(parse.sink, *parse.files, context, parse.options.system);
    parse.preprocessing->recordMacroValues(context);
    parse.isDone = true;
  }

 private:
  Parse& parse;
};

class RecordAction : public clang::ASTFrontendAction {
 public:
  explicit RecordAction(Parse& parse) : parse(parse) {}

 protected:
  std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance& compiler,
                                                        llvm::StringRef) override {
    const auto language = compiler.getLangOpts().CPlusPlus ? kinds::kCpp : kinds::kC;
    parse.files.emplace(parse.sink, compiler.getSourceManager(), language);
    parse.preprocessing.emplace(parse.sink, *parse.files, compiler.getPreprocessor());
    return std::make_unique<RecordConsumer>(parse);
  }

 private:
  Parse& parse;
};

/// Prints what concerns the source at once. What the driver says of flags comes before that; it is
/// kept, and of interest only when the source is never reached.
class UnitDiagnostics : public clang::DiagnosticConsumer {
 public:
  UnitDiagnostics()
      : options(new clang::DiagnosticOptions),
        keptStream(kept),
        printer(llvm::errs(), options.get()),
        keeper(keptStream, options.get()) {}

  void BeginSourceFile(const clang::LangOptions& language,
                       const clang::Preprocessor* preprocessor) override {
    isInSource = true;
    printer.BeginSourceFile(language, preprocessor);
  }
  void EndSourceFile() override { printer.EndSourceFile(); }

  void HandleDiagnostic(clang::DiagnosticsEngine::Level level,
                        const clang::Diagnostic& diagnostic) override {
    // Counts errors, and an error fails the parse: a flag unknown to Clang must not.
    if (isInSource) DiagnosticConsumer::HandleDiagnostic(level, diagnostic);
    (isInSource ? printer : keeper).HandleDiagnostic(level, diagnostic);
  }

  void printKeptUnlessInSource() {
    if (!isInSource) llvm::errs() << keptStream.str();
  }

 private:
  llvm::IntrusiveRefCntPtr<clang::DiagnosticOptions> options;
  std::string kept;
  llvm::raw_string_ostream keptStream;
  clang::TextDiagnosticPrinter printer;
  clang::TextDiagnosticPrinter keeper;
  bool isInSource = false;
};

std::vector<std::string> clangCommand(const std::vector<std::string>& arguments,
                                      const ParseOptions& options) {
  // Clang finds its surroundings from its own path: with a bare name, GCC's headers would get
  // paths that depend on the current directory.
  std::vector<std::string> command{FE_DB_RECORD_CLANG_PREFIX "/bin/clang"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  const std::string& resources = options.resourceDirectory;
  for (const char* flag : {"-fsyntax-only", "-w", "-Qunused-arguments", "-resource-dir"}) {
    command.push_back(flag);
  }
  command.push_back(resources.empty() ? FE_DB_RECORD_RESOURCE_DIR : resources);
  // Errors to newer Clang alone; the compiler that the command was written for warns.
  for (const char* leniency : {"implicit-function-declaration", "implicit-int", "int-conversion",
                               "incompatible-function-pointer-types"}) {
    command.push_back(std::string("-Wno-error=") + leniency);
  }
  return command;
}

}  // namespace

ParseResult parseAndRecord(const std::vector<std::string>& arguments, const ParseOptions& options,
                           FactSink& sink, UnitInputs& inputs, std::string& preprocessedText) {
  Parse parse{sink, options, {}, {}};
  UnitDiagnostics diagnostics;
  llvm::IntrusiveRefCntPtr<clang::FileManager> files(
      new clang::FileManager(clang::FileSystemOptions(), watchedFiles(inputs)));
  clang::tooling::ToolInvocation invocation(clangCommand(arguments, options),
                                            std::make_unique<RecordAction>(parse), files.get());
  invocation.setDiagnosticConsumer(&diagnostics);
  const bool isClean = invocation.run();
  if (!parse.isDone || (!isClean && !options.keepGoing)) {
    diagnostics.printKeptUnlessInSource();
    return ParseResult::failed;
  }
  preprocessedText = parse.preprocessing->preprocessedText();
  return isClean ? ParseResult::whole : ParseResult::withErrors;
}

}  // namespace fe_db_tools
