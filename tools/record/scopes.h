#pragma once

#include <string>

#include "llvm/ADT/DenseMap.h"

namespace clang {
class DeclContext;
}

namespace fe_db_tools {

/// The namespaces and classes around declarations, as C++ writes them: "ns::Class", empty outside
/// of all. What need not be written is left out: inline namespaces, unscoped enumerations, unions
/// without a name. Inside of functions the scope begins anew.
class Scopes {
 public:
  explicit Scopes(bool isCpp) : isCpp(isCpp) {}

  /// Of what is declared in the context. In C nothing is around anything. Valid until the next
  /// call.
  const std::string& of(const clang::DeclContext* context);

 private:
  std::string make(const clang::DeclContext& context);

  const bool isCpp;
  const std::string none;
  llvm::DenseMap<const clang::DeclContext*, std::string> known;
};

}  // namespace fe_db_tools
