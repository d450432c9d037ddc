#pragma once

#include "clang/AST/Type.h"
#include "fact_sink.h"
#include "llvm/ADT/DenseMap.h"

namespace clang {
class ASTContext;
class NamedDecl;
class TagDecl;
class TypedefNameDecl;
}  // namespace clang

namespace fe_db_tools {

class FileTable;
class Properties;

/// The types of the unit: each declaration of a class, structure, union, enumeration, typedef or
/// alias, and the built-in types that are used. What is instantiated from a template counts as the
/// template.
class TypeTable {
 public:
  TypeTable(FactSink& sink, FileTable& files, Properties& properties, clang::ASTContext& context)
      : sink(sink), files(files), properties(properties), context(context) {}

  /// Recorded on first sight; of a typedef with what it refers to.
  dm::Type* type(const clang::TagDecl& declaration);
  dm::Type* type(const clang::TypedefNameDecl& declaration);

  /// Null for one that is not recorded.
  dm::Type* known(const clang::TagDecl& declaration) const;

  /// The type with a name inside of pointers, references, arrays, functions. Null when there is
  /// none, as for a template's parameter.
  dm::Type* named(clang::QualType type);
  /// The class, union or alias that is a template. Null for a template's parameter.
  dm::Type* ofTemplate(clang::TemplateName name);

 private:
  dm::Type* builtin(const clang::BuiltinType& type);
  clang::QualType inside(clang::QualType type) const;
  dm::Type* add(const clang::NamedDecl& declaration, dm::TypeKind kind, bool incomplete);

  FactSink& sink;
  FileTable& files;
  Properties& properties;
  clang::ASTContext& context;
  llvm::DenseMap<const void*, dm::Type*> types;  ///< by declaration or built-in type
};

}  // namespace fe_db_tools
