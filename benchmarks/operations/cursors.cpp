// The find operations on compilation databases of 10^4, 10^5 and 10^6 rows in each table, with the
// search indexes. One iteration is a walk from the first answer to the end, with the reading of all
// rows found: dataset and connection are new each time, and making them is not timed. A connection
// has no page in memory yet: the few rows of a large file cost about a page each, those of the
// smallest file share pages.
#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fe_db/compilation_data.h"
#include "fe_db/compilation_database.h"
#include "operations.h"
#include "search_file.h"

using namespace orvalesca::databases_merger;

namespace {

/// How the answers grow with the file. By an index one or few rows are found at the same cost in
/// each file; a scan goes through a whole table for few.
enum class Finds { One, Few, FewByScan, All };

std::int64_t rowsFound(Finds finds, std::int64_t rows) {
  if (finds == Finds::One) return 1;
  return finds == Finds::All ? rows : kFew;
}

/// The rows that per_row is counted by.
std::int64_t rowsPassed(Finds finds, std::int64_t rows) {
  return finds == Finds::FewByScan ? rows : rowsFound(finds, rows);
}

struct Cursor {
  const char* name;
  Finds finds;
  std::function<const void*(CompilationData&, bool& first)> next;
};

template <class Find, class... Argument>
Cursor cursor(const char* name, Finds finds, Find find, Argument... arguments) {
  return {name, finds,
          [=](CompilationData& data, bool& first) { return (data.*find)(arguments..., first); }};
}

Cursor minLength(const char* name, IdentifierKind kind) {
  return {name, Finds::Few, [kind](CompilationData& data, bool& first) {
            LinkageKind linkage{};
            return data.findObjectFromMinLength(kind, kRareLength, linkage, first);
          }};
}

/// No cursor, walked like one that has one answer at most.
Cursor definedFunction(const char* name, Identifier* identifier) {
  return {name, Finds::One, [identifier](CompilationData& data, bool& first) {
            return std::exchange(first, false) ? data.findExternalDefinedFunction(identifier)
                                               : nullptr;
          }};
}

std::vector<Cursor> cursors() {
  using Data = CompilationData;
  static Identifier wantedName(kWantedName, {}, /*count=*/1);
  Identifier* const name = &wantedName;
  static Type type;  // nothing is read of it but its row
  type.setId(kWantedType);
  const auto external = LinkageKind::External;
  const auto anyKind = IdentifierKind::Macro | IdentifierKind::Function;
  const auto rareKind = IdentifierKind::Function;
  const persistence::OperationKind operation{};
  const int total = kWantedCount * kFew;  // of all variables of the name
  const Finds one = Finds::One, few = Finds::Few, fewByScan = Finds::FewByScan, all = Finds::All;
  // clang-format off
  return {
      cursor("CallPoint", all, &Data::findCallPoint),
      cursor("Identifier", all, &Data::findIdentifier),
      cursor("Macro", all, &Data::findMacro),
      cursor("IdentifierFromKind", all, &Data::findIdentifierFromKind, anyKind),

      cursor("IdentifierFromKindAndCount", fewByScan, &Data::findIdentifierFromKindAndCount, rareKind, kRareCount, operation),
      cursor("CallPointWithNoEffect", fewByScan, &Data::findCallPointWithNoEffect),
      cursor("VariableFromRefCountAndLinkage/external", fewByScan, &Data::findVariableFromRefCountAndLinkage, total, external),

      cursor("EnumConstantFromIdentifier", few, &Data::findEnumConstantFromIdentifier, name),
      cursor("ExternalIdentifierFromIdentifier", few, &Data::findExternalIdentifierFromIdentifier, name),
      cursor("FieldFromIdentifier", few, &Data::findFieldFromIdentifier, name),
      cursor("FunctionFromIdentifier", few, &Data::findFunctionFromIdentifier, name),
      cursor("FunctionFromIdentifierAndLinkage", few, &Data::findFunctionFromIdentifierAndLinkage, name, external),
      cursor("LabelFromIdentifier", few, &Data::findLabelFromIdentifier, name),
      cursor("MacroFromIdentifier", few, &Data::findMacroFromIdentifier, name),
      cursor("TypeFromIdentifier", few, &Data::findTypeFromIdentifier, name),
      cursor("TypeFromIdentifierAndKind", few, &Data::findTypeFromIdentifierAndKind, name, TypeKind::Tagged64),
      cursor("VariableFromIdentifier", few, &Data::findVariableFromIdentifier, name),
      cursor("VariableFromIdentifierAndLinkage", few, &Data::findVariableFromIdentifierAndLinkage, name, external),

      cursor("FieldFromRefCount", few, &Data::findFieldFromRefCount, kWantedCount),
      cursor("MacroFromRefCount", few, &Data::findMacroFromRefCount, kWantedCount),
      cursor("TypeFromRefCount", few, &Data::findTypeFromRefCount, kWantedCount),
      cursor("TypeFromRefTagCount", few, &Data::findTypeFromRefTagCount, kWantedCount),
      cursor("VariableFromRefCountAndLinkage/none", few, &Data::findVariableFromRefCountAndLinkage, kRareCount, LinkageKind::None),

      minLength("ObjectFromMinLength/Type", IdentifierKind::Type),
      minLength("ObjectFromMinLength/Function", IdentifierKind::Function),
      minLength("ObjectFromMinLength/Variable", IdentifierKind::Variable),
      minLength("ObjectFromMinLength/Macro", IdentifierKind::Macro),
      minLength("ObjectFromMinLength/EnumConstant", IdentifierKind::EnumConstant),
      minLength("ObjectFromMinLength/Field", IdentifierKind::Field),
      minLength("ObjectFromMinLength/Label", IdentifierKind::Label),

      cursor("TypeReferenceFromType", one, &Data::findTypeReferenceFromType, &type),
      definedFunction("ExternalDefinedFunction", name),
  };
  // clang-format on
}

std::int64_t walk(const Cursor& cursor, CompilationData& data) {
  std::int64_t found = 0;
  bool first = true;
  while (cursor.next(data, first) != nullptr) ++found;
  return found;
}

void runCursor(benchmark::State& state, const Cursor& cursor) {
  const std::int64_t rows = state.range(0);
  const std::int64_t expected = rowsFound(cursor.finds, rows);
  const std::string path = searchFile(rows);
  std::unique_ptr<CompilationData> data;
  bool isRight = true;
  for (auto _ : state) {
    untimed(state, [&] {
      data = CompilationData::newInstance(path, "");
      isRight = data->getCompDb().quick_connect(/*readOnly=*/true) && isRight;
    });
    const std::int64_t found = walk(cursor, *data);
    untimed(state, [&] {
      isRight = found == expected && !data->getCompDb().hasFailed() && isRight;
      data.reset();
    });
  }
  const auto passed = static_cast<double>(state.iterations() * rowsPassed(cursor.finds, rows));
  state.counters["per_row"] = {passed, benchmark::Counter::kIsRate | benchmark::Counter::kInvert};
  state.counters["found"] = static_cast<double>(expected);
  if (!isRight) refuse(state, "other rows than expected");
}

}  // namespace

void registerCursorOperations() {
  for (const Cursor& cursor : cursors()) {
    for (const std::int64_t rows : {10'000, 100'000, 1'000'000}) {
      const bool isFlat = cursor.finds == Finds::One || cursor.finds == Finds::Few;
      benchmark::RegisterBenchmark((std::string("find/") + cursor.name).c_str(),
                                   [cursor](benchmark::State& state) { runCursor(state, cursor); })
          ->Arg(rows)
          ->Iterations(isFlat ? 30 : std::clamp<std::int64_t>(1'000'000 / rows, 1, 30))
          ->Unit(benchmark::kMicrosecond);
    }
  }
}
