#include <cstdio>
#include <map>
#include <string>

#include "fe_db/compilation_data.h"
#include "fe_db/compilation_database.h"

/// A front end in small that saves what it has recorded, and prints what each save answered. Ends
/// with 0 when the last answer for both files was true.
///
///   saving_process COMPILATION_DB PREPROCESSING_DB [NAME=VALUE]...
///     unit=N   which translation unit; all have common.h, with counts of their own
///     bulk=N   functions of its own
///     tries=N  how often a save that fails is tried, in this process
///     reset=1  the ids are reset before each further try
///   and faults of its own, which have to be found:
///     sql=TEXT     run on both databases before they are saved to
///     careless=1   takes every answer for true
using namespace orvalesca::databases_merger;

namespace {

using Options = std::map<std::string, std::string>;

void recordMacros(CompilationData& data, File* header, unsigned unit) {
  Macro& macro = data.emplaceMacro("SHARED", {header, 3, 9}, true, unit + 1);
  macro.setText("(1)");
  data.emplaceMacro("PREDEFINED", {nullptr, 0, 3}, true, 1);
  data.emplaceMacroInvocation(&macro, {header, 8, 2}, {header, 20 + unit, 2, 4});
  data.emplaceMacroExpansion({header, 8, 2}, "(1)", "SHARED", 20 + unit, 2);
}

/// What several units see: counts add up, and first and last writer show.
void recordShared(CompilationData& data, unsigned unit) {
  File* header = &data.emplaceFile("common.h", FileKind{1}, {});
  recordMacros(data, header, unit);
  Type* shared = data.emplaceType("shared_t", false, {header, 1, 1}, TypeKind::Tagged4, true, 1, 1);
  Type* own = data.emplaceType("t" + std::to_string(unit), false, {header, 2, unit},
                               TypeKind::Named512, true, 1, 0);
  data.emplaceTypeReference(shared, own, true);
  data.emplaceField("field", {header, 4, 3}, true, 2);
  data.emplaceEnumConstant("CONSTANT", {header, 5, 3}, true);
  Variable* variable = data.emplaceVariable("variable", Localization{header, 6, 5}, shared, false,
                                            LinkageKind::External, true);
  variable->setRefCount(1);
  data.emplaceExternalIdentifier("variable", {EntityKind::Variable, variable}, true);
  data.emplaceFunction("shared", "shared", {header, 7, 6}, false, false,
                       static_cast<EffectKind>(unit), LinkageKind::External, true)
      ->setRefCount(5);
}

void recordOwn(CompilationData& data, unsigned unit, unsigned bulk) {
  const std::string name = "unit" + std::to_string(unit);
  File* source = &data.emplaceFile(name + ".c", FileKind{2}, {});
  Function* shared = data.getFunction("shared", {data.getFile("common.h"), 7, 6});
  for (unsigned i = 0; i <= bulk; ++i) {
    const std::string text = name + "_function" + std::to_string(i) + std::string(200, '_');
    Function* function = data.emplaceFunction(text, text, {source, i, 1}, true, false,
                                              EffectKind::Unknown, LinkageKind::None, true);
    data.emplaceCallPoint(function, shared, {source, i, 20}, false, true);
  }
  data.emplaceLabel("label", {source, 2, 1}, true);
}

class Saves {
 public:
  Saves(CompilationData& data, const Options& options) : data(data), options(options) {}

  bool toPreprocessing() {
    PreprocessingDatabase& db = data.getPpDb();
    bool hasTables = false;
    return untilTrue("pp", db, [&] {
      if (!connect(db)) return false;
      if (!hasTables) hasTables = db.addTables();
      return hasTables && data.saveToPpDB();
    });
  }
  bool toCompilation() {
    CompilationDatabase& db = data.getCompDb();
    return untilTrue("comp", db, [&] { return connect(db) && data.saveToCompDB(); });
  }

 private:
  std::string option(const char* name) const {
    const auto found = options.find(name);
    return found == options.end() ? "" : found->second;
  }
  template <class Db>
  bool connect(Db& db) {
    if (db.isConnected()) return true;
    return db.quick_connect(/*readOnly=*/false) &&
           (option("sql").empty() || db.execute(option("sql")));
  }
  template <class Db, class Save>
  bool untilTrue(const char* name, Db& db, Save save) {
    bool isSaved = false;
    for (int left = std::atoi(("0" + option("tries")).c_str()); !isSaved && left >= 0; --left) {
      isSaved = save() || !option("careless").empty();
      std::printf("%s %s\n", name, isSaved ? "true" : "false");
      std::fflush(stdout);
      if (!isSaved && !option("reset").empty()) data.resetIds(db);
    }
    return isSaved;
  }

  CompilationData& data;
  const Options& options;
};

}  // namespace

int main(int argc, char** argv) {
  Options options{{"unit", "0"}, {"bulk", "0"}};
  for (int i = 3; i < argc; ++i) {
    const std::string option = argv[i];
    const auto equals = option.find('=');
    options[option.substr(0, equals)] = option.substr(equals + 1);
  }
  const auto unit = static_cast<unsigned>(std::stoul(options["unit"]));
  CompilationData data(argv[1], argv[2]);
  data.setPropagateMacroInfo();
  data.setDataNeededForDbLink();
  recordShared(data, unit);
  recordOwn(data, unit, static_cast<unsigned>(std::stoul(options["bulk"])));
  Saves saves(data, options);
  const bool isFirstSaved = saves.toPreprocessing();
  data.resetIds(data.getPpDb());
  return saves.toCompilation() && isFirstSaved ? 0 : 1;
}
