#pragma once

#include "clang/AST/RecursiveASTVisitor.h"
#include "clang/Basic/Version.h"
#include "dependent_names.h"
#include "references.h"

namespace fe_db_tools {

/// Hands the references of whatever the derived visitor visits to References. A visitor that
/// handles one of these nodes as well calls what it hides.
template <class Derived>
class ReferenceVisitor : public clang::RecursiveASTVisitor<Derived> {
  using Base = clang::RecursiveASTVisitor<Derived>;

 public:
  explicit ReferenceVisitor(References& references) : references(references) {}

  // --- Values.

  bool VisitDeclRefExpr(clang::DeclRefExpr* name) {
    references.toValue(*name->getDecl(), name->getLocation());
    return true;
  }
  bool VisitMemberExpr(clang::MemberExpr* member) {
    const clang::SourceLocation name = member->getMemberLoc();  // a conversion has none
    references.toValue(*member->getMemberDecl(), name.isValid() ? name : member->getBeginLoc());
    return true;
  }
  bool VisitDesignatedInitExpr(clang::DesignatedInitExpr* initializer) {
    for (const clang::DesignatedInitExpr::Designator& designator : initializer->designators()) {
      if (!designator.isFieldDesignator()) continue;
#if CLANG_VERSION_MAJOR >= 17
      const clang::FieldDecl* field = designator.getFieldDecl();
#else
      const clang::FieldDecl* field = designator.getField();
#endif
      if (field != nullptr) references.toValue(*field, designator.getFieldLoc());
    }
    return true;
  }
  bool VisitOffsetOfExpr(clang::OffsetOfExpr* expression) {
    for (unsigned i = 0; i < expression->getNumComponents(); ++i) {
      const clang::OffsetOfNode& component = expression->getComponent(i);
      if (component.getKind() != clang::OffsetOfNode::Field) continue;
      references.toValue(*component.getField(), component.getEndLoc());
    }
    return true;
  }
  bool TraverseConstructorInitializer(clang::CXXCtorInitializer* initializer) {
    if (initializer->isWritten() && initializer->isAnyMemberInitializer()) {
      references.toValue(*initializer->getAnyMember(), initializer->getMemberLocation());
    }
    return Base::TraverseConstructorInitializer(initializer);
  }
  bool VisitBindingDecl(clang::BindingDecl* binding) {
    references.ofBinding(*binding);
    return true;
  }
  bool VisitCXXConstructExpr(clang::CXXConstructExpr* construction) {
    const clang::CXXConstructorDecl& constructor = *construction->getConstructor();
    if (constructor.isUserProvided() && !construction->isElidable()) {
      references.toValue(constructor, construction->getLocation());
    }
    return true;
  }
  /// `a != b` made of an operator==: the call is not written, so the base does not visit it.
  bool VisitCXXRewrittenBinaryOperator(clang::CXXRewrittenBinaryOperator* operation) {
    const clang::Expr* inner = operation->getDecomposedForm().InnerBinOp;
    const auto* call = llvm::dyn_cast<clang::CallExpr>(inner->IgnoreImplicit());
    if (call != nullptr && call->getDirectCallee() != nullptr) {
      references.toValue(*call->getDirectCallee(), operation->getOperatorLoc());
    }
    return true;
  }
  /// An argument refers where it is given, not where the parameter is named.
  bool TraverseSubstNonTypeTemplateParmExpr(clang::SubstNonTypeTemplateParmExpr*,
                                            typename Base::DataRecursionQueue* = nullptr) {
    return true;
  }

  // --- Attributes. A declaration inherits those of earlier ones.

  bool VisitCleanupAttr(clang::CleanupAttr* attribute) {
    references.toValue(*attribute->getFunctionDecl(), attribute->getLocation());
    return true;
  }
  bool VisitAliasAttr(clang::AliasAttr* attribute) {
    if (!attribute->isInherited()) {
      references.toLinkerName(attribute->getAliasee().str(), attribute->getLocation());
    }
    return true;
  }
  bool VisitIFuncAttr(clang::IFuncAttr* attribute) {
    if (!attribute->isInherited()) {
      references.toLinkerName(attribute->getResolver().str(), attribute->getLocation());
    }
    return true;
  }

  // --- Types.

  bool VisitElaboratedTypeLoc(clang::ElaboratedTypeLoc at) {
    const auto keyword = at.getTypePtr()->getKeyword();
    const bool isTag = clang::TypeWithKeyword::KeywordIsTagTypeKind(keyword);
    tagged = isTag ? at.getNamedTypeLoc().getOpaqueData() : nullptr;
    return true;
  }
  bool VisitTagTypeLoc(clang::TagTypeLoc at) { return at.isDefinition() || referToType(at); }
  bool VisitTypedefTypeLoc(clang::TypedefTypeLoc at) { return referToType(at); }
  bool VisitUsingTypeLoc(clang::UsingTypeLoc at) { return referToType(at); }
  bool VisitBuiltinTypeLoc(clang::BuiltinTypeLoc at) { return referToType(at); }
  bool VisitInjectedClassNameTypeLoc(clang::InjectedClassNameTypeLoc at) { return referToType(at); }
  bool VisitTemplateSpecializationTypeLoc(clang::TemplateSpecializationTypeLoc at) {
    referFromAlias(references, *at.getTypePtr());
    return referToType(at);
  }
  bool VisitConceptSpecializationExpr(clang::ConceptSpecializationExpr* check) {
    referFromConcept(references, *check);
    return true;
  }
  bool VisitDeducedTemplateSpecializationTypeLoc(clang::DeducedTemplateSpecializationTypeLoc at) {
    return referToType(at);
  }
  /// A template as an argument has a name, but no type.
  bool TraverseTemplateArgumentLoc(const clang::TemplateArgumentLoc& argument) {
    const auto kind = argument.getArgument().getKind();
    if (kind == clang::TemplateArgument::Template ||
        kind == clang::TemplateArgument::TemplateExpansion) {
      references.toTemplate(argument.getArgument().getAsTemplateOrTemplatePattern(),
                            argument.getTemplateNameLoc());
    }
    return Base::TraverseTemplateArgumentLoc(argument);
  }
  /// The template's name in it declares; older Clangs visit it as a reference.
  bool VisitClassTemplateSpecializationDecl(clang::ClassTemplateSpecializationDecl* declaration) {
    references.ignoreTypeName(declaration->getLocation());
    return true;
  }
  /// So does the class's name after the `~`.
  bool VisitCXXDestructorDecl(clang::CXXDestructorDecl* destructor) {
    if (const clang::TypeSourceInfo* name = destructor->getNameInfo().getNamedTypeInfo()) {
      references.ignoreTypeName(name->getTypeLoc().getBeginLoc());
    }
    return true;
  }

 protected:
  References& references;

 private:
  bool referToType(clang::TypeLoc at) {
    references.toType(at, /*byTag=*/at.getOpaqueData() == tagged);
    return true;
  }

  const void* tagged = nullptr;  ///< the name behind a `struct`, `union`, `class` or `enum`
};

}  // namespace fe_db_tools
