#include "unit_recorder.h"

#include <cstdio>
#include <stdexcept>

#include "compilation_schema.h"
#include "fact_sink.h"
#include "fe_db/compilation_data.h"
#include "fe_db/compilation_database.h"
#include "unit_facts.h"
#include "unit_output.h"

namespace fe_db_tools {

namespace {

[[noreturn]] void fail(const persistence::Database& database) {
  const persistence::Failure& failure = database.lastFailure();
  std::string reason = failure.reason.empty() ? "see above" : failure.reason;
  if (!failure.table.empty()) reason = failure.table + ": " + reason;
  throw std::runtime_error(database.getPath() + ": cannot be written (" + reason +
                           "); make room or choose another directory");
}

void check(bool isDone, const persistence::Database& database) {
  if (!isDone || database.hasFailed() || !database.lastFailure().reason.empty()) fail(database);
}

/// Nobody gets to see the files before they are whole and synchronised, once, in the end. Until
/// then there is nothing that SQLite would have to bring back after a power failure.
void leaveSyncingToTheEnd(persistence::Database& database) {
  check(database.execute("PRAGMA synchronous=OFF; PRAGMA journal_mode=MEMORY"), database);
}

void save(dm::CompilationData& data, const UnitOutput& output) {
  dm::PreprocessingDatabase& preprocessing = data.getPpDb();
  dm::CompilationDatabase& compilation = data.getCompDb();
  data.setDataNeededForDbLink();
  data.setPropagateMacroInfo();
  check(preprocessing.quick_connect(/*readOnly=*/false), preprocessing);
  leaveSyncingToTheEnd(preprocessing);
  check(preprocessing.addTables(), preprocessing);
  check(data.saveToPpDB(), preprocessing);
  preprocessing.disconnect();

  data.resetIds(preprocessing);
  output.write(".comp.db", emptyCompilationDatabase(KeyIndexes::no));
  check(compilation.quick_connect(/*readOnly=*/false), compilation);
  leaveSyncingToTheEnd(compilation);
  check(data.saveToCompDB(), compilation);
  compilation.disconnect();
}

void reportFailed(const Unit& unit, const ParseResult& result) {
  std::string reason = result.problem.empty() ? "does not parse" : result.problem;
  reason += "; nothing of it is recorded";
  if (!result.advice.empty()) reason += "; " + result.advice;
  std::fprintf(stderr, "fe_db_record: %s: %s\n", unit.sourcePath().c_str(), reason.c_str());
}

}  // namespace

bool recordUnit(const Unit& unit, const RecordOptions& options) {
  // Only this process writes the files, and they are new: no row is there to be looked for.
  persistence::GenericElement::setOptimisticInsert(true);
  UnitOutput output(options.outputDirectory, options.nameOf(unit), options.keepPreprocessed);
  std::unique_ptr<dm::CompilationData> data;
  UnitInputs inputs;
  ParseOptions parseOptions = options.parse;
  const auto parse = [&] {
    data = dm::CompilationData::newInstance(output.compilation(), output.preprocessing());
    FactSink sink(*data);
    ParseResult parsed = parseAndRecord(unit, parseOptions, sink, inputs);
    recordUnitFacts(sink, unit, options.parse, inputs);
    return parsed;
  };
  ParseResult result = parse();
  if (!result.ownNames.empty()) {
    for (const std::string& name : result.ownNames) {
      parseOptions.extraArguments.push_back("-fno-builtin-" + name);
    }
    result = parse();
  }
  if (result.outcome == ParseOutcome::failed) {
    reportFailed(unit, result);
    output.begin();
    output.removePublished();
    return false;
  }
  try {
    output.begin();
    save(*data, output);
    if (options.keepPreprocessed) output.write(".i", result.preprocessedText);
    // Without a manifest a unit with errors is never taken for one that need not be recorded.
    if (result.outcome == ParseOutcome::whole) {
      const std::size_t facts = countRows(output.compilation());
      const std::string manifest = manifestText(unit, options, facts, inputs);
      if (!manifest.empty()) output.write(".manifest", manifest);
    }
    output.publish();
  } catch (const std::runtime_error& error) {
    std::fprintf(stderr, "fe_db_record: %s\n", error.what());
    return false;
  }
  if (result.outcome == ParseOutcome::whole) return true;
  std::fprintf(stderr, "fe_db_record: %s: has errors; what could be recorded is saved\n",
               unit.sourcePath().c_str());
  return false;
}

}  // namespace fe_db_tools
