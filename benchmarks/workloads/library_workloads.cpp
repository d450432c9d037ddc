#include "library_workloads.h"

#include <stdexcept>

#include "compilation_schema.h"
#include "fe_db/compilation_data_merger.h"
#include "fe_db/compilation_database.h"
#include "generated_program.h"

namespace fe_db_benchmarks {

namespace {

void expect(bool done, const std::string& path, const char* what) {
  if (!done) throw std::runtime_error(path + ": " + what);
}

void add(Spent& sum, const Spent& one) {
  sum.cpu += one.cpu;
  sum.wall += one.wall;
}

void openAndLoad(CompilationDataMerger& merger, const std::string& path, Merged& result) {
  add(result.load, runMeasured([&] {
        const CompilationDatabase& database = merger.openDB();
        expect(database.isConnected(), path, "cannot connect");
        merger.loadDataFromDB();
        expect(!database.hasFailed(), path, "cannot be read");
      }));
}

}  // namespace

Recorded recordAndSave(std::uint64_t seed, std::size_t unit, const std::string& path, bool fresh) {
  const std::vector<FileFacts> files = GeneratedProgram(seed).filesOf(unit);
  const std::size_t rowsBefore = fresh ? 0 : fe_db_tools::countRows(path);
  persistence::GenericElement::setOptimisticInsert(fresh);
  const auto data = CompilationData::newInstance(path, "");
  data->setDataNeededForDbLink();
  Recorded result;
  result.record = runMeasured([&] { result.occurrences = recordUnit(*data, files, unit); });
  expect(data->getCompDb().quick_connect(/*readOnly=*/false), path, "cannot connect");
  result.save = runMeasured([&] { expect(data->saveToCompDB(), path, "the save failed"); });
  data->getCompDb().disconnect();
  result.rows = fe_db_tools::countRows(path) - rowsBefore;
  return result;
}

Spent emplaceRepeats(const std::string& kind, std::size_t count) {
  constexpr std::size_t kElements = 1000;
  const auto data = CompilationData::newInstance("", "");
  File& file =
      data->emplaceFile("/usr/include/program/module.h", FileKind{}, results_api::LanguageKind{});
  std::vector<std::string> texts;
  std::vector<Identifier*> names;
  for (std::size_t i = 0; i < kElements; ++i) {
    texts.push_back("module_some_name_" + std::to_string(i));
    names.push_back(data->emplaceIdentifier(texts.back(), IdentifierKind::Type,
                                            /*accumulate=*/true, /*count=*/1));
  }
  const std::string text = "1";
  const auto placeOf = [&](std::size_t i) {
    return Localization{&file, static_cast<std::uint32_t>(i + 1), 5};
  };
  // A loop for each kind, so that it contains only the operation itself.
  const auto repeat = [&](auto emplace) {
    for (std::size_t i = 0; i < kElements; ++i) emplace(i);
    return runMeasured([&] {
      for (std::size_t i = 0; i < count; ++i) emplace(i % kElements);
    });
  };
  if (kind == "type by key") {
    return repeat([&](std::size_t i) {
      data->emplaceType(names[i], /*unnamed=*/false, placeOf(i), TypeKind::Named512,
                        /*accumulate=*/true, /*refCount=*/1, /*refTagCount=*/0, /*local=*/false,
                        /*incomplete=*/false);
    });
  }
  if (kind == "type by name") {
    return repeat([&](std::size_t i) {
      data->emplaceType(texts[i], /*unnamed=*/false, placeOf(i), TypeKind::Named512,
                        /*accumulate=*/true, /*refCount=*/1, /*refTagCount=*/0);
    });
  }
  if (kind == "variable by key") {
    return repeat([&](std::size_t i) {
      data->emplaceVariable(names[i], placeOf(i), /*type=*/nullptr, /*isDefined=*/false,
                            LinkageKind::None, /*accumulate=*/true, /*refCount=*/1);
    });
  }
  if (kind == "macro by key") {
    return repeat([&](std::size_t i) {
      data->emplaceMacro(names[i], placeOf(i), Macro::Value(), /*isDefined=*/true,
                         /*accumulate=*/true, /*refCount=*/1, text, /*isObjectLike=*/true,
                         /*isVariadic=*/false, /*isCommandLineDefinition=*/false,
                         /*isPredefined=*/false);
    });
  }
  throw std::runtime_error("unknown kind of repeat: " + kind);
}

Merged load(const std::vector<std::string>& sources) {
  Merged result;
  for (const std::string& path : sources) {
    CompilationDataMerger source(path);
    openAndLoad(source, path, result);
  }
  for (const std::string& path : sources) result.rowsIn += fe_db_tools::countRows(path);
  return result;
}

Merged merge(const std::string& target, const std::vector<std::string>& sources) {
  Merged result;
  CompilationDataMerger merger(target);
  openAndLoad(merger, target, result);
  for (const std::string& path : sources) {
    CompilationDataMerger source(path);
    openAndLoad(source, path, result);
    source.closeDB();
    add(result.fold, runMeasured([&] { merger.mergeCompilationTables(source); }));
  }
  CompilationDatabase& database = merger.openDB();
  result.write = runMeasured([&] {
    merger.beginTransaction();
    merger.truncateDataFromDB();
    merger.saveToDB();
    expect(database.commitTransaction(), target, "the commit failed");
  });
  merger.closeDB();
  for (const std::string& path : sources) result.rowsIn += fe_db_tools::countRows(path);
  result.rowsOut = fe_db_tools::countRows(target);
  return result;
}

}  // namespace fe_db_benchmarks
