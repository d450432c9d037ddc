// Emplace operations and look-ups in memory. The time shown is that of one operation; the argument
// is the number of elements of the class in the dataset.
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "fe_db/compilation_data.h"
#include "fe_db/compilation_database.h"
#include "operations.h"

using namespace orvalesca::databases_merger;
using benchmark::State;

namespace {

constexpr unsigned kFacts = 1 << 15;  // a large translation unit has so many of a class
constexpr unsigned kMostFiles = 1 << 16;
constexpr unsigned kLinesPerFile = 256;
constexpr auto kExternal = LinkageKind::External;

/// What has to be in the dataset before the first element of a class.
enum class Given { Nothing, Names, Types, Functions };

/// A dataset on its way. Names are made beforehand: making a string is not part of the operation.
struct Program {
  Program(Given given, unsigned facts, unsigned linesPerFile) : linesPerFile(linesPerFile) {
    for (unsigned i = 0; i <= facts / linesPerFile; ++i) {
      files.push_back(&data->emplaceFile("/usr/include/project/header_" + std::to_string(i),
                                         FileKind{2}, results_api::LanguageKind{1}));
    }
    for (unsigned i = 0; i < facts && given == Given::Names; ++i) {
      names.push_back(data->emplaceIdentifier(name(i), {}, /*accumulate=*/false, /*count=*/1));
    }
    for (unsigned i = 0; i < facts && given == Given::Types; ++i) {
      types.push_back(data->emplaceType(name(i), /*unnamed=*/false, at(i), TypeKind::Named512,
                                        /*accumulate=*/false, /*refCount=*/0, /*refTagCount=*/0));
    }
    for (unsigned i = 0; i < facts && given == Given::Functions; ++i) {
      functions.push_back(data->emplaceFunction(name(i), name(i), at(i), /*isDefined=*/true,
                                                /*isSpecial=*/false, EffectKind::Unknown, kExternal,
                                                /*accumulate=*/false));
    }
  }

  static const std::string& name(unsigned i) {
    static const std::vector<std::string> all = [] {
      std::vector<std::string> result;
      for (unsigned n = 0; n < 2 * kMostFiles; ++n) {
        result.push_back("project_module_name_" + std::to_string(n));
      }
      return result;
    }();
    return all[i];
  }
  Localization at(unsigned i) const { return {files[i / linesPerFile], i % linesPerFile + 1, 5}; }

  std::unique_ptr<CompilationData> data = CompilationData::newInstance("", "");
  unsigned linesPerFile;
  std::vector<File*> files;
  std::vector<Identifier*> names;
  std::vector<Type*> types;
  std::vector<Function*> functions;
};

/// Gives the address of the i-th element of a class, or null.
using Operation = std::function<const void*(Program&, unsigned i)>;

struct Emplace {
  const char* name;
  Given given;
  bool hasSecondSight;
  Operation add;
};

// clang-format off
const Emplace kEmplaces[] = {
    {"File", Given::Nothing, true, [](Program& p, unsigned i) { return &p.data->emplaceFile(p.name(i), FileKind{2}, results_api::LanguageKind{1}); }},
    {"Identifier", Given::Nothing, true, [](Program& p, unsigned i) { return p.data->emplaceIdentifier(p.name(i), IdentifierKind::Macro, true, 1); }},

    {"Type/by_key", Given::Names, true, [](Program& p, unsigned i) { return p.data->emplaceType(p.names[i], false, p.at(i), TypeKind::Named512, true, 1, 0, false, false); }},
    {"Variable/by_key", Given::Names, true, [](Program& p, unsigned i) { return p.data->emplaceVariable(p.names[i], p.at(i), nullptr, true, kExternal, true, 1); }},
    {"Function/by_key", Given::Names, true, [](Program& p, unsigned i) { return p.data->emplaceFunction(p.names[i], p.names[i], p.at(i), true, false, EffectKind::Unknown, kExternal, true); }},
    {"Macro/by_key", Given::Names, true, [](Program& p, unsigned i) { return &p.data->emplaceMacro(p.names[i], p.at(i), std::int64_t{1}, true, true, 1, {}, true, false, false, false); }},
    {"ExternalIdentifier/by_key", Given::Functions, true, [](Program& p, unsigned i) { return p.data->emplaceExternalIdentifier(p.functions[i]->getIdentifier(), {EntityKind::Function, p.functions[i]}, true); }},

    {"Type/by_name", Given::Nothing, true, [](Program& p, unsigned i) { return p.data->emplaceType(p.name(i), false, p.at(i), TypeKind::Named512, true, 1, 0); }},
    {"Variable/by_name", Given::Nothing, true, [](Program& p, unsigned i) { return p.data->emplaceVariable(p.name(i), p.at(i), nullptr, true, kExternal, true); }},
    {"Function/by_name", Given::Nothing, true, [](Program& p, unsigned i) { return p.data->emplaceFunction(p.name(i), p.name(i), p.at(i), true, false, EffectKind::Unknown, kExternal, true); }},
    {"Macro/by_name", Given::Nothing, true, [](Program& p, unsigned i) { return &p.data->emplaceMacro(p.name(i), p.at(i), true, 1); }},
    {"ExternalIdentifier/by_name", Given::Functions, true, [](Program& p, unsigned i) { return p.data->emplaceExternalIdentifier(p.name(i), {EntityKind::Function, p.functions[i]}, true); }},
    {"Field/by_name", Given::Nothing, true, [](Program& p, unsigned i) { return &p.data->emplaceField(p.name(i), p.at(i), true, 1); }},
    {"EnumConstant/by_name", Given::Nothing, true, [](Program& p, unsigned i) { return p.data->emplaceEnumConstant(p.name(i), p.at(i), true); }},
    {"Label/by_name", Given::Nothing, true, [](Program& p, unsigned i) { return p.data->emplaceLabel(p.name(i), p.at(i), true); }},

    {"TypeReference", Given::Types, true, [](Program& p, unsigned i) { return p.data->emplaceTypeReference(p.types[i], p.types[i / 2], true); }},
    {"CallPoint", Given::Functions, true, [](Program& p, unsigned i) { return p.data->emplaceCallPoint(p.functions[i], p.functions[i / 2], p.at(i), true, true); }},
    {"MacroInvocation", Given::Nothing, false, [](Program& p, unsigned i) { return p.data->emplaceMacroInvocation(nullptr, p.at(i), {nullptr, i, 1, 9}); }},
    {"MacroInvocationCodeOrigin", Given::Nothing, false, [](Program& p, unsigned i) { return p.data->emplaceMacroInvocationCodeOrigin(p.at(i), nullptr, 1, 9, false, "token"); }},
    {"MacroExpansion", Given::Nothing, false, [](Program& p, unsigned i) { return p.data->emplaceMacroExpansion(p.at(i), "((value) + 1)", "NEXT(value)", i, 5); }},
};

/// The second is there to compare with: it takes as much memory, and groups of one.
const Emplace kMacroOfOneName = {"Macro/one_name", Given::Names, true, [](Program& p, unsigned i) { return &p.data->emplaceMacro(p.names[0], p.at(i), {}, true, true, 1, {}, true, false, false, false); }};
const Emplace kMacroOfOwnName = {"Macro/own_name", Given::Names, true, [](Program& p, unsigned i) { return &p.data->emplaceMacro(p.names[i], p.at(i), {}, true, true, 1, {}, true, false, false, false); }};

struct LookUp {
  const char* name;
  const char* emplace;
  Given given;  // for the misses too, which differ in what they lack
  Operation get;
};

const LookUp kLookUps[] = {
    {"getFile", "File", Given::Nothing, [](Program& p, unsigned i) { return p.data->getFile(p.name(i)); }},
    {"getIdentifier", "Identifier", Given::Nothing, [](Program& p, unsigned i) { return p.data->getIdentifier(p.name(i)); }},
    {"getType", "Type/by_key", Given::Names, [](Program& p, unsigned i) { return p.data->getType(p.at(i), p.names[i]); }},
    {"getField", "Field/by_name", Given::Names, [](Program& p, unsigned i) { return p.data->getField(p.at(i), p.names[i]); }},
    {"getEnumConstant", "EnumConstant/by_name", Given::Names, [](Program& p, unsigned i) { return p.data->getEnumConstant(p.at(i), p.names[i]); }},
    {"getLabel", "Label/by_name", Given::Names, [](Program& p, unsigned i) { return p.data->getLabel(p.at(i), p.names[i]); }},
    {"getCallPoint", "CallPoint", Given::Functions, [](Program& p, unsigned i) { return p.data->getCallPoint(p.at(i), p.functions[i]); }},
    {"getVariable", "Variable/by_key", Given::Names, [](Program& p, unsigned i) { return p.data->getVariable(p.at(i), p.names[i]); }},
    {"getFunction", "Function/by_key", Given::Names, [](Program& p, unsigned i) { return p.data->getFunction(p.name(i), p.at(i)); }},
    {"getTypeReference", "TypeReference", Given::Types, [](Program& p, unsigned i) { return p.data->getTypeReference(p.types[i]); }},
    {"getMacro", "Macro/by_key", Given::Names, [](Program& p, unsigned i) { return p.data->getMacro(p.names[i]); }},
    {"getMacro/at", "Macro/by_key", Given::Names, [](Program& p, unsigned i) { return p.data->getMacro(p.names[i], p.at(i)); }},
    {"getaMacroWithValue", "Macro/by_key", Given::Names, [](Program& p, unsigned i) { return p.data->getaMacroWithValue(p.name(i)); }},
    {"getMacroInvocationForLine", "MacroInvocation", Given::Nothing, [](Program& p, unsigned i) { const auto [from, to] = p.data->getMacroInvocationForLine(i); return from == to ? nullptr : &*from; }},
};

const LookUp kGetMacroOfOneName = {"getMacro/one_name", "", Given::Names, [](Program& p, unsigned i) { return p.data->getMacro(p.names[0], p.at(i)); }};
// clang-format on

std::size_t allocatedBytes() {
  const auto info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

unsigned factsOf(const State& state) { return static_cast<unsigned>(state.range(0)); }

std::vector<const void*> addAll(const Emplace& emplace, Program& program, unsigned facts) {
  std::vector<const void*> seen;
  for (unsigned i = 0; i < facts; ++i) seen.push_back(emplace.add(program, i));
  return seen;
}

/// A new dataset for each batch.
void firstSights(State& state, const Emplace& emplace, unsigned linesPerFile) {
  const unsigned facts = factsOf(state);
  std::vector<const void*> made(facts);
  std::unique_ptr<Program> program;
  std::size_t bytes = 0;
  bool areElements = true;
  while (state.KeepRunningBatch(facts)) {
    untimed(state, [&] {
      program = std::make_unique<Program>(emplace.given, facts, linesPerFile);
      bytes = allocatedBytes();
    });
    for (unsigned i = 0; i < facts; ++i) made[i] = emplace.add(*program, i);
    untimed(state, [&] {
      bytes = allocatedBytes() - bytes;
      program.reset();
      std::sort(made.begin(), made.end());
      areElements = made.front() != nullptr && areElements &&
                    std::adjacent_find(made.begin(), made.end()) == made.end();
    });
  }
  state.SetItemsProcessed(state.iterations());
  state.SetComplexityN(facts);
  state.counters["bytes"] = static_cast<double>(bytes) / facts;
  if (!areElements) refuse(state, "a first occurrence has made no element");
}

/// In the order of the first occurrences, as in a second pass over the same headers: memory is read
/// nearly in sequence. Nothing new may be left in it by the end.
void timeAll(State& state, const Operation& operation, Program& program, unsigned from) {
  const unsigned facts = factsOf(state);
  const std::size_t bytes = allocatedBytes();
  while (state.KeepRunningBatch(facts)) {
    for (unsigned i = 0; i < facts; ++i) benchmark::DoNotOptimize(operation(program, from + i));
  }
  if (allocatedBytes() != bytes) refuse(state, "an element has been made");
  state.SetItemsProcessed(state.iterations());
  state.SetComplexityN(facts);
}

void secondSights(State& state, const Emplace& emplace, unsigned linesPerFile) {
  const unsigned facts = factsOf(state);
  Program program(emplace.given, facts, linesPerFile);
  const std::vector<const void*> made = addAll(emplace, program, facts);
  timeAll(state, emplace.add, program, /*from=*/0);
  if (addAll(emplace, program, facts) != made) refuse(state, "a repeat is another element");
}

/// Misses are asked for what the second half of the names and places would have.
void lookUps(State& state, const LookUp& lookUp, const Emplace& emplace, bool hit,
             unsigned linesPerFile) {
  const unsigned facts = factsOf(state);
  Program program(lookUp.given, 2 * facts, linesPerFile);
  const std::vector<const void*> made = addAll(emplace, program, facts);
  timeAll(state, lookUp.get, program, /*from=*/hit ? 0 : facts);
  for (unsigned i = 0; i < facts; ++i) {
    const void* expected = hit ? made[i] : nullptr;
    if (lookUp.get(program, hit ? i : facts + i) != expected) refuse(state, "a wrong answer");
  }
}

using benchmark::RegisterBenchmark;
using Sizes = void (*)(benchmark::internal::Benchmark*);

void oneUnit(benchmark::internal::Benchmark* each) { each->Arg(kFacts); }

void manyFiles(benchmark::internal::Benchmark* each) {
  each->RangeMultiplier(2)->Range(1 << 10, kMostFiles)->Complexity();
}

void registerSights(const Emplace& emplace, unsigned linesPerFile, Sizes sizes) {
  const std::string name = emplace.name;
  const auto first = [&, linesPerFile](State& s) { firstSights(s, emplace, linesPerFile); };
  RegisterBenchmark(("first_sight/" + name).c_str(), first)->Apply(sizes);
  if (!emplace.hasSecondSight) return;
  const auto second = [&, linesPerFile](State& s) { secondSights(s, emplace, linesPerFile); };
  RegisterBenchmark(("second_sight/" + name).c_str(), second)->Apply(sizes);
}

void registerLookUps(const LookUp& lookUp, const Emplace& emplace, unsigned linesPerFile,
                     Sizes sizes) {
  for (const bool hit : {true, false}) {
    const std::string name = std::string("look_up/") + lookUp.name + (hit ? "/hit" : "/miss");
    const auto run = [&, hit, linesPerFile](State& s) {
      lookUps(s, lookUp, emplace, hit, linesPerFile);
    };
    RegisterBenchmark(name.c_str(), run)->Apply(sizes);
  }
}

const Emplace& emplaceOf(const LookUp& lookUp) {
  return *std::find_if(std::begin(kEmplaces), std::end(kEmplaces), [&](const Emplace& emplace) {
    return std::string(emplace.name) == lookUp.emplace;
  });
}

}  // namespace

void registerDatasetOperations() {
  for (const Emplace& emplace : kEmplaces) registerSights(emplace, kLinesPerFile, oneUnit);
  for (const LookUp& lookUp : kLookUps) {
    registerLookUps(lookUp, emplaceOf(lookUp), kLinesPerFile, oneUnit);
  }
  // One macro name that is defined once in each of many files.
  registerSights(kMacroOfOneName, /*linesPerFile=*/1, manyFiles);
  registerSights(kMacroOfOwnName, /*linesPerFile=*/1, manyFiles);
  registerLookUps(kGetMacroOfOneName, kMacroOfOneName, /*linesPerFile=*/1, manyFiles);
}
