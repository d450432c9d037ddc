#pragma once

#include <vector>

#include "fe_db/kinds.h"
#include "llvm/ADT/DenseMap.h"

namespace clang {
class ASTContext;
class FunctionDecl;
}  // namespace clang

namespace fe_db_tools {

namespace dm = orvalesca::databases_merger;

/// Order of certainty: a function has the greatest of what its body and its callees show.
enum class Effect { none, unknown, some };

/// Finds out whether calling a function does more than compute its value: whether it changes what
/// outlives the call, touches volatile or atomic objects, leaves by an exception or not at all.
/// Whatever cannot be seen is unknown: a call that is dropped is called useless on this word.
///
/// A body is looked at once; calls are followed wherever the unit has the body, in system headers
/// too. A recursive call adds nothing to what the rest of the body shows.
class EffectAnalysis {
 public:
  explicit EffectAnalysis(clang::ASTContext& context) : context(context) {}

  /// `definition`: a declaration that is the definition.
  void add(const clang::FunctionDecl& definition) { indexOf(definition); }
  /// After the last add(): looks at the bodies.
  void run();
  /// REQUIRES: run(), and the definition was added before it.
  dm::EffectKind of(const clang::FunctionDecl& definition) const;

 private:
  struct Node {
    const clang::FunctionDecl* function;
    Effect effect = Effect::none;
    std::vector<std::size_t> callees{};
  };

  std::size_t indexOf(const clang::FunctionDecl& definition);

  clang::ASTContext& context;
  std::vector<Node> nodes;
  llvm::DenseMap<const clang::FunctionDecl*, std::size_t> indexes;
};

}  // namespace fe_db_tools
