#pragma once

#include <string>
#include <utility>
#include <vector>

#include "ast_recorder.h"
#include "clang/AST/TypeLoc.h"
#include "fact_sink.h"
#include "llvm/ADT/DenseSet.h"

namespace clang {
class ASTContext;
class BindingDecl;
class NamedDecl;
class TemplateName;
class TypeDecl;
class ValueDecl;
}  // namespace clang

namespace fe_db_tools {

class EntityTable;
class FileTable;
class TypeTable;

/// What the unit refers to, and where: each reference is an entity and the place that names it.
/// However many instantiations repeat a place of a template, it counts once for an entity.
class References {
  enum class Source { written, instantiation, systemInstantiation };

 public:
  References(FileTable& files, TypeTable& types, EntityTable& entities,
             const clang::ASTContext& context, SystemFacts system);

  void toValue(const clang::ValueDecl& declaration, clang::SourceLocation place);
  void toType(clang::TypeLoc at, bool byTag);
  void toTypeDeclaration(const clang::TypeDecl& declaration, clang::SourceLocation place);
  void toTemplate(clang::TemplateName name, clang::SourceLocation place);
  /// To the field, or to the function `get` and the element's type, that the name is bound to.
  void ofBinding(const clang::BindingDecl& binding);
  /// To what the linker knows by that name, which may be declared later.
  void toLinkerName(std::string name, clang::SourceLocation place);
  /// REQUIRES: called when all declarations have been recorded.
  void resolveLinkerNames();

  /// The name at the place belongs to a declaration: as the name of a type it is no reference.
  void ignoreTypeName(clang::SourceLocation place) { declaredNames.insert(place); }

  /// While one exists, references come from an instantiation of what is declared at the place.
  /// They repeat what the template has named itself, and lead to entities that only the compiler
  /// makes: neither counts. Of a system header only what it names of user files is of interest.
  class Instantiation {
   public:
    Instantiation(References& references, clang::SourceLocation pattern);
    ~Instantiation() { references.source = outer; }
    Instantiation(const Instantiation&) = delete;
    Instantiation& operator=(const Instantiation&) = delete;

   private:
    References& references;
    Source outer;
  };

 private:
  bool isOfInterest(const clang::ValueDecl& declaration) const;
  /// The declaration of a type; null for a built-in one.
  bool isTypeOfInterest(const clang::NamedDecl* declaration) const;
  bool isFirst(clang::SourceLocation place, const void* element);
  template <class Element>
  void add(Element* element, clang::SourceLocation place);

  FileTable& files;
  TypeTable& types;
  EntityTable& entities;
  SystemFacts system;
  const bool isRepeatable;  ///< in C nothing is instantiated
  Source source = Source::written;
  llvm::DenseSet<std::pair<unsigned, const void*>> seen;  ///< places and elements
  llvm::DenseSet<clang::SourceLocation> declaredNames;
  std::vector<std::pair<std::string, clang::SourceLocation>> linkerNames;
};

}  // namespace fe_db_tools
