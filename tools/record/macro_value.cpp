#include "macro_value.h"

#include <algorithm>

#include "builtin_macro.h"
#include "clang/AST/ASTContext.h"
#include "clang/AST/Decl.h"
#include "clang/Basic/OperatorPrecedence.h"
#include "clang/Basic/TargetInfo.h"
#include "clang/Lex/LiteralSupport.h"
#include "clang/Lex/MacroInfo.h"
#include "clang/Lex/Preprocessor.h"

namespace fe_db_tools {

namespace {

__extension__ using Wide = __int128;  ///< holds each result before it is fitted into its type
__extension__ using UnsignedWide = unsigned __int128;

struct Integer {
  unsigned width;
  bool isUnsigned = false;
};

/// Not known: of a type, but without a value. Does no harm where it is not evaluated.
struct Number {
  Number(Wide value, Integer type, bool isKnown = true)
      : value(value), type(type), isKnown(isKnown) {
    const Wide end = Wide{1} << (type.width - (type.isUnsigned ? 0 : 1));
    if (type.isUnsigned) {
      this->value &= end - 1;
    } else if (value < -end || value >= end) {
      *this = {0, type, false};
    }
  }

  Wide value;
  Integer type;
  bool isKnown;
};

/// After an error the numbers mean nothing; it is asked for once, at the end.
class Parser {
 public:
  Parser(const Tokens& tokens, clang::Preprocessor& preprocessor, const EnumConstants& constants)
      : tokens(tokens), preprocessor(preprocessor), constants(constants) {}

  dm::Macro::Value parse() {
    const Number result = expression(clang::prec::Conditional);
    if (hasFailed || next != tokens.size() || !result.isKnown) return {};
    if (result.type.isUnsigned) return static_cast<std::uint64_t>(result.value);
    return static_cast<std::int64_t>(result.value);
  }

 private:
  bool accept(clang::tok::TokenKind kind) {
    const bool isNext = next < tokens.size() && tokens[next].is(kind);
    next += isNext ? 1 : 0;
    return isNext;
  }
  Number fail() {
    hasFailed = true;
    return {0, intType, false};
  }

  Number expression(clang::prec::Level least);
  Number choice(const Number& condition);
  Number unary();
  Number primary();
  Number builtin();
  Number numericLiteral(const clang::Token& token);
  Number character(const clang::Token& token);
  Number enumConstant(const clang::Token& token);
  Number binary(clang::tok::TokenKind operation, const Number& left, const Number& right) const;

  const Tokens& tokens;
  clang::Preprocessor& preprocessor;
  const EnumConstants& constants;
  const clang::TargetInfo& target = preprocessor.getTargetInfo();
  const Integer intType{target.getIntWidth()};
  std::size_t next = 0;
  bool hasFailed = false;
};

/// Of the usual arithmetic conversions.
Integer commonType(Integer left, Integer right) {
  if (left.width != right.width) return left.width > right.width ? left : right;
  return {left.width, left.isUnsigned || right.isUnsigned};
}

Number Parser::expression(clang::prec::Level least) {
  Number left = unary();
  while (!hasFailed && next < tokens.size()) {
    const clang::tok::TokenKind kind = tokens[next].getKind();
    const clang::prec::Level level = clang::getBinOpPrecedence(kind, true, true);
    if (level < least) break;
    ++next;
    if (level == clang::prec::Spaceship || level == clang::prec::PointerToMember) return fail();
    left = level == clang::prec::Conditional
               ? choice(left)
               : binary(kind, left, expression(static_cast<clang::prec::Level>(level + 1)));
  }
  return left;
}

Number Parser::choice(const Number& condition) {
  const Number yes = expression(clang::prec::Conditional);
  if (!accept(clang::tok::colon)) return fail();
  const Number no = expression(clang::prec::Conditional);
  const Number& chosen = condition.value != 0 ? yes : no;
  return {chosen.value, commonType(yes.type, no.type), chosen.isKnown && condition.isKnown};
}

Number Parser::unary() {
  if (accept(clang::tok::plus)) return unary();
  const bool isMinus = accept(clang::tok::minus);
  if (isMinus || accept(clang::tok::tilde)) {
    const Number operand = unary();
    return {isMinus ? -operand.value : ~operand.value, operand.type, operand.isKnown};
  }
  if (!accept(clang::tok::exclaim)) return primary();
  const Number operand = unary();
  return {operand.value == 0, intType, operand.isKnown};
}

Number Parser::primary() {
  if (next >= tokens.size() || hasFailed) return fail();
  const clang::Token& token = tokens[next++];
  if (token.is(clang::tok::l_paren)) {
    const Number inner = expression(clang::prec::Conditional);
    return accept(clang::tok::r_paren) ? inner : fail();
  }
  if (token.isOneOf(clang::tok::kw_true, clang::tok::kw_false)) {
    return {token.is(clang::tok::kw_true), intType};
  }
  if (token.is(clang::tok::identifier)) {
    const clang::MacroInfo* macro = preprocessor.getMacroInfo(token.getIdentifierInfo());
    return macro != nullptr && macro->isBuiltinMacro() ? builtin() : enumConstant(token);
  }
  if (token.is(clang::tok::numeric_constant)) return numericLiteral(token);
  const bool isString = clang::tok::isStringLiteral(token.getKind());
  return clang::tok::isLiteral(token.getKind()) && !isString ? character(token) : fail();
}

/// After the name of one of the compiler's own macros.
Number Parser::builtin() {
  const std::size_t name = next - 1;
  for (unsigned depth = 0; next < tokens.size();) {
    depth += tokens[next].is(clang::tok::l_paren) ? 1 : 0;
    depth -= tokens[next].is(clang::tok::r_paren) ? 1 : 0;
    ++next;
    if (depth == 0) break;
  }
  const auto question = llvm::ArrayRef<clang::Token>(tokens).slice(name, next - name);
  const clang::Token answer = answerOf(question, preprocessor);
  return answer.is(clang::tok::numeric_constant) ? numericLiteral(answer) : fail();
}

/// The first type of the language's list for such a literal that holds the value.
Number Parser::numericLiteral(const clang::Token& token) {
  const std::string spelling = preprocessor.getSpelling(token);
  clang::NumericLiteralParser literal(spelling, token.getLocation(),
                                      preprocessor.getSourceManager(), preprocessor.getLangOpts(),
                                      target, preprocessor.getDiagnostics());
  bool isOther = literal.hadError || !literal.isIntegerLiteral() || literal.hasUDSuffix() ||
                 literal.isImaginary || literal.isSizeT || literal.MicrosoftInteger != 0;
#if CLANG_VERSION_MAJOR >= 15
  isOther = isOther || literal.isBitInt;
#endif
  llvm::APInt value(64, 0);
  if (isOther || literal.GetIntegerValue(value)) return fail();
  const auto bits = static_cast<Wide>(value.getZExtValue());
  for (const unsigned width : {target.getIntWidth(), target.getLongWidth(), 64U}) {
    if (literal.isLong && width < target.getLongWidth()) continue;
    if (literal.isLongLong && width < 64) continue;
    const bool mayBeUnsigned = literal.isUnsigned || literal.getRadix() != 10;
    if (!literal.isUnsigned && value.isIntN(width - 1)) return {bits, {width}};
    if (mayBeUnsigned && value.isIntN(width)) return {bits, {width, true}};
  }
  return fail();
}

/// A type narrower than int is promoted wherever its value is used.
Number Parser::character(const clang::Token& token) {
  const std::string spelling = preprocessor.getSpelling(token);
  const clang::CharLiteralParser literal(spelling.data(), spelling.data() + spelling.size(),
                                         token.getLocation(), preprocessor, token.getKind());
  const bool isSignUnsure = literal.isUTF8() && literal.getValue() > 127;
  if (literal.hadError() || !literal.getUDSuffix().empty() || isSignUnsure) return fail();
  const bool isWideSigned = clang::TargetInfo::isTypeSigned(target.getWCharType());
  const bool isUnsigned = literal.isUTF32() || (literal.isWide() && !isWideSigned &&
                                                target.getWCharWidth() >= intType.width);
  const auto value = static_cast<Wide>(literal.getValue());
  if (isUnsigned) return {value, {intType.width, true}};
  return {static_cast<std::int32_t>(value), intType};
}

Number Parser::enumConstant(const clang::Token& token) {
  const clang::EnumConstantDecl* constant = constants.find(*token.getIdentifierInfo());
  if (constant == nullptr) return fail();
  clang::QualType type = constant->getType();
  if (const auto* enumeration = type->getAs<clang::EnumType>()) {
    type = enumeration->getDecl()->getPromotionType();
  }
  if (type.isNull() || !type->isIntegerType()) return fail();
  const unsigned width = constant->getASTContext().getIntWidth(type);
  const llvm::APSInt value = constant->getInitVal();
  if (width > 64 || value.getBitWidth() > 64) return fail();
  const Wide bits = value.isSigned() ? Wide{value.getSExtValue()} : Wide{value.getZExtValue()};
  return {bits, {std::max(width, intType.width), type->isUnsignedIntegerType()}};
}

Number shift(bool isLeft, const Number& left, const Number& count) {
  if (count.value < 0 || count.value >= left.type.width) return {0, left.type, false};
  const auto bits = static_cast<unsigned>(count.value);
  const bool isDefined = !isLeft || left.type.isUnsigned || left.value >= 0;
  const Wide moved = isLeft ? static_cast<Wide>(static_cast<UnsignedWide>(left.value) << bits)
                            : left.value >> bits;
  return {moved, left.type, left.isKnown && count.isKnown && isDefined};
}

Number Parser::binary(clang::tok::TokenKind operation, const Number& left,
                      const Number& right) const {
  namespace tok = clang::tok;
  const bool isKnown = left.isKnown && right.isKnown;
  if (operation == tok::lessless || operation == tok::greatergreater) {
    return shift(operation == tok::lessless, left, right);
  }
  if (operation == tok::ampamp || operation == tok::pipepipe) {
    const bool isAnd = operation == tok::ampamp;
    if ((left.value != 0) != isAnd) return {!isAnd, intType, left.isKnown};
    return {right.value != 0, intType, isKnown};
  }
  const Integer type = commonType(left.type, right.type);
  const Wide a = Number(left.value, type).value;
  const Wide b = Number(right.value, type).value;
  const auto product = static_cast<Wide>(UnsignedWide(a) * UnsignedWide(b));
  // clang-format off
  switch (operation) {
    case tok::equalequal:   return {a == b, intType, isKnown};
    case tok::exclaimequal: return {a != b, intType, isKnown};
    case tok::less:         return {a < b, intType, isKnown};
    case tok::lessequal:    return {a <= b, intType, isKnown};
    case tok::greater:      return {a > b, intType, isKnown};
    case tok::greaterequal: return {a >= b, intType, isKnown};
    case tok::amp:          return {a & b, type, isKnown};
    case tok::pipe:         return {a | b, type, isKnown};
    case tok::caret:        return {a ^ b, type, isKnown};
    case tok::plus:         return {a + b, type, isKnown};
    case tok::minus:        return {a - b, type, isKnown};
    case tok::star:         return {product, type, isKnown};
    default:                break;
  }
  // clang-format on
  if (b == 0 || !Number(a / b, type).isKnown) return {0, type, false};
  return {operation == tok::slash ? a / b : a % b, type, isKnown};
}

}  // namespace

EnumConstants::EnumConstants(const clang::ASTContext& context)
    : isCpp(context.getLangOpts().CPlusPlus) {
  collect(*context.getTranslationUnitDecl(), /*isFileScope=*/true);
}

const clang::EnumConstantDecl* EnumConstants::find(const clang::IdentifierInfo& name) const {
  return others.count(&name) != 0 ? nullptr : constants.lookup(&name);
}

void EnumConstants::collect(const clang::DeclContext& scope, bool isFileScope) {
  for (const clang::Decl* declaration : scope.decls()) {
    const auto* constant = llvm::dyn_cast<clang::EnumConstantDecl>(declaration);
    if (constant != nullptr && isFileScope) {
      constants.try_emplace(constant->getIdentifier(), constant);
    } else if (const auto* value = llvm::dyn_cast<clang::ValueDecl>(declaration)) {
      // In C a member is reached through its object alone.
      if (isCpp || !llvm::isa<clang::FieldDecl>(value)) others.insert(value->getIdentifier());
    }
    const auto* enumeration = llvm::dyn_cast<clang::EnumDecl>(declaration);
    if (enumeration != nullptr && enumeration->isScoped()) continue;
    if (const auto* inner = llvm::dyn_cast<clang::DeclContext>(declaration)) {
      collect(*inner, isFileScope && inner->isTransparentContext());
    }
  }
}

dm::Macro::Value valueOf(const Tokens& tokens, clang::Preprocessor& preprocessor,
                         const EnumConstants& constants) {
  // A literal that is no good is none of the source's faults as long as nobody uses it.
  clang::DiagnosticsEngine& diagnostics = preprocessor.getDiagnostics();
  const bool isSuppressed = diagnostics.getSuppressAllDiagnostics();
  diagnostics.setSuppressAllDiagnostics(true);
  dm::Macro::Value value;
  if (!tokens.empty()) value = Parser(tokens, preprocessor, constants).parse();
  diagnostics.setSuppressAllDiagnostics(isSuppressed);
  return value;
}

}  // namespace fe_db_tools
