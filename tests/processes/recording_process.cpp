#include <sys/resource.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <map>
#include <string>

#include "fe_db/compilation_data.h"
#include "fe_db/compilation_database.h"

/// A front end in small: records a made-up translation unit and saves it into a compilation
/// database, as many of them do at once.
///
///   recording_process FILE [NAME=NUMBER]...
///     unit=N     which translation unit; shares common.h with the others
///     bulk=N     functions of its own
///     timeout=N  busy timeout in milliseconds
///     limit=N    size that no file may grow over, in bytes
///     wait=1     connects, says "ready", and goes on when its standard input ends
///     pp=1       saves into a new preprocessing database instead, then resets the ids
///     hold=1     begins a transaction, says "holding", and rolls back when its input ends
using namespace orvalesca::databases_merger;

namespace {

using Options = std::map<std::string, long>;

void limitFileSize(long bytes) {
  const rlimit limit{static_cast<rlim_t>(bytes), static_cast<rlim_t>(bytes)};
  std::signal(SIGXFSZ, SIG_IGN);
  if (setrlimit(RLIMIT_FSIZE, &limit) != 0) std::abort();
}

void waitFor(const char* said) {
  std::puts(said);
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
}

/// What several units see: counts add up; of the effect the last one written stays, of the type
/// reference the first.
void recordShared(CompilationData& data, unsigned unit) {
  File* header = &data.emplaceFile("common.h", FileKind{1}, {});
  Type* shared = data.emplaceType("shared_t", false, {header, 1, 1}, TypeKind::Tagged4, true, 1, 1);
  Type* own = data.emplaceType("t" + std::to_string(unit), false, {header, 2, unit},
                               TypeKind::Named512, true, 1, 0);
  data.emplaceTypeReference(shared, own, true);
  data.emplaceMacro("SHARED", {header, 3, 9}, true, unit + 1);
  data.emplaceMacro("PREDEFINED", {nullptr, 0, 3}, true, 1);
  data.emplaceField("field", {header, 4, 3}, true, 2);
  data.emplaceEnumConstant("CONSTANT", {header, 5, 3}, true);
  Variable* variable = data.emplaceVariable("variable", Localization{header, 6, 5}, shared, false,
                                            LinkageKind::External, true);
  variable->setRefCount(1);
  data.emplaceExternalIdentifier("variable", {EntityKind::Variable, variable}, true);
  Function* function =
      data.emplaceFunction("shared", "shared", {header, 7, 6}, false, false,
                           static_cast<EffectKind>(unit), LinkageKind::External, true);
  function->setRefCount(1);
}

void recordOwn(CompilationData& data, unsigned unit, long bulk) {
  const std::string name = "unit" + std::to_string(unit);
  File* source = &data.emplaceFile(name + ".c", FileKind{2}, {});
  Function* shared = data.getFunction("shared", {data.getFile("common.h"), 7, 6});
  for (unsigned i = 0; i <= bulk; ++i) {
    const std::string text = name + "_function" + std::to_string(i);
    Function* function = data.emplaceFunction(text, text, {source, i, 1}, true, false,
                                              EffectKind::Unknown, LinkageKind::None, true);
    data.emplaceCallPoint(function, shared, {source, i, 20}, false, true);
  }
  data.emplaceLabel("label", {source, 2, 1}, true);
}

bool saveToPpDb(const char* path) {
  CompilationData data("", path);
  recordShared(data, 0);
  PreprocessingDatabase& db = data.getPpDb();
  if (!db.quick_connect(false) || !db.addTables() || !data.saveToPpDB()) return false;
  data.resetIds(db);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  for (int i = 2; i < argc; ++i) {
    const std::string option = argv[i];
    const auto equals = option.find('=');
    options[option.substr(0, equals)] = std::stol(option.substr(equals + 1));
  }
  if (options["pp"] != 0) return saveToPpDb(argv[1]) ? 0 : 1;
  CompilationData data(argv[1], "");
  const auto unit = static_cast<unsigned>(options["unit"]);
  recordShared(data, unit);
  recordOwn(data, unit, options["bulk"]);
  CompilationDatabase& db = data.getCompDb();
  if (options.count("timeout") != 0) db.setBusyTimeout(static_cast<int>(options["timeout"]));
  if (!db.quick_connect(false)) return 1;
  if (options["hold"] != 0) {
    if (!db.beginTransaction()) return 1;
    waitFor("holding");
    return db.rollbackTransaction() ? 0 : 1;
  }
  if (options["wait"] != 0) waitFor("ready");
  if (options["limit"] != 0) limitFileSize(options["limit"]);
  std::puts("saving");
  std::fflush(stdout);
  data.setDataNeededForDbLink();
  return data.saveToCompDB() ? 0 : 1;
}
