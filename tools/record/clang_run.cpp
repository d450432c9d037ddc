#include "clang_run.h"

#include <optional>

#include "clang/AST/ASTConsumer.h"
#include "clang/AST/ASTContext.h"
#include "clang/Basic/TargetInfo.h"
#include "clang/Basic/Version.h"
#include "clang/Frontend/CompilerInstance.h"
#include "clang/Frontend/FrontendAction.h"
#include "clang/Tooling/Tooling.h"
#include "clang_arguments.h"
#include "compiler_answer.h"
#include "file_table.h"
#include "pp_recorder.h"
#include "properties.h"
#include "unit.h"
#include "unit_diagnostics.h"
#include "watched_files.h"

namespace fe_db_tools {

namespace {

/// What one parse needs; outlives the compiler, whose preprocessor calls back until its end.
struct Parse {
  FactSink& sink;
  const Unit& unit;
  const ParseOptions& options;
  UnitDiagnostics diagnostics = {};
  std::optional<FileTable> files = {};
  std::optional<Properties> properties = {};
  std::optional<PpRecorder> preprocessing = {};
  std::string problem = {};
  bool isDone = false;
};

class RecordConsumer : public clang::ASTConsumer {
 public:
  explicit RecordConsumer(Parse& parse) : parse(parse) {}

  bool HandleTopLevelDecl(clang::DeclGroupRef group) override {
    // The error is excused, so the function is as good as any.
    for (clang::Decl* declared : group) {
      const bool isExcused = parse.diagnostics.afterImplicit.count(declared->getLocation()) != 0;
      if (isExcused) declared->setInvalidDecl(false);
    }
    return true;
  }

  void HandleTranslationUnit(clang::ASTContext& context) override {
    parse.diagnostics.settle();
    if (parse.diagnostics.getNumErrors() != 0 && !parse.options.keepGoing) return;
    parse.preprocessing->finish();
    recordAst(parse.sink, *parse.files, *parse.properties, context, parse.options.system,
              parse.options.references);
    parse.preprocessing->recordMacroValues(context);
    parse.isDone = true;
  }

 private:
  Parse& parse;
};

/// The first size that the compiler has and Clang does not share, as a reason not to record: every
/// fact that depends on it would be of another machine. Empty when there is none.
std::string differentSize(const CompilerAnswer& answer, const clang::TargetInfo& target) {
  const std::pair<std::string, std::uint64_t> sizes[] = {
      {"SHORT", target.getShortWidth()},
      {"INT", target.getIntWidth()},
      {"LONG", target.getLongWidth()},
      {"LONG_LONG", target.getLongLongWidth()},
      {"POINTER", target.getTypeWidth(target.getIntPtrType())},
      {"FLOAT", target.getFloatWidth()},
      {"DOUBLE", target.getDoubleWidth()},
      {"LONG_DOUBLE", target.getLongDoubleWidth()},
      {"WCHAR_T", target.getWCharWidth()}};
  for (const auto& [type, bits] : sizes) {
    const std::string start = "__SIZEOF_" + type + "__ ";
    for (const std::string& macro : answer.macros) {
      if (!macro.starts_with(start)) continue;
      const std::string own = std::to_string(bits / 8);
      if (macro.substr(start.size()) == own) break;
      return start + "is " + macro.substr(start.size()) + " for the compiler and " + own +
             " for Clang; give Clang the option that makes them equal with --extra-arg";
    }
  }
  return {};
}

class RecordAction : public clang::ASTFrontendAction {
 public:
  explicit RecordAction(Parse& parse) : parse(parse) {}

 protected:
  std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance& compiler,
                                                        llvm::StringRef) override {
    if (parse.unit.answer) {
      parse.problem = differentSize(*parse.unit.answer, compiler.getTarget());
      if (!parse.problem.empty()) return nullptr;
      clang::Preprocessor& preprocessor = compiler.getPreprocessor();
      preprocessor.setPredefines(withMacrosOf(*parse.unit.answer, preprocessor.getPredefines()));
    }
    const auto language = compiler.getLangOpts().CPlusPlus ? kinds::kCpp : kinds::kC;
    parse.files.emplace(parse.sink, compiler.getSourceManager(), language);
    parse.properties.emplace(parse.sink, *parse.files, compiler.getSourceManager(),
                             compiler.getLangOpts().CPlusPlus != 0);
    parse.preprocessing.emplace(parse.sink, *parse.files, *parse.properties,
                                compiler.getPreprocessor(), parse.options.system,
                                parse.options.references);
    return std::make_unique<RecordConsumer>(parse);
  }

 private:
  Parse& parse;
};

std::string adviceOn(const std::string& missingHeader) {
  if (missingHeader.empty()) return {};
  if (missingHeader == "omp.h") {
    return "omp.h is in the package libomp-" + std::to_string(CLANG_VERSION_MAJOR) + "-dev";
  }
  return "if the build makes " + missingHeader + ", build first and then record";
}

/// Parses without writing any file that the command asks a compiler for.
class RecordFactory : public clang::tooling::FrontendActionFactory {
 public:
  explicit RecordFactory(Parse& parse) : parse(parse) {}

  std::unique_ptr<clang::FrontendAction> create() override {
    return std::make_unique<RecordAction>(parse);
  }
  bool runInvocation(std::shared_ptr<clang::CompilerInvocation> invocation,
                     clang::FileManager* files,
                     std::shared_ptr<clang::PCHContainerOperations> containers,
                     clang::DiagnosticConsumer* diagnostics) override {
    invocation->getDependencyOutputOpts() = clang::DependencyOutputOptions();
    invocation->getDiagnosticOpts().DiagnosticLogFile.clear();
    invocation->getDiagnosticOpts().DiagnosticSerializationFile.clear();
    invocation->getFrontendOpts().StatsFile.clear();
    return FrontendActionFactory::runInvocation(std::move(invocation), files, std::move(containers),
                                                diagnostics);
  }

 private:
  Parse& parse;
};

}  // namespace

ParseResult parseAndRecord(const Unit& unit, const ParseOptions& options, FactSink& sink,
                           UnitInputs& inputs) {
  Parse parse{sink, unit, options};
  RecordFactory factory(parse);
  llvm::IntrusiveRefCntPtr<clang::FileManager> files(
      new clang::FileManager(clang::FileSystemOptions(), watchedFiles(inputs)));
  clang::tooling::ToolInvocation invocation(clangArguments(unit, options), &factory, files.get(),
                                            std::make_shared<clang::PCHContainerOperations>());
  invocation.setDiagnosticConsumer(&parse.diagnostics);
  const bool isClean = invocation.run();
  parse.diagnostics.settle();
  ParseResult result;
  result.ownNames = parse.diagnostics.ownNames;
  result.advice = adviceOn(parse.diagnostics.missingHeader);
  result.problem = parse.problem;
  if (!parse.diagnostics.unknownTarget.empty()) {
    result.problem = "Clang has no target " + parse.diagnostics.unknownTarget;
  }
  if (!parse.isDone || !result.ownNames.empty() || (!isClean && !options.keepGoing)) {
    if (result.problem.empty()) parse.diagnostics.printKeptUnlessInSource();
    return result;
  }
  result.preprocessedText = parse.preprocessing->preprocessedText();
  result.outcome = isClean ? ParseOutcome::whole : ParseOutcome::withErrors;
  return result;
}

}  // namespace fe_db_tools
