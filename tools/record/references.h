#pragma once

#include <string>
#include <utility>
#include <vector>

#include "clang/AST/TypeLoc.h"
#include "fact_sink.h"
#include "llvm/ADT/DenseSet.h"

namespace clang {
class ASTContext;
class BindingDecl;
class TemplateName;
class ValueDecl;
}  // namespace clang

namespace fe_db_tools {

class EntityTable;
class FileTable;
class TypeTable;

/// What the unit refers to, and where: each reference is an entity and the place that names it.
/// However many instantiations repeat a place of a template, it counts once for an entity.
class References {
 public:
  References(FileTable& files, TypeTable& types, EntityTable& entities,
             const clang::ASTContext& context);

  void toValue(const clang::ValueDecl& declaration, clang::SourceLocation place);
  void toType(clang::TypeLoc at, bool byTag);
  void toTemplate(clang::TemplateName name, clang::SourceLocation place);
  /// To the field, or to the function `get` and the element's type, that the name is bound to.
  void ofBinding(const clang::BindingDecl& binding);
  /// To what the linker knows by that name, which may be declared later.
  void toLinkerName(std::string name, clang::SourceLocation place);
  /// REQUIRES: called when all declarations have been recorded.
  void resolveLinkerNames();

  /// The name at the place belongs to a declaration: as the name of a type it is no reference.
  void ignoreTypeName(clang::SourceLocation place) { declaredNames.insert(place); }

  /// What the following references come from.
  enum class Source {
    written,
    instantiation,  ///< repeats what the template has named; compiler-made entities are skipped
    systemInstantiation  ///< the same; only entities of user files are of interest
  };
  /// Returns what it was.
  Source setSource(Source from) { return std::exchange(source, from); }

 private:
  bool isOfInterest(const clang::ValueDecl& declaration) const;
  bool isOfInterest(clang::QualType type) const;
  bool isFirst(clang::SourceLocation place, const void* element);
  template <class Element>
  void add(Element* element, clang::SourceLocation place);

  FileTable& files;
  TypeTable& types;
  EntityTable& entities;
  const bool isRepeatable;  ///< in C nothing is instantiated
  Source source = Source::written;
  llvm::DenseSet<std::pair<unsigned, const void*>> seen;  ///< places and elements
  llvm::DenseSet<clang::SourceLocation> declaredNames;
  std::vector<std::pair<std::string, clang::SourceLocation>> linkerNames;
};

}  // namespace fe_db_tools
