#pragma once

#include "clang/Lex/Token.h"
#include "llvm/ADT/ArrayRef.h"

namespace clang {
class Preprocessor;
}  // namespace clang

namespace fe_db_tools {

/// The number that a call of one of the compiler's own macros becomes, such as `__has_builtin(x)`;
/// any other token if there is none. A header in quotes has none: it is searched for where the
/// macro is used.
///
/// REQUIRES: the preprocessor is at the end of the unit, and nobody listens to it any longer.
clang::Token answerOf(llvm::ArrayRef<clang::Token> question, clang::Preprocessor& preprocessor);

}  // namespace fe_db_tools
