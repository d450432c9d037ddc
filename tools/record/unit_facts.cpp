#include "unit_facts.h"

#include "clang/Basic/Version.h"
#include "clang_run.h"
#include "fact_sink.h"
#include "shell_words.h"
#include "unit.h"

namespace fe_db_tools {

std::string optionsText(const ParseOptions& options) {
  const std::string references =
      options.references == ReferenceFacts::all ? "references=all" : "references=none";
  return references + (options.system == SystemFacts::all ? " system=all" : " system=referenced");
}

void recordUnitFacts(FactSink& sink, const Unit& unit, const ParseOptions& options,
                     const UnitInputs& inputs) {
  sink.unit({.source = unit.sourcePath(),
             .directory = physicalPath(unit.directory, "."),
             .command = joinWords(unit.command().arguments),
             .object = unit.object,
             .name = unit.source,
             .recorder = "fe_db_record " FE_DB_VERSION " (Clang " CLANG_VERSION_STRING ")",
             .options = optionsText(options),
             .digest = inputs.digest()});
}

}  // namespace fe_db_tools
