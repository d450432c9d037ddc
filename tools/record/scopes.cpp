#include "scopes.h"

#include "clang/AST/Decl.h"
#include "clang/AST/DeclCXX.h"

namespace fe_db_tools {

namespace {

/// What the context adds to the scope; empty for nothing.
std::string nameOf(const clang::DeclContext& context) {
  if (const auto* space = llvm::dyn_cast<clang::NamespaceDecl>(&context)) {
    if (space->isAnonymousNamespace()) return "(anonymous namespace)";
    return space->isInline() ? "" : space->getName().str();
  }
  const auto* tag = llvm::dyn_cast<clang::TagDecl>(&context);
  if (tag == nullptr) return {};
  const auto* enumeration = llvm::dyn_cast<clang::EnumDecl>(tag);
  if (enumeration != nullptr && !enumeration->isScoped()) return {};
  if (tag->getIdentifier() != nullptr) return tag->getName().str();
  if (const clang::TypedefNameDecl* alias = tag->getTypedefNameForAnonDecl()) {
    return alias->getName().str();
  }
  const auto* record = llvm::dyn_cast<clang::CXXRecordDecl>(tag);
  if (record == nullptr || record->isAnonymousStructOrUnion()) return {};
  return record->isLambda() ? "(lambda)" : "(anonymous " + tag->getKindName().str() + ")";
}

}  // namespace

const std::string& Scopes::of(const clang::DeclContext* context) {
  if (!isCpp || context == nullptr || context->isTranslationUnit() ||
      context->isFunctionOrMethod()) {
    return none;
  }
  const auto found = known.find(context);
  if (found != known.end()) return found->second;
  std::string scope = make(*context);
  return known[context] = std::move(scope);
}

std::string Scopes::make(const clang::DeclContext& context) {
  std::string scope = of(context.getParent());
  const std::string name = nameOf(context);
  if (!scope.empty() && !name.empty()) scope += "::";
  return scope + name;
}

}  // namespace fe_db_tools
