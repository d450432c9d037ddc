#include "property_flags.h"

#include "clang/AST/Attr.h"
#include "clang/AST/DeclCXX.h"
#include "clang/AST/DeclTemplate.h"
#include "clang/Basic/Version.h"

namespace fe_db_tools {

namespace {

using Flag = orvalesca::databases_merger::PropertyFlags;

/// Collects what is true.
class Flags {
 public:
  void add(Flag flag, bool isTrue) {
    if (isTrue) all = all | flag;
  }
  Flag get() const { return all; }

 private:
  Flag all = Flag::None;
};

template <class... Attributes>
bool hasOneOf(const clang::Decl& declaration) {
  return (declaration.hasAttr<Attributes>() || ...);
}

bool isPure(const clang::FunctionDecl& function) {
#if CLANG_VERSION_MAJOR >= 18
  return function.isPureVirtual();
#else
  return function.isPure();
#endif
}

/// Making or destroying an object of it may be all that the object is for.
bool isNonTrivial(const clang::CXXRecordDecl* record) {
  if (record == nullptr || !record->hasDefinition() || record->isDependentType()) return false;
  const auto isUserProvided = [](const clang::CXXConstructorDecl* constructor) {
    return constructor->isUserProvided();
  };
  return !record->hasTrivialDestructor() || record->hasNonTrivialDefaultConstructor() ||
         llvm::any_of(record->ctors(), isUserProvided);
}

bool hasNonTrivialType(const clang::ValueDecl& declaration) {
  const clang::QualType type = declaration.getType();
  return !type.isNull() && isNonTrivial(type->getBaseElementTypeUnsafe()->getAsCXXRecordDecl());
}

/// Clang gives attributes of its own to functions of the standard library.
bool isPureOrConst(const clang::Decl& declaration) {
  return llvm::any_of(declaration.attrs(), [](const clang::Attr* attribute) {
    return llvm::isa<clang::PureAttr, clang::ConstAttr>(attribute) && !attribute->isImplicit();
  });
}

/// An interrupt handler has an attribute `used` of Clang's.
bool isExportedOrRetained(const clang::Decl& declaration) {
  const auto* used = declaration.getAttr<clang::UsedAttr>();
  const auto* visibility = declaration.getAttr<clang::VisibilityAttr>();
  return (used != nullptr && !used->isImplicit()) ||
         hasOneOf<clang::RetainAttr, clang::DLLExportAttr>(declaration) ||
         (visibility != nullptr && !visibility->isImplicit() &&
          visibility->getVisibility() == clang::VisibilityAttr::Default);
}

bool isSpecialised(const clang::NamedDecl& declaration) {
  if (llvm::isa<clang::ClassTemplatePartialSpecializationDecl,
                clang::VarTemplatePartialSpecializationDecl>(declaration)) {
    return true;
  }
  const auto isExplicit = [](clang::TemplateSpecializationKind kind) {
    return kind == clang::TSK_ExplicitSpecialization;
  };
  if (const auto* function = llvm::dyn_cast<clang::FunctionDecl>(&declaration)) {
    return isExplicit(function->getTemplateSpecializationKind());
  }
  if (const auto* record = llvm::dyn_cast<clang::CXXRecordDecl>(&declaration)) {
    return isExplicit(record->getTemplateSpecializationKind());
  }
  const auto* variable = llvm::dyn_cast<clang::VarDecl>(&declaration);
  return variable != nullptr && isExplicit(variable->getTemplateSpecializationKind());
}

void addFunction(const clang::FunctionDecl& function, const clang::Decl& latest, Flags& flags) {
  flags.add(Flag::ImplicitOrDefaulted, function.isDefaulted());
  flags.add(Flag::Deleted, function.isDeleted());
  flags.add(Flag::Inline, function.isInlined());
  flags.add(Flag::CalledBySystem,
            function.isMain() ||
                hasOneOf<clang::ConstructorAttr, clang::DestructorAttr, clang::AnyX86InterruptAttr,
                         clang::ARMInterruptAttr, clang::AVRInterruptAttr, clang::AVRSignalAttr,
                         clang::M68kInterruptAttr, clang::MSP430InterruptAttr,
                         clang::MipsInterruptAttr, clang::RISCVInterruptAttr>(latest));
  flags.add(Flag::ReturnsNothing, function.getReturnType()->isVoidType());
  flags.add(Flag::DoesNotReturn, function.isNoReturn());
  flags.add(Flag::PureOrConst, isPureOrConst(latest));
  const auto* method = llvm::dyn_cast<clang::CXXMethodDecl>(&function);
  if (method == nullptr) return;
  flags.add(Flag::StaticMember, method->isStatic());
  flags.add(Flag::Virtual, method->isVirtual());
  flags.add(Flag::Overrides, method->size_overridden_methods() != 0);
  flags.add(Flag::PureVirtual, isPure(*method));
  flags.add(Flag::LambdaMember, method->getParent()->isLambda());
}

void addVariable(const clang::VarDecl& variable, const clang::Decl& latest, Flags& flags) {
  const bool isParameter = llvm::isa<clang::ParmVarDecl>(variable);
  flags.add(Flag::Parameter, isParameter);
  flags.add(Flag::Local, variable.isLocalVarDecl() && !variable.hasExternalStorage());
  flags.add(Flag::StaticMember, variable.isStaticDataMember());
  flags.add(Flag::Inline, variable.isInline());
  flags.add(Flag::CatchVariable, variable.isExceptionVariable());
  flags.add(Flag::CleanupAttribute, latest.hasAttr<clang::CleanupAttr>());
}

void addType(const clang::NamedDecl& declaration, Flags& flags) {
  flags.add(Flag::Local, declaration.getParentFunctionOrMethod() != nullptr);
  flags.add(Flag::Anonymous, declaration.getIdentifier() == nullptr);
  flags.add(Flag::NonTrivialClass,
            isNonTrivial(llvm::dyn_cast<clang::CXXRecordDecl>(&declaration)));
}

}  // namespace

Flag flagsOf(const clang::NamedDecl& declaration) {
  // Later declarations inherit the attributes of earlier ones.
  const clang::Decl& latest = *declaration.getMostRecentDecl();
  Flags flags;
  flags.add(Flag::PossiblyUnused, latest.hasAttr<clang::UnusedAttr>());
  flags.add(Flag::PackedOrAligned,
            hasOneOf<clang::PackedAttr, clang::AlignedAttr, clang::MaxFieldAlignmentAttr>(latest));
  flags.add(Flag::ImplicitOrDefaulted, declaration.isImplicit());
  flags.add(Flag::TemplatePattern, declaration.isTemplated());
  flags.add(Flag::ExportedOrRetained, isExportedOrRetained(latest));
  flags.add(
      Flag::WeakOrAlias,
      hasOneOf<clang::WeakAttr, clang::AliasAttr, clang::IFuncAttr, clang::WeakRefAttr>(latest));
  flags.add(Flag::Deprecated, latest.hasAttr<clang::DeprecatedAttr>());
  flags.add(Flag::Specialisation, isSpecialised(declaration));
  if (const auto* function = llvm::dyn_cast<clang::FunctionDecl>(&declaration)) {
    addFunction(*function, latest, flags);
  } else if (const auto* value = llvm::dyn_cast<clang::ValueDecl>(&declaration)) {
    flags.add(Flag::NonTrivialClass, hasNonTrivialType(*value));
    flags.add(Flag::StructuredBinding, llvm::isa<clang::BindingDecl>(value));
    const auto* variable = llvm::dyn_cast<clang::VarDecl>(value);
    const auto* field = llvm::dyn_cast<clang::FieldDecl>(value);
    if (variable != nullptr) addVariable(*variable, latest, flags);
    flags.add(Flag::BitField, field != nullptr && field->isBitField());
    flags.add(Flag::Local, llvm::isa<clang::BindingDecl>(value) &&
                               value->getDeclContext()->isFunctionOrMethod());
  } else if (llvm::isa<clang::TypeDecl>(declaration)) {
    addType(declaration, flags);
  } else {
    flags.add(Flag::Local, llvm::isa<clang::LabelDecl>(declaration));
  }
  return flags.get();
}

}  // namespace fe_db_tools
