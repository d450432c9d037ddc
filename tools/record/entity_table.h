#pragma once

#include <string_view>
#include <utility>

#include "fact_sink.h"
#include "llvm/ADT/DenseMap.h"
#include "type_table.h"
#include "unique_name.h"

namespace clang {
class EnumConstantDecl;
class FieldDecl;
class FunctionDecl;
class IdentifierInfo;
class LabelDecl;
class NamedDecl;
class ValueDecl;
class VarDecl;
}  // namespace clang

namespace fe_db_tools {

class Properties;

/// Functions, variables, fields, enum constants and labels of the unit: Clang's declarations to
/// elements of the dataset, recorded on first sight. A declaration and a definition are two
/// elements. What is instantiated from a template counts as the template.
class EntityTable {
 public:
  EntityTable(FactSink& sink, FileTable& files, TypeTable& types, Properties& properties,
              clang::ASTContext& context)
      : sink(sink), files(files), types(types), properties(properties), names(context, files) {}

  /// Null for what the compiler made without a place in the source.
  dm::Function* function(const clang::FunctionDecl& declaration);
  /// A VarDecl or one name of a structured binding. Null without a name or a file.
  dm::Variable* variable(const clang::ValueDecl& declaration);
  /// Null without a name.
  dm::Field* field(const clang::FieldDecl& declaration);
  dm::EnumConstant* enumConstant(const clang::EnumConstantDecl& declaration);
  void label(const clang::LabelDecl& declaration);

  /// The element of a function, field or label, if one of these operations has recorded it.
  dm::EntityReference known(const clang::NamedDecl& declaration);

  /// Its definition, if there is one; null for what no function() or variable() was.
  const clang::ValueDecl* withLinkerName(std::string_view name);

  /// Every function() so far. What is not written in a file has no element.
  using Functions = llvm::DenseMap<const clang::FunctionDecl*, dm::Function*>;
  const Functions& allFunctions() const { return functions; }

 private:
  const clang::FunctionDecl& writtenFunction(const clang::FunctionDecl& declaration);
  dm::Function* addFunction(const clang::FunctionDecl& declaration);
  dm::Variable* addVariable(const clang::ValueDecl& declaration);

  FactSink& sink;
  FileTable& files;
  TypeTable& types;
  Properties& properties;
  UniqueNames names;
  Functions functions;
  llvm::DenseMap<const clang::ValueDecl*, dm::Variable*> variables;
  // An instantiation has the place of its template.
  llvm::DenseMap<std::pair<unsigned, const clang::IdentifierInfo*>, dm::Field*> fields;
  llvm::DenseMap<unsigned, dm::EnumConstant*> enumConstants;
  llvm::DenseMap<const clang::LabelDecl*, dm::Label*> labels;
  llvm::DenseMap<unsigned, const clang::FunctionDecl*> lambdas;  ///< first call operators
};

}  // namespace fe_db_tools
