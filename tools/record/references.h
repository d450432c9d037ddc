#pragma once

#include <string>
#include <utility>
#include <vector>

#include "ast_recorder.h"
#include "clang/AST/TypeLoc.h"
#include "fact_sink.h"
#include "fe_db/entity_reference.h"
#include "llvm/ADT/DenseMap.h"
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
  using Roles = dm::ReferenceRoles;

  References(FactSink& sink, FileTable& files, TypeTable& types, EntityTable& entities,
             const clang::ASTContext& context, SystemFacts system, ReferenceFacts facts);

  void toValue(const clang::ValueDecl& declaration, clang::SourceLocation place, Roles roles);
  void toType(clang::TypeLoc at, bool byTag, Roles role);
  void toTypeDeclaration(const clang::TypeDecl& declaration, clang::SourceLocation place);
  void toTemplate(clang::TemplateName name, clang::SourceLocation place);
  /// To the field, or to the function `get` and the element's type, that the name is bound to.
  void ofBinding(const clang::BindingDecl& binding);
  /// To what the linker knows by that name, which may be declared later.
  void toLinkerName(std::string name, clang::SourceLocation place);
  /// Uncounted, and only if the entity is recorded for another reason, which may come later.
  void toKnown(const clang::NamedDecl& declaration, clang::SourceLocation place, Roles roles);
  /// By the compiler, and counted already.
  void implicitly(dm::Function* function, clang::SourceLocation place);

  /// REQUIRES: called when all declarations have been recorded.
  void resolveLinkerNames();
  /// After the last reference: writes the facts that have been asked for.
  void record();

  /// What is referred to from here on is in the declaration. False: of no interest, and not opened.
  bool open(const clang::Decl* declaration);
  void close() { enclosing.pop_back(); }
  void enterUnevaluated() { ++unevaluatedDepth; }
  void leaveUnevaluated() { --unevaluatedDepth; }

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
  struct Seen {
    dm::EntityReference entity;
    clang::SourceLocation place;
    Roles roles;
  };
  struct Later {
    const clang::NamedDecl* declaration;
    clang::SourceLocation place;
    Roles roles;
  };

  bool isOfInterest(const clang::ValueDecl& declaration) const;
  /// The declaration of a type; null for a built-in one.
  bool isTypeOfInterest(const clang::NamedDecl* declaration) const;
  bool isWithin(const clang::NamedDecl* declaration) const;
  Roles around(const clang::NamedDecl* declaration) const;
  bool isFirst(const dm::EntityReference& entity, clang::SourceLocation place, Roles roles);
  void note(const dm::EntityReference& entity, clang::SourceLocation place, Roles roles);
  template <class Element>
  void add(Element* element, clang::SourceLocation place, Roles roles);

  FactSink& sink;
  FileTable& files;
  TypeTable& types;
  EntityTable& entities;
  SystemFacts system;
  const bool isRepeatable;  ///< in C nothing is instantiated
  Source source = Source::written;
  const bool isRecorded;
  /// By place and element: where its roles are in `references`.
  llvm::DenseMap<std::pair<unsigned, const void*>, std::size_t> seen;
  std::vector<Seen> references;
  std::vector<Later> later;
  std::vector<const clang::NamedDecl*> enclosing;
  unsigned unevaluatedDepth = 0;
  llvm::DenseSet<clang::SourceLocation> declaredNames;
  std::vector<std::pair<std::string, clang::SourceLocation>> linkerNames;
};

}  // namespace fe_db_tools
