#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "fe_db/compilation_data.h"

/// A program in the proportions of large C and C++ programs, made from a seed: the same seed gives
/// the same facts on every machine.
///
/// Its translation units share a pool of headers. About 85 of 100 files of a unit come out of the
/// pool: a core that every unit includes, and a choice of the rest. What a header declares is the
/// same in each unit that includes it, at the same positions; how often a unit uses it differs.
namespace fe_db_benchmarks {

using namespace orvalesca::databases_merger;

/// What one file declares. Lines run from 1; each declaration has one of its own.
struct FileFacts {
  struct MacroFact {
    std::string name, text;
    std::optional<std::int64_t> value;
  };
  struct TypeFact {
    std::string name;
    TypeKind kind;
    bool isTypedef;  ///< names the type before it
    std::vector<std::string> fields;
    std::vector<std::string> enumConstants;
  };
  struct VariableFact {
    std::string name;
    LinkageKind linkage;
  };
  struct FunctionFact {
    std::string name, symbol;  ///< as written, and as the linker knows it
    LinkageKind linkage;
    bool isDefined;
    std::uint32_t calls;  ///< in its body
    bool hasLabel;
  };

  std::string path;
  std::vector<MacroFact> macros;
  std::vector<TypeFact> types;
  std::vector<VariableFact> variables;
  std::vector<FunctionFact> functions;
};

class GeneratedProgram {
 public:
  explicit GeneratedProgram(std::uint64_t seed);

  /// A unit's files: those of the pool that it includes, then its own. Units count from 0; there is
  /// no last one.
  std::vector<FileFacts> filesOf(std::size_t unit) const;

 private:
  std::uint64_t seed;
};

/// Records a unit's facts as a front end does: each declaration once, and then its uses. Answers
/// the number of occurrences, which are calls of emplace operations.
std::size_t recordUnit(CompilationData& data, const std::vector<FileFacts>& files,
                       std::size_t unit);

}  // namespace fe_db_benchmarks
