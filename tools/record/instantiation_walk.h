#pragma once

#include "ast_recorder.h"
#include "llvm/ADT/ArrayRef.h"

namespace clang {
class FunctionTemplateDecl;
}

namespace fe_db_tools {

class References;

/// Finds the references that a template leaves open until its arguments are known: those of all
/// instantiations in the unit, mapped to what is written. Of templates in system headers only what
/// they refer to in user files, unless all system facts are wanted.
/// `genericLambdas`: the call operators of those in bodies of functions; all other templates are
/// found.
/// REQUIRES: the templates themselves have been recorded.
void walkInstantiations(References& references, const FileTable& files, clang::ASTContext& context,
                        SystemFacts system,
                        llvm::ArrayRef<clang::FunctionTemplateDecl*> genericLambdas);

}  // namespace fe_db_tools
