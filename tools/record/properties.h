#pragma once

#include <vector>

#include "clang/AST/DeclBase.h"
#include "excluded_text.h"
#include "fact_sink.h"
#include "fe_db/entity_reference.h"
#include "llvm/ADT/DenseMap.h"
#include "llvm/ADT/DenseSet.h"
#include "scopes.h"

namespace clang {
class CXXMethodDecl;
class NamedDecl;
class SourceManager;
}  // namespace clang

namespace fe_db_tools {

class EntityTable;
class FileTable;
class TypeTable;

/// What kind of thing each recorded entity is, and where it belongs.
class Properties {
 public:
  Properties(FactSink& sink, FileTable& files, const clang::SourceManager& sources, bool isCpp)
      : sink(sink), files(files), sources(sources), scopes(isCpp) {}

  /// REQUIRES: the declaration is parsed to its end.
  void add(const dm::EntityReference& entity, const clang::NamedDecl& declaration);
  /// For a macro.
  void add(const dm::EntityReference& entity, dm::PropertyFlags flags);

  /// After the last entity. Owners are those types that are recorded for another reason.
  void record(const TypeTable& types, EntityTable& entities);

  ExcludedText& excludedText() { return excluded; }

 private:
  struct Entity {
    dm::EntityReference entity;
    dm::PropertyFlags flags;
    const clang::NamedDecl* declaration;  ///< null for a macro
  };

  bool isMadeByMacro(const clang::NamedDecl& declaration) const;
  Entity& entry(const dm::EntityReference& entity, const clang::NamedDecl* declaration);

  FactSink& sink;
  FileTable& files;
  const clang::SourceManager& sources;
  Scopes scopes;
  ExcludedText excluded;
  std::vector<Entity> all;
  llvm::DenseMap<const void*, std::size_t> places;  ///< in `all`
  llvm::DenseSet<const clang::CXXMethodDecl*> overridden;
};

}  // namespace fe_db_tools
