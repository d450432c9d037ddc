#include "value_use.h"

#include "clang/AST/Expr.h"
#include "clang/AST/ExprCXX.h"
#include "clang/AST/Stmt.h"
#include "clang/AST/StmtCXX.h"

namespace fe_db_tools {

namespace {

/// What only passes a value on. Without use of the result any cast drops it.
const clang::Expr* passThrough(const clang::Expr* expression) {
  if (const auto* full = llvm::dyn_cast<clang::FullExpr>(expression)) return full->getSubExpr();
  if (const auto* paren = llvm::dyn_cast<clang::ParenExpr>(expression)) return paren->getSubExpr();
  if (const auto* cast = llvm::dyn_cast<clang::CastExpr>(expression)) return cast->getSubExpr();
  if (const auto* bound = llvm::dyn_cast<clang::CXXBindTemporaryExpr>(expression)) {
    return bound->getSubExpr();
  }
  if (const auto* temporary = llvm::dyn_cast<clang::MaterializeTemporaryExpr>(expression)) {
    return temporary->getSubExpr();
  }
  if (const auto* generic = llvm::dyn_cast<clang::GenericSelectionExpr>(expression)) {
    return generic->isResultDependent() ? nullptr : generic->getResultExpr();
  }
  const auto* unary = llvm::dyn_cast<clang::UnaryOperator>(expression);
  if (unary != nullptr && unary->getOpcode() == clang::UO_Extension) return unary->getSubExpr();
  return nullptr;
}

}  // namespace

void ValueUse::enter(const clang::Stmt& statement) {
  if (const auto* block = llvm::dyn_cast<clang::CompoundStmt>(&statement)) {
    enterBlock(*block);
  } else if (const auto* choice = llvm::dyn_cast<clang::IfStmt>(&statement)) {
    dropValueOf(choice->getThen());
    dropValueOf(choice->getElse());
  } else if (const auto* whileLoop = llvm::dyn_cast<clang::WhileStmt>(&statement)) {
    dropValueOf(whileLoop->getBody());
  } else if (const auto* doLoop = llvm::dyn_cast<clang::DoStmt>(&statement)) {
    dropValueOf(doLoop->getBody());
  } else if (const auto* forLoop = llvm::dyn_cast<clang::ForStmt>(&statement)) {
    dropValueOf(forLoop->getInit());
    dropValueOf(forLoop->getInc());
    dropValueOf(forLoop->getBody());
  } else if (const auto* rangeLoop = llvm::dyn_cast<clang::CXXForRangeStmt>(&statement)) {
    dropValueOf(rangeLoop->getBody());
  } else if (const auto* choices = llvm::dyn_cast<clang::SwitchStmt>(&statement)) {
    dropValueOf(choices->getBody());
  } else if (const auto* entry = llvm::dyn_cast<clang::SwitchCase>(&statement)) {
    dropValueOf(entry->getSubStmt());
  } else if (const auto* binary = llvm::dyn_cast<clang::BinaryOperator>(&statement)) {
    if (binary->getOpcode() == clang::BO_Comma) dropValueOf(binary->getLHS());
  } else if (const auto* cast = llvm::dyn_cast<clang::CastExpr>(&statement)) {
    if (cast->getCastKind() == clang::CK_ToVoid) dropValueOf(cast->getSubExpr());
  } else if (const auto* valued = llvm::dyn_cast<clang::StmtExpr>(&statement)) {
    if (dropped.count(valued) == 0) blocksWithValue.insert(valued->getSubStmt());
  } else if (const auto* labelled = llvm::dyn_cast<clang::LabelStmt>(&statement)) {
    dropValueOf(labelled->getSubStmt());
  } else if (const auto* attributed = llvm::dyn_cast<clang::AttributedStmt>(&statement)) {
    dropValueOf(attributed->getSubStmt());
  }
}

void ValueUse::enterBlock(const clang::CompoundStmt& block) {
  const bool hasValue = blocksWithValue.count(&block) != 0;
  for (const clang::Stmt* statement : block.body()) {
    if (hasValue && statement == block.body_back()) break;
    dropValueOf(statement);
  }
}

void ValueUse::dropValueOf(const clang::Stmt* statement) {
  const auto* expression = llvm::dyn_cast_or_null<clang::Expr>(statement);
  while (expression != nullptr) {
    dropped.insert(expression);
    dropOperands(*expression);
    expression = passThrough(expression);
  }
}

void ValueUse::dropOperands(const clang::Expr& expression) {
  if (const auto* binary = llvm::dyn_cast<clang::BinaryOperator>(&expression)) {
    if (binary->getOpcode() == clang::BO_Comma || binary->isLogicalOp()) {
      dropValueOf(binary->getRHS());
    }
  } else if (const auto* choice = llvm::dyn_cast<clang::ConditionalOperator>(&expression)) {
    dropValueOf(choice->getTrueExpr());
    dropValueOf(choice->getFalseExpr());
  } else if (const auto* shortChoice =
                 llvm::dyn_cast<clang::BinaryConditionalOperator>(&expression)) {
    dropValueOf(shortChoice->getFalseExpr());
  } else if (const auto* constantChoice = llvm::dyn_cast<clang::ChooseExpr>(&expression)) {
    if (!constantChoice->isConditionDependent()) dropValueOf(constantChoice->getChosenSubExpr());
  }
}

}  // namespace fe_db_tools
