// A minimal front end that calls everything in the right order. It has "compiled" this unit:
//
//   1  #define SCALE 3
//   2  typedef int length;
//   3  static length side;
//   4  length scaled(length l) { return SCALE * l; }
//   5  int area(void) { return scaled(side) * side; }
//
// "embed record" saves its facts, "embed show" reads them back, "embed find" searches for one name
// without reading the rest. Reading is a separate run on purpose: a process loads each table once,
// so it records or it reads, rarely both.
#include <fe_db/compilation_data.h>
#include <fe_db/compilation_database.h>

#include <filesystem>
#include <iostream>
#include <string>

using namespace orvalesca::databases_merger;

namespace {

// File and language kinds are defined by the front end; the library only stores them.
constexpr FileKind kMainSource{1};
constexpr results_api::LanguageKind kC{1};
constexpr LinkageKind kInternal{2};

// Facts may come in any order in which referenced elements are first: the file before positions in
// it, a type before its variables. A true `accumulate` means that each occurrence counts.
void recordFacts(CompilationData& data) {
  File& file = data.emplaceFile("area.c", kMainSource, kC);
  auto at = [&file](unsigned line, unsigned column) { return Localization{&file, line, column}; };

  Macro& scale = data.emplaceMacro("SCALE", at(1, 9), /*accumulate=*/true, /*refCount=*/1);
  scale.setText("3");
  scale.setValue(std::int64_t{3});
  // The position of the use in the source, and in the preprocessed text.
  const OneLineRange inText{&file, /*line=*/4, /*startColumn=*/34, /*endColumn=*/35};
  data.emplaceMacroInvocation(&scale, at(4, 34), inText);
  data.emplaceMacroExpansion(at(4, 34), /*expandedCode=*/"3", /*macroCall=*/"SCALE", 4, 34);

  Type* length = data.emplaceType("length", /*unnamed=*/false, at(2, 13), TypeKind::Named512,
                                  /*accumulate=*/true, /*refCount=*/3, /*refTagCount=*/0);
  Variable* side = data.emplaceVariable("side", at(3, 15), length, /*isDefined=*/true, kInternal,
                                        /*accumulate=*/true);
  side->setRefCount(2);

  auto function = [&](const char* name, const Localization& where) {
    Function* made = data.emplaceFunction(name, name, where, /*isDefined=*/true,
                                          /*isSpecial=*/false, EffectKind::NoEffect,
                                          LinkageKind::External, /*accumulate=*/true);
    data.emplaceExternalIdentifier(name, {EntityKind::Function, made}, /*accumulate=*/true);
    return made;
  };
  Function* scaled = function("scaled", at(4, 8));
  Function* area = function("area", at(5, 5));
  scaled->setRefCount(1);
  data.emplaceCallPoint(area, scaled, at(5, 25), /*isValueUsed=*/true, /*accumulate=*/true);
}

bool record(const std::string& compilationPath, const std::string& preprocessingPath) {
  // One dataset per process is the usual way; newInstance() makes others.
  CompilationData::newCompilationInstanceIfNotAlreadyDone(compilationPath, preprocessingPath);
  CompilationData& data = *CompilationData::compilationDatabase();
  data.setPropagateMacroInfo();   // File, Identifier and Macro
  data.setDataNeededForDbLink();  // Type to CallPoint
  // The compilation database has to exist ("fe_db init"); the other file may be created here.
  if (!data.getCompDb().quick_connect(/*readOnly=*/false)) return false;
  if (!data.getPpDb().quick_connect(/*readOnly=*/false) || !data.getPpDb().addTables())
    return false;

  recordFacts(data);

  // A row id belongs to one database at a time, so the ids are reset between the two saves.
  bool saved = data.saveToPpDB();
  data.resetIds(data.getPpDb());
  saved = data.saveToCompDB() && saved;
  CompilationData::deleteInstance();  // closes both
  return saved;
}

bool show(const std::string& compilationPath, const std::string& preprocessingPath) {
  auto data = CompilationData::newInstance(compilationPath, preprocessingPath);
  data->setDataNeededForDbLink();
  if (!data->getCompDb().quick_connect(/*readOnly=*/true)) return false;
  if (!data->getPpDb().quick_connect(/*readOnly=*/true)) return false;
  if (!data->loadFromDB(/*fromCompDb=*/true)) return false;
  if (!data->loadMacroExpansionFromPbDB(data->getPpDb())) return false;

  data->eachMacro([](const Macro& macro) {
    std::cout << "macro " << macro.getIdentifier()->getName() << " = " << macro.getText()
              << ", used " << macro.getRefCount() << " time(s)\n";
  });
  for (const Variable& variable : data->getVariables())
    std::cout << "variable " << variable.getIdentifier()->getName() << " of type "
              << variable.getType()->getIdentifier()->getName() << '\n';
  // Positions are compared by the dataset's own File element, so it is looked up first.
  File* file = data->getFile("area.c");
  Function* area = data->getFunction("area", {file, 5, 5});
  if (CallPoint* call = data->getCallPoint({file, 5, 25}, area))
    std::cout << "area calls " << call->getCallee()->getSourceName()->getName() << " at line "
              << call->getLine() << '\n';
  const auto [first, last] = data->getMacroExpansionForLine(4);
  for (auto expansion = first; expansion != last; ++expansion)
    std::cout << expansion->getMacroCall() << " expands to " << expansion->getExpandedCode()
              << '\n';
  return true;
}

// A cursor reads only what it finds, from the database of one unit or of a thousand.
bool find(const std::string& compilationPath, const std::string& name) {
  auto data = CompilationData::newInstance(compilationPath, /*preprocessingPath=*/"");
  if (!data->getCompDb().quick_connect(/*readOnly=*/true)) return false;
  Identifier wanted(name, IdentifierKind{}, /*count=*/0);
  bool first = true;
  while (const Function* function = data->findFunctionFromIdentifier(&wanted, first)) {
    std::cout << function->getFile()->getPath() << ':' << function->getLine() << ": "
              << (function->getIsDefined() ? "definition" : "declaration") << " of " << name
              << '\n';
  }
  return !data->getCompDb().hasFailed();
}

int usage() {
  std::cerr << "usage: embed record COMPILATION_DB PREPROCESSING_DB\n"
               "       embed show COMPILATION_DB PREPROCESSING_DB\n"
               "       embed find COMPILATION_DB FUNCTION\n"
               "Create the compilation database first: fe_db init COMPILATION_DB\n";
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc == 4 ? argv[1] : "";
  if (command == "show") return show(argv[2], argv[3]) ? 0 : 1;
  if (command == "find") return find(argv[2], argv[3]) ? 0 : 1;
  if (command != "record") return usage();
  if (std::filesystem::exists(argv[3])) {
    std::cerr << "embed: " << argv[3] << " already exists: choose a new preprocessing file\n";
    return 2;
  }
  return record(argv[2], argv[3]) ? 0 : 1;
}
