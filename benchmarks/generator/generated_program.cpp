#include "generated_program.h"

#include <array>
#include <string_view>

namespace fe_db_benchmarks {

namespace {

constexpr std::size_t kPoolHeaders = 110;
constexpr std::size_t kCoreHeaders = 20;    ///< in every unit
constexpr std::size_t kHeaderPercent = 55;  ///< the chance of each other header to be included
constexpr std::size_t kOwnFiles = 11;       ///< the source and what it has for itself

/// How many declarations a file has, and of which sort.
constexpr std::size_t kMacros = 130;
constexpr std::size_t kTypes = 54;
constexpr std::size_t kVariables = 30;
constexpr std::size_t kFunctions = 132;

/// The splitmix64 step: spreads any number over 64 bits.
constexpr std::uint64_t mix(std::uint64_t x) {
  x += 0x9e3779b97f4a7c15u;
  x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9u;
  x = (x ^ (x >> 27)) * 0x94d049bb133111ebu;
  return x ^ (x >> 31);
}

class Random {
 public:
  explicit Random(std::uint64_t seed) : state(mix(seed)) {}

  std::size_t below(std::size_t limit) { return (state = mix(state)) % limit; }
  bool chance(std::size_t percent) { return below(100) < percent; }

 private:
  std::uint64_t state;
};

constexpr std::array<std::string_view, 24> kWords = {
    "size",  "data",   "next",  "name",  "buffer", "count",  "index", "value",
    "state", "handle", "flags", "begin", "length", "parent", "type",  "offset",
    "node",  "list",   "entry", "cache", "stream", "error",  "table", "config"};

std::string word(Random& random) { return std::string(kWords[random.below(kWords.size())]); }

/// Names of members and parameters come back all over a program, those of functions hardly ever.
std::string commonName(Random& random) {
  std::string name = word(random);
  if (random.chance(70)) name.append("_").append(word(random));
  if (random.chance(30)) name += std::to_string(random.below(40));
  return name;
}

std::string ownName(Random& random, const std::string& prefix, std::size_t number) {
  return prefix + "_" + word(random) + "_" + word(random) + "_" + std::to_string(number);
}

LinkageKind linkageOf(bool isExternal) {
  return isExternal ? LinkageKind::External : LinkageKind::None;
}

FileFacts makeFile(Random random, const std::string& path, const std::string& prefix,
                   bool isSource) {
  FileFacts file{path, {}, {}, {}, {}};
  for (std::size_t i = 0; i < kMacros; ++i) {
    FileFacts::MacroFact macro{
        ownName(random, std::string("M_").append(prefix), i), {}, std::nullopt};
    if (random.chance(60)) macro.value = static_cast<std::int64_t>(random.below(1u << 16));
    macro.text = macro.value ? std::to_string(*macro.value) : commonName(random) + "()";
    file.macros.push_back(std::move(macro));
  }
  for (std::size_t i = 0; i < kTypes; ++i) {
    FileFacts::TypeFact type{ownName(random, prefix, i) + "_t", TypeKind::Named512, false, {}, {}};
    const std::size_t sort = random.below(100);
    if (i > 0 && sort < 40) {
      type.isTypedef = true;
    } else if (sort < 90) {
      type.kind = TypeKind::Tagged64;
      for (std::size_t n = random.below(9); n > 0; --n) type.fields.push_back(commonName(random));
    } else {
      type.kind = TypeKind::Tagged128;
      for (std::size_t n = random.below(14); n > 0; --n) {
        type.enumConstants.push_back(
            ownName(random, std::string("E_").append(prefix), 100 * i + n));
      }
    }
    file.types.push_back(std::move(type));
  }
  for (std::size_t i = 0; i < kVariables; ++i) {
    const bool isExternal = random.chance(40);
    file.variables.push_back(
        {isExternal ? ownName(random, prefix, i) : commonName(random), linkageOf(isExternal)});
  }
  for (std::size_t i = 0; i < kFunctions; ++i) {
    FileFacts::FunctionFact function{
        random.chance(60) ? ownName(random, prefix, i) : commonName(random), {}, {}, {}, 0, false};
    const bool isMangled = random.chance(50);
    function.symbol =
        isMangled ? "_ZN" + prefix + std::to_string(i) + function.name + "Ev" : function.name;
    function.linkage = linkageOf(random.chance(80));
    function.isDefined = random.chance(isSource ? 70 : 25);
    if (function.isDefined) function.calls = static_cast<std::uint32_t>(random.below(7));
    function.hasLabel = function.isDefined && random.chance(4);
    file.functions.push_back(std::move(function));
  }
  return file;
}

/// Records one file; remembers the functions that later files may call.
class FileRecorder {
 public:
  FileRecorder(CompilationData& target, std::uint64_t usesSeed) : data(target), uses(usesSeed) {}

  void record(const FileFacts& facts) {
    file = &data.emplaceFile(facts.path, FileKind{2}, results_api::LanguageKind{1});
    line = 0;
    ++occurrences;
    for (const auto& macro : facts.macros) record(macro);
    types.clear();
    for (const auto& type : facts.types) record(type);
    for (const auto& variable : facts.variables) record(variable);
    functions.clear();
    for (const auto& function : facts.functions) record(function);
  }

  std::size_t occurrences = 0;

 private:
  Localization nextPlace() { return {file, ++line, 5}; }

  /// Half of what a header declares is not used at all, some of it often.
  std::size_t useCount() { return uses.chance(50) ? 0 : uses.below(6); }

  void record(const FileFacts::MacroFact& macro) {
    Identifier* name = data.emplaceIdentifier(macro.name, IdentifierKind::Macro,
                                              /*accumulate=*/true, /*count=*/1);
    const Localization at = nextPlace();
    data.emplaceMacro(name, at, macro.value ? Macro::Value(*macro.value) : Macro::Value(),
                      /*isDefined=*/true, /*accumulate=*/true, /*refCount=*/0, macro.text,
                      /*isObjectLike=*/macro.value.has_value(), /*isVariadic=*/false,
                      /*isCommandLineDefinition=*/false, /*isPredefined=*/false);
    occurrences += 2;
    for (std::size_t n = useCount(); n > 0; --n, ++occurrences) {
      data.emplaceMacro(macro.name, at, /*accumulate=*/true, /*refCount=*/1);
    }
  }

  void record(const FileFacts::TypeFact& fact) {
    const Localization at = nextPlace();
    Type* type = data.emplaceType(fact.name, /*unnamed=*/false, at, fact.kind, /*accumulate=*/true,
                                  /*refCount=*/0, /*refTagCount=*/0);
    ++occurrences;
    for (std::size_t n = useCount(); n > 0; --n, ++occurrences) {
      data.emplaceType(type->getIdentifier(), /*unnamed=*/false, at, fact.kind,
                       /*accumulate=*/true, /*refCount=*/1,
                       /*refTagCount=*/fact.kind == TypeKind::Named512 ? 0u : 1u, /*local=*/false,
                       /*incomplete=*/false);
    }
    if (fact.isTypedef) {
      data.emplaceTypeReference(type, types.back(), /*accumulate=*/true);
      ++occurrences;
    }
    for (const std::string& field : fact.fields) {
      const Localization place = nextPlace();
      for (std::size_t n = 1 + useCount(); n > 0; --n, ++occurrences) {
        data.emplaceField(field, place, /*accumulate=*/true, /*refCount=*/n == 1 ? 0 : 1);
      }
    }
    for (const std::string& constant : fact.enumConstants) {
      data.emplaceEnumConstant(constant, nextPlace(), /*accumulate=*/true);
      ++occurrences;
    }
    types.push_back(type);
  }

  void record(const FileFacts::VariableFact& fact) {
    Type* type = types[fact.name.size() % types.size()];
    const Localization at = nextPlace();
    Variable* variable = nullptr;
    for (std::size_t n = 1 + useCount(); n > 0; --n, ++occurrences) {
      variable = data.emplaceVariable(fact.name, at, type, /*isDefined=*/false, fact.linkage,
                                      /*accumulate=*/true);
    }
    recordExternal(fact.name, fact.linkage, {EntityKind::Variable, variable});
  }

  void record(const FileFacts::FunctionFact& fact) {
    const Localization at = nextPlace();
    Function* function = data.emplaceFunction(
        fact.symbol, fact.name, at, fact.isDefined, /*isSpecial=*/false,
        fact.isDefined ? EffectKind::NoEffect : EffectKind::Unknown, fact.linkage,
        /*accumulate=*/true);
    ++occurrences;
    recordExternal(fact.symbol, fact.linkage, {EntityKind::Function, function});
    functions.push_back(function);
    for (std::uint32_t call = 0; call < fact.calls; ++call, ++occurrences) {
      data.emplaceCallPoint(function, functions[(call * 7919 + line) % functions.size()],
                            nextPlace(), /*isValueUsed=*/call % 3 != 0, /*accumulate=*/true);
    }
    if (fact.hasLabel) {
      data.emplaceLabel("out", nextPlace(), /*accumulate=*/true);
      ++occurrences;
    }
  }

  void recordExternal(const std::string& name, LinkageKind linkage,
                      const EntityDescription& entity) {
    if (linkage != LinkageKind::External) return;
    data.emplaceExternalIdentifier(name, entity, /*accumulate=*/true);
    ++occurrences;
  }

  CompilationData& data;
  Random uses;
  File* file = nullptr;
  std::uint32_t line = 0;
  std::vector<Type*> types;
  std::vector<Function*> functions;
};

}  // namespace

GeneratedProgram::GeneratedProgram(std::uint64_t chosenSeed) : seed(mix(chosenSeed)) {}

std::vector<FileFacts> GeneratedProgram::filesOf(std::size_t unit) const {
  std::vector<FileFacts> files;
  Random choice(seed + unit);
  for (std::size_t i = 0; i < kPoolHeaders; ++i) {
    if (i >= kCoreHeaders && !choice.chance(kHeaderPercent)) continue;
    const std::string number = std::to_string(i);
    files.push_back(makeFile(
        Random(seed ^ mix(i)),
        "/usr/include/program/library" + std::to_string(i / 10) + "/module_" + number + ".h",
        "mod" + number, /*isSource=*/false));
  }
  const std::string number = std::to_string(unit);
  for (std::size_t i = 0; i < kOwnFiles; ++i) {
    const bool isSource = i + 1 == kOwnFiles;
    const std::string part = std::to_string(i);
    files.push_back(makeFile(Random(seed ^ mix(1'000'000 + unit * 1000 + i)),
                             "/home/build/program/src/unit_" + number +
                                 (isSource ? "/unit.cpp" : "/part_" + part + ".h"),
                             "u" + number + "p" + part, isSource));
  }
  return files;
}

std::size_t recordUnit(CompilationData& data, const std::vector<FileFacts>& files,
                       std::size_t unit) {
  FileRecorder recorder(data, unit);
  for (const FileFacts& file : files) recorder.record(file);
  return recorder.occurrences;
}

}  // namespace fe_db_benchmarks
