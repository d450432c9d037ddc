#include "macro_expansion.h"

#include <deque>
#include <string>

#include "clang/Basic/SourceManager.h"
#include "clang/Lex/Lexer.h"
#include "clang/Lex/MacroInfo.h"
#include "clang/Lex/Preprocessor.h"

namespace fe_db_tools {

namespace {

namespace tok = clang::tok;

constexpr std::size_t kMaxTokens = 200;
constexpr std::size_t kMaxSteps = 2000;  ///< tokens of macros in macros, some without a result

/// Macros that a token comes from, which are not expanded in it again.
struct Hidden {
  const clang::IdentifierInfo* name;
  const Hidden* rest;
};

struct Item {
  clang::Token token;
  const Hidden* hidden;
};
using Items = std::vector<Item>;

bool contains(const Hidden* names, const clang::IdentifierInfo* name) {
  while (names != nullptr && names->name != name) names = names->rest;
  return names != nullptr;
}

/// By D. Prosser's algorithm, on which the standard of C is based: each token knows what it comes
/// from. Every operation returns false if there is no result.
class Expansion {
 public:
  explicit Expansion(clang::Preprocessor& preprocessor) : preprocessor(preprocessor) {}

  bool expandText(const clang::IdentifierInfo& name, const clang::MacroInfo& definition,
                  Items& result) {
    Items body;
    return substitute(definition, {}, hide(name, nullptr), body) && expand(body, result);
  }

 private:
  bool expand(const Items& items, Items& result);
  bool expandCall(const Item& name, const clang::MacroInfo& macro, Items& pending);
  static bool takeArguments(const clang::MacroInfo& macro, Items& pending,
                            std::vector<Items>& arguments, const Hidden*& closing);
  static bool takeQuestion(const Item& name, Items& pending, Items& result);

  bool substitute(const clang::MacroInfo& macro, const std::vector<Items>& arguments,
                  const Hidden* hidden, Items& body);
  bool takePart(const clang::MacroInfo& macro, const std::vector<Items>& arguments, bool isOperand,
                std::size_t& next, Items& part);
  bool paste(clang::Token& left, const clang::Token& right);

  const clang::MacroInfo* macroOf(const Item& item) const {
    const clang::IdentifierInfo* name = item.token.getIdentifierInfo();
    const bool isMacro = name != nullptr && !contains(item.hidden, name);
    return isMacro ? preprocessor.getMacroInfo(name) : nullptr;
  }
  const Hidden* hide(const clang::IdentifierInfo& name, const Hidden* rest) {
    return &allHidden.emplace_back(Hidden{&name, rest});
  }
  const Hidden* unionOf(const Hidden* some, const Hidden* others) {
    for (; some != nullptr; some = some->rest) {
      if (!contains(others, some->name)) others = hide(*some->name, others);
    }
    return others;
  }
  const Hidden* intersectionOf(const Hidden* some, const Hidden* others) {
    const Hidden* both = nullptr;
    for (; some != nullptr; some = some->rest) {
      if (contains(others, some->name)) both = hide(*some->name, both);
    }
    return both;
  }

  clang::Preprocessor& preprocessor;
  std::deque<Hidden> allHidden;
  std::size_t steps = 0;
};

bool Expansion::expand(const Items& items, Items& result) {
  Items pending(items.rbegin(), items.rend());  // the next one is the last
  while (!pending.empty()) {
    const Item item = pending.back();
    pending.pop_back();
    if (++steps > kMaxSteps || result.size() >= kMaxTokens) return false;
    const clang::MacroInfo* macro = macroOf(item);
    const bool isCalled = !pending.empty() && pending.back().token.is(tok::l_paren);
    if (macro == nullptr || (macro->isFunctionLike() && !isCalled)) {
      result.push_back(item);
    } else if (macro->isBuiltinMacro()) {
      if (!isCalled || !takeQuestion(item, pending, result)) return false;
    } else if (!expandCall(item, *macro, pending)) {
      return false;
    }
  }
  return true;
}

bool Expansion::expandCall(const Item& name, const clang::MacroInfo& macro, Items& pending) {
  const Hidden* hidden = name.hidden;
  std::vector<Items> arguments;
  if (macro.isFunctionLike()) {
    const Hidden* closing = nullptr;
    if (!takeArguments(macro, pending, arguments, closing)) return false;
    hidden = intersectionOf(hidden, closing);
  }
  Items body;
  hidden = hide(*name.token.getIdentifierInfo(), hidden);
  if (!substitute(macro, arguments, hidden, body)) return false;
  pending.insert(pending.end(), body.rbegin(), body.rend());
  return true;
}

bool Expansion::takeArguments(const clang::MacroInfo& macro, Items& pending,
                              std::vector<Items>& arguments, const Hidden*& closing) {
  const std::size_t count = macro.getNumParams();
  arguments.emplace_back();
  pending.pop_back();
  for (unsigned depth = 1; depth > 0;) {
    if (pending.empty()) return false;
    const Item item = pending.back();
    pending.pop_back();
    depth += item.token.is(tok::l_paren) ? 1 : 0;
    depth -= item.token.is(tok::r_paren) ? 1 : 0;
    closing = item.hidden;
    const bool isRest = macro.isVariadic() && arguments.size() == count;
    if (depth == 1 && item.token.is(tok::comma) && !isRest) {
      arguments.emplace_back();
    } else if (depth > 0) {
      arguments.back().push_back(item);
    }
  }
  if (count == 0) return arguments.size() == 1 && arguments.front().empty();
  if (macro.isVariadic() && arguments.size() + 1 == count) arguments.emplace_back();
  return arguments.size() == count;
}

/// The compiler's own macro with its operand.
bool Expansion::takeQuestion(const Item& name, Items& pending, Items& result) {
  const llvm::StringRef text = name.token.getIdentifierInfo()->getName();
  if (text.substr(0, 6) != "__has_" && text.substr(0, 5) != "__is_") return false;
  result.push_back(name);
  for (unsigned depth = 0; !pending.empty();) {
    const Item item = pending.back();
    pending.pop_back();
    result.push_back(item);
    depth += item.token.is(tok::l_paren) ? 1 : 0;
    depth -= item.token.is(tok::r_paren) ? 1 : 0;
    if (depth == 0) return true;
  }
  return false;
}

bool Expansion::substitute(const clang::MacroInfo& macro, const std::vector<Items>& arguments,
                           const Hidden* hidden, Items& body) {
  const llvm::ArrayRef<clang::Token> tokens = macro.tokens();
  if (tokens.size() > kMaxTokens) return false;
  bool isPasted = false;  // the token before is ##
  bool hasLeft = false;   // its left operand is not empty
  for (std::size_t next = 0; next < tokens.size();) {
    if (tokens[next].is(tok::hashhash)) {
      isPasted = true;
      ++next;
      continue;
    }
    const bool isOperand =
        isPasted || (next + 1 < tokens.size() && tokens[next + 1].is(tok::hashhash));
    const bool isRest = macro.isVariadic() && !macro.param_empty() &&
                        tokens[next].getIdentifierInfo() == *std::prev(macro.param_end());
    Items part;
    if (!takePart(macro, arguments, isOperand, next, part)) return false;
    std::size_t first = 0;
    if (isPasted && hasLeft && isRest && body.back().token.is(tok::comma)) {
      if (part.empty()) body.pop_back();  // of GNU: `, ## __VA_ARGS__`
    } else if (isPasted && hasLeft && !part.empty()) {
      if (!paste(body.back().token, part.front().token)) return false;
      body.back().hidden = hidden;
      first = 1;
    }
    hasLeft = (isPasted && hasLeft) || !part.empty();
    isPasted = false;
    steps += part.size();
    if (steps > kMaxSteps) return false;
    for (; first < part.size(); ++first) {
      body.push_back({part[first].token, unionOf(part[first].hidden, hidden)});
    }
  }
  return true;
}

/// One token of the text, or what takes its place. `isOperand`: of ##.
bool Expansion::takePart(const clang::MacroInfo& macro, const std::vector<Items>& arguments,
                         bool isOperand, std::size_t& next, Items& part) {
  const clang::Token& token = macro.tokens()[next++];
  if (macro.isFunctionLike() && token.is(tok::hash)) {
    // Has no value whatever its text is.
    clang::Token text;
    text.startToken();
    text.setKind(tok::string_literal);
    part.push_back({text, nullptr});
    ++next;
    return true;
  }
  const clang::IdentifierInfo* name = token.getIdentifierInfo();
  const int parameter =
      macro.isFunctionLike() && name != nullptr ? macro.getParameterNum(name) : -1;
  if (parameter < 0) {
    part.push_back({token, nullptr});
    return !macro.isVariadic() || name == nullptr || !name->isStr("__VA_OPT__");
  }
  const Items& argument = arguments[static_cast<std::size_t>(parameter)];
  if (!isOperand) return expand(argument, part);
  part = argument;
  return true;
}

bool Expansion::paste(clang::Token& left, const clang::Token& right) {
  if (left.getLocation().isInvalid() || right.getLocation().isInvalid()) return false;
  const std::string text = preprocessor.getSpelling(left) + preprocessor.getSpelling(right);
  clang::Token written;
  written.startToken();
  preprocessor.CreateString(text, written);
  if (clang::Lexer::getRawToken(written.getLocation(), left, preprocessor.getSourceManager(),
                                preprocessor.getLangOpts()) ||
      left.getLength() != text.size()) {
    return false;
  }
  if (left.is(tok::raw_identifier)) preprocessor.LookUpIdentifierInfo(left);
  return true;
}

/// Most are: there is nothing in them to expand.
bool isFinal(const clang::MacroInfo& definition) {
  return definition.tokens().size() < kMaxTokens &&
         llvm::none_of(definition.tokens(), [](const clang::Token& token) {
           const clang::IdentifierInfo* name = token.getIdentifierInfo();
           return token.is(tok::hashhash) || (name != nullptr && name->hasMacroDefinition());
         });
}

}  // namespace

Tokens expandedText(const clang::IdentifierInfo& name, const clang::MacroInfo& definition,
                    clang::Preprocessor& preprocessor) {
  if (!definition.isObjectLike() || definition.isBuiltinMacro()) return {};
  if (isFinal(definition)) return definition.tokens().vec();
  Items items;
  if (!Expansion(preprocessor).expandText(name, definition, items)) return {};
  Tokens result;
  for (const Item& item : items) result.push_back(item.token);
  return result;
}

}  // namespace fe_db_tools
