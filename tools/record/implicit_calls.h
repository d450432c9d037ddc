#pragma once

#include <vector>

#include "clang/Basic/SourceLocation.h"
#include "fact_sink.h"
#include "owned_temporaries.h"
#include "unevaluated.h"

namespace clang {
class CoroutineBodyStmt;
class CXXConstructorDecl;
class CXXDestructorDecl;
class CXXForRangeStmt;
class CoroutineSuspendExpr;
class FunctionDecl;
class InitListExpr;
class MaterializeTemporaryExpr;
class QualType;
class VarDecl;
}  // namespace clang

namespace fe_db_tools {

class EntityTable;
class FileTable;
class References;

/// Calls that the language makes and nobody has written: of destructors, default arguments, default
/// member initialisers, constructors of members and bases, the functions of range-for and
/// coroutines, allocation. Constructors and destructors count if they have a body of their own.
///
/// One function has one call at a place, so each kind has a place where no other is to be expected,
/// and they are recorded after all others, which win.
class ImplicitCalls {
 public:
  ImplicitCalls(FactSink& sink, FileTable& files, EntityTable& entities, References& references,
                const clang::ASTContext& context)
      : sink(sink),
        files(files),
        entities(entities),
        references(references),
        unevaluated(context) {}

  /// `caller`: whose body the statement is in; null for none.
  /// REQUIRES: called for each statement and expression before anything inside of it.
  void enter(const clang::Stmt& statement, const clang::FunctionDecl* caller);
  void enter(const clang::VarDecl& variable, const clang::FunctionDecl* caller);
  void enter(const clang::FunctionDecl& definition);
  /// After the last call that is written.
  void record();

 private:
  struct Call {
    dm::Function* caller;
    dm::Function* callee;
    dm::Localization at;
    dm::Localization otherwise;  ///< if something else is called there
  };
  /// Where calls are made that are written elsewhere, or not at all.
  struct Site {
    const clang::FunctionDecl* caller;
    clang::SourceLocation at;
    bool isReference = true;  ///< no name of the callee is counted anywhere else
  };

  void visit(const clang::Stmt& statement, const Site& site);

  void add(const clang::FunctionDecl* callee, const Site& site,
           clang::SourceLocation otherwise = {});
  void destroy(clang::QualType type, const Site& site, clang::SourceLocation otherwise = {});
  void addOutermost(const clang::Stmt* statement, const Site& site,
                    clang::SourceLocation otherwise = {});
  void addWithin(const clang::Stmt* statement, const Site& site);
  void addConstruction(const clang::Expr& value, Site site);
  void addAllocation(const clang::FunctionDecl* function, const Site& site);

  void enterStatement(const clang::Stmt& statement, const clang::FunctionDecl* caller);
  void enterConstructor(const clang::CXXConstructorDecl& constructor);
  void enterDestructor(const clang::CXXDestructorDecl& destructor);
  void enterInitializers(const clang::InitListExpr& list, const clang::FunctionDecl* caller);
  void enterExtended(const clang::MaterializeTemporaryExpr& temporary, const Site& site);
  void enterRangeFor(const clang::CXXForRangeStmt& loop, const clang::FunctionDecl* caller);
  void enterCoroutine(const clang::CoroutineBodyStmt& body, const clang::FunctionDecl* caller);
  void enterSuspension(const clang::CoroutineSuspendExpr& suspension,
                       const clang::FunctionDecl* caller);

  FactSink& sink;
  FileTable& files;
  EntityTable& entities;
  References& references;
  Unevaluated unevaluated;  ///< in what is written elsewhere
  OwnedTemporaries owned;
  std::vector<Call> calls;
};

}  // namespace fe_db_tools
