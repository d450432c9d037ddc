#pragma once

#include <vector>

#include "clang/Lex/Token.h"

namespace clang {
class IdentifierInfo;
class MacroInfo;
class Preprocessor;
}  // namespace clang

namespace fe_db_tools {

using Tokens = std::vector<clang::Token>;

/// What the text of an object-like macro becomes under the definitions in force. Calls of the
/// compiler's own macros, such as `__has_builtin(x)`, stay as they are. Empty for what has no value
/// for sure: a function-like macro, one without text or with a very long one, one that is not
/// expanded to whole tokens or depends on where it is used, such as `__LINE__`.
///
/// Clang's preprocessor is not asked: it would report what it expands as if the source did, and a
/// macro is expanded in the middle of a directive that ends it.
Tokens expandedText(const clang::IdentifierInfo& name, const clang::MacroInfo& definition,
                    clang::Preprocessor& preprocessor);

}  // namespace fe_db_tools
