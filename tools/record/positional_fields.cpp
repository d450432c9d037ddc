#include "positional_fields.h"

#include "clang/AST/DeclCXX.h"
#include "clang/AST/ExprCXX.h"
#include "llvm/ADT/SmallPtrSet.h"

namespace fe_db_tools {

namespace {

/// The same for an initializer as it is written and as it is meant.
const clang::Expr* keyOf(const clang::Expr* value) {
  value = value->IgnoreImplicit();
  const auto* list = llvm::dyn_cast<clang::InitListExpr>(value);
  if (list != nullptr && list->getSyntacticForm() != nullptr) return list->getSyntacticForm();
  return value;
}

bool isWritten(const clang::Expr* value) {
  return value != nullptr &&
         !llvm::isa<clang::ImplicitValueInitExpr, clang::NoInitExpr, clang::CXXDefaultInitExpr>(
             value);
}

class PositionalFields {
 public:
  using Report = llvm::function_ref<void(const clang::FieldDecl&, clang::SourceLocation)>;

  PositionalFields(const clang::InitListExpr& written, Report report) : report(report) {
    for (const clang::Expr* value : written.inits()) {
      if (const auto* named = llvm::dyn_cast_or_null<clang::DesignatedInitExpr>(value)) {
        designated.insert(keyOf(named->getInit()));
        value = named->getInit();
      }
      if (value != nullptr) values.insert(keyOf(value));
    }
  }

  void visit(const clang::InitListExpr& list);

 private:
  void visit(const clang::FieldDecl& field, const clang::Expr* value);
  bool isWithoutBraces(const clang::InitListExpr& list) const {
    return values.count(keyOf(&list)) == 0;
  }
  const clang::Expr* firstWritten(const clang::Expr* value) const;

  Report report;
  llvm::SmallPtrSet<const clang::Expr*, 8> designated;
  llvm::SmallPtrSet<const clang::Expr*, 8> values;  ///< of the list
};

void PositionalFields::visit(const clang::InitListExpr& list) {
  if (list.isTransparent() || list.getType().isNull()) return;
  const clang::RecordDecl* record = list.getType()->getAsRecordDecl();
  if (record == nullptr) {
    if (list.getType()->getBaseElementTypeUnsafe()->getAsRecordDecl() == nullptr) return;
    for (const clang::Expr* value : list.inits()) {
      const auto* nested = llvm::dyn_cast_or_null<clang::InitListExpr>(value);
      if (nested != nullptr && isWithoutBraces(*nested)) visit(*nested);
    }
    return;
  }
  if (record->isUnion()) {
    const clang::FieldDecl* field = list.getInitializedFieldInUnion();
    if (field != nullptr && list.getNumInits() > 0) visit(*field, list.getInit(0));
    return;
  }
  const auto* ofCpp = llvm::dyn_cast<clang::CXXRecordDecl>(record);
  unsigned next = ofCpp == nullptr ? 0 : ofCpp->getNumBases();
  for (const clang::FieldDecl* field : record->fields()) {
    if (field->isBitField() && !field->getDeclName()) continue;
    if (next >= list.getNumInits()) return;
    visit(*field, list.getInit(next++));
  }
}

/// The initializer that a list without braces of its own begins with.
const clang::Expr* PositionalFields::firstWritten(const clang::Expr* value) const {
  const auto* list = llvm::dyn_cast<clang::InitListExpr>(value);
  if (list == nullptr || !isWithoutBraces(*list)) return value;
  for (const clang::Expr* inner : list->inits()) {
    if (isWritten(inner)) return firstWritten(inner);
  }
  return value;
}

void PositionalFields::visit(const clang::FieldDecl& field, const clang::Expr* value) {
  if (!isWritten(value)) return;
  const clang::Expr* first = firstWritten(value);
  if (designated.count(keyOf(first)) == 0) report(field, first->getBeginLoc());
  const auto* nested = llvm::dyn_cast<clang::InitListExpr>(value);
  if (nested != nullptr && isWithoutBraces(*nested)) visit(*nested);
}

}  // namespace

void eachPositionalField(const clang::InitListExpr& list, PositionalFields::Report report) {
  const clang::InitListExpr* meant = list.isSemanticForm() ? &list : list.getSemanticForm();
  if (meant == nullptr) return;
  const clang::InitListExpr* written = meant->getSyntacticForm();
  PositionalFields(written == nullptr ? *meant : *written, report).visit(*meant);
}

}  // namespace fe_db_tools
