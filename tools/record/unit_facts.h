#pragma once

#include <string>

namespace fe_db_tools {

class FactSink;
struct ParseOptions;
struct Unit;
class UnitInputs;

/// Which facts were asked for, as a Unit row says it.
std::string optionsText(const ParseOptions& options);

/// Records the unit itself and the files that it has read.
/// REQUIRES: all its other facts are recorded.
void recordUnitFacts(FactSink& sink, const Unit& unit, const ParseOptions& options,
                     const UnitInputs& inputs);

}  // namespace fe_db_tools
