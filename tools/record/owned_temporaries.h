#pragma once

#include "llvm/ADT/SmallPtrSet.h"

namespace clang {
class CXXBindTemporaryExpr;
class Expr;
class Stmt;
}  // namespace clang

namespace fe_db_tools {

/// Tells temporaries that the end of their full expression destroys from values that become
/// something else: a variable, a member, a result, an exception, an element.
class OwnedTemporaries {
 public:
  /// REQUIRES: called for each statement and expression before anything inside of it.
  void enter(const clang::Stmt& statement);
  /// The value becomes an object that is destroyed otherwise. `value`: may be null.
  void own(const clang::Stmt* value);

  bool contains(const clang::CXXBindTemporaryExpr& temporary) const {
    return owned.count(&temporary) != 0;
  }

 private:
  llvm::SmallPtrSet<const clang::CXXBindTemporaryExpr*, 32> owned;
};

/// What the construction copies or moves without having to, or null.
const clang::Expr* elidedCopy(const clang::Expr& construction);

}  // namespace fe_db_tools
