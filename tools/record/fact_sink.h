#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "fe_db/entity_reference.h"
#include "fe_db/function.h"
#include "fe_db/localization.h"
#include "fe_db/macro.h"
#include "record_kinds.h"

namespace orvalesca::databases_merger {
class CompilationData;
class EnumConstant;
class Field;
class File;
class Label;
class MacroInvocation;
class Type;
class Variable;
}  // namespace orvalesca::databases_merger

namespace fe_db_tools {

namespace dm = orvalesca::databases_merger;

struct MacroFacts {
  std::string_view name;
  dm::Localization at;
  std::string text;  ///< replacement tokens, one blank where there was white space
  bool isObjectLike = true;
  bool isVariadic = false;
};

struct TypeFacts {
  std::string_view name;  ///< empty for an unnamed type
  dm::Localization at;
  dm::TypeKind kind{};
  bool local = false;
  bool incomplete = false;
};

struct VariableFacts {
  std::string_view name;
  dm::Localization at;
  dm::Type* type = nullptr;
  bool isDefined = false;
  dm::LinkageKind linkage{};
};

struct FunctionFacts {
  std::string_view uniqueName;
  std::string_view sourceName;
  dm::Localization at;
  bool isDefined = false;
  bool isSpecial = false;
  dm::LinkageKind linkage{};
};

/// One expansion of a macro that no other expansion contains, with its place in the preprocessed
/// text. `end` is the column after it.
struct ExpansionFacts {
  dm::Macro* macro = nullptr;
  dm::Localization at;
  unsigned ppLine = 0;
  unsigned ppStart = 0;
  unsigned ppEnd = 0;
};

/// The unit as a whole. `source`: the path of its main file.
struct UnitFacts {
  std::string source;
  std::string directory;
  std::string command;
  std::string object;  ///< empty if there is none
  std::string name;
  std::string recorder;
  std::string options;
  std::string digest;
};

/// Where facts go: the dataset, under this front end's conventions. Clang is unknown here.
///
/// Sights:   every declaration seen is an accumulating sight, so names are counted once for each.
///           References are no sights: they raise the element's own count.
/// Ownership: the dataset owns what comes back.
class FactSink {
 public:
  explicit FactSink(dm::CompilationData& data) : data(data) {}

  dm::File* file(std::string_view path, dm::FileKind kind, results_api::LanguageKind language);

  dm::Macro* macroDefined(const MacroFacts& facts);
  void macroUndefined(dm::Macro& macro);
  /// The value of one sight of the macro: the first value stays.
  static void macroValue(dm::Macro& macro, const dm::Macro::Value& value);
  dm::MacroInvocation* macroInvocation(const ExpansionFacts& facts);
  void macroExpansion(const ExpansionFacts& facts, std::string_view code, std::string_view call);
  void codeOrigin(dm::MacroInvocation* invocation, const dm::Localization& at, unsigned offset,
                  unsigned endOffset, bool isParameter, std::string_view token);

  dm::Type* type(const TypeFacts& facts);
  void typeReference(dm::Type* declared, dm::Type* referenced);
  /// Null without a file: the dataset keeps variables in the order of their positions.
  dm::Variable* variable(const VariableFacts& facts);
  dm::Function* function(const FunctionFacts& facts);
  void externalName(std::string_view name, dm::Variable* variable);
  void externalName(std::string_view name, dm::Function* function);
  dm::Field* field(std::string_view name, const dm::Localization& at);
  dm::EnumConstant* enumConstant(std::string_view name, const dm::Localization& at);
  dm::Label* label(std::string_view name, const dm::Localization& at);
  void call(dm::Function* caller, dm::Function* callee, const dm::Localization& at,
            bool isValueUsed);
  /// Whether the caller calls another function there.
  bool isOtherCall(dm::Function* caller, const dm::Function* callee,
                   const dm::Localization& at) const;

  /// With all files so far as those that it has read.
  void unit(const UnitFacts& facts);
  /// The column takes no part.
  void include(const dm::Localization& at, dm::File* included, dm::IncludeKind kind);

  /// Roles of repeats are united. Ignored without a file.
  void reference(const dm::EntityReference& entity, const dm::Localization& at,
                 dm::ReferenceRoles roles);

  /// Once for each entity.
  void property(const dm::EntityReference& entity, dm::PropertyFlags flags, dm::Type* owner,
                std::string_view scope);

  static void refer(dm::Macro* macro);
  static void refer(dm::Type* type);
  static void referByTag(dm::Type* type);
  static void refer(dm::Variable* variable);
  static void refer(dm::Function* function);
  static void refer(dm::Field* field);

 private:
  dm::CompilationData& data;
  std::vector<dm::File*> files;  ///< each once
};

}  // namespace fe_db_tools
