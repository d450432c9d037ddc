#pragma once

#include "clang/Basic/SourceLocation.h"
#include "llvm/ADT/STLFunctionalExtras.h"

namespace clang {
class FieldDecl;
class InitListExpr;
}  // namespace clang

namespace fe_db_tools {

/// The fields that a list of initializers initializes without a designator, each with the place of
/// its initializer. Lists in braces inside of it are lists of their own.
/// `list`: either form.
void eachPositionalField(
    const clang::InitListExpr& list,
    llvm::function_ref<void(const clang::FieldDecl&, clang::SourceLocation)> report);

}  // namespace fe_db_tools
