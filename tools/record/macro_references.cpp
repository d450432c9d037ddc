#include "macro_references.h"

#include "file_table.h"

namespace fe_db_tools {

void MacroReferences::record(FactSink& sink, FileTable& files, SystemFacts system) {
  for (const Seen& reference : seen) {
    const WrittenPlace place = files.written(reference.place);
    if (system == SystemFacts::referenced && files.isInSystemHeader(place.at)) {
      const bool isProjects = reference.macro->getLocalization().file != nullptr &&
                              !files.isInSystemHeader(reference.definition);
      if (!isProjects) continue;
    }
    const dm::ReferenceRoles way =
        place.isThroughBody ? dm::ReferenceRoles::ThroughMacroBody : dm::ReferenceRoles::None;
    sink.reference(reference.macro, files.locate(place.at), reference.roles | way);
  }
  seen = {};
}

}  // namespace fe_db_tools
