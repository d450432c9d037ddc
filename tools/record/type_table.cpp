#include "type_table.h"

#include "clang/AST/ASTContext.h"
#include "clang/AST/DeclCXX.h"
#include "clang/AST/DeclTemplate.h"
#include "file_table.h"
#include "properties.h"

namespace fe_db_tools {

namespace {

dm::TypeKind kindOf(const clang::TagDecl& declaration) {
  if (declaration.isEnum()) return kinds::kEnum;
  if (declaration.isUnion()) return kinds::kUnion;
  return declaration.isClass() ? kinds::kClass : kinds::kStruct;
}

/// The member of a class template, for that of an instantiated class.
template <class Template>
const Template& writtenTemplate(const Template& declaration) {
  const Template* written = &declaration;
  while (const Template* pattern = written->getInstantiatedFromMemberTemplate()) written = pattern;
  return *written;
}

/// The declaration in the source: not what the compiler makes of a template.
const clang::TagDecl& writtenDeclaration(const clang::TagDecl& declaration) {
  if (const auto* record = llvm::dyn_cast<clang::CXXRecordDecl>(&declaration)) {
    if (const clang::CXXRecordDecl* pattern = record->getTemplateInstantiationPattern()) {
      return *pattern;
    }
    if (const clang::ClassTemplateDecl* member = record->getDescribedClassTemplate()) {
      return *writtenTemplate(*member).getTemplatedDecl();
    }
  } else if (const auto* enumeration = llvm::dyn_cast<clang::EnumDecl>(&declaration)) {
    if (const clang::EnumDecl* pattern = enumeration->getTemplateInstantiationPattern()) {
      return *pattern;
    }
  }
  return declaration;
}

const clang::TypedefNameDecl& writtenDeclaration(const clang::TypedefNameDecl& declaration) {
  if (const auto* alias = llvm::dyn_cast<clang::TypeAliasDecl>(&declaration)) {
    if (const clang::TypeAliasTemplateDecl* member = alias->getDescribedAliasTemplate()) {
      return *writtenTemplate(*member).getTemplatedDecl();
    }
  }
  // Clang connects members that are types with no more than their class.
  const auto* parent = llvm::dyn_cast<clang::CXXRecordDecl>(declaration.getDeclContext());
  const clang::CXXRecordDecl* pattern =
      parent == nullptr ? nullptr : parent->getTemplateInstantiationPattern();
  if (pattern == nullptr) return declaration;
  for (const clang::NamedDecl* member : pattern->lookup(declaration.getDeclName())) {
    const auto* written = llvm::dyn_cast<clang::TypedefNameDecl>(member);
    if (written != nullptr && written->getLocation() == declaration.getLocation()) return *written;
  }
  return declaration;
}

}  // namespace

dm::Type* TypeTable::add(const clang::NamedDecl& declaration, dm::TypeKind kind, bool incomplete) {
  const clang::IdentifierInfo* name = declaration.getIdentifier();
  dm::Type* type = types[&declaration] = sink.type(
      {.name = name == nullptr ? std::string_view()
                               : std::string_view(name->getNameStart(), name->getLength()),
       .at = files.locate(declaration.getLocation()),
       .kind = kind,
       .local = declaration.getParentFunctionOrMethod() != nullptr,
       .incomplete = incomplete});
  properties.add(type, declaration);
  return type;
}

dm::Type* TypeTable::known(const clang::TagDecl& declaration) const {
  return types.lookup(&writtenDeclaration(declaration));
}

dm::Type* TypeTable::type(const clang::TagDecl& declaration) {
  const clang::TagDecl& written = writtenDeclaration(declaration);
  const auto known = types.find(&written);
  if (known != types.end()) return known->second;
  return add(written, kindOf(written), !written.isThisDeclarationADefinition());
}

dm::Type* TypeTable::type(const clang::TypedefNameDecl& declaration) {
  const auto known = types.find(&declaration);
  if (known != types.end()) return known->second;
  const clang::TypedefNameDecl& written = writtenDeclaration(declaration);
  if (&written != &declaration) return types[&declaration] = type(written);
  dm::Type* added = add(declaration, kinds::kTypedef, /*incomplete=*/false);
  if (dm::Type* referenced = named(declaration.getUnderlyingType())) {
    sink.typeReference(added, referenced);
  }
  return added;
}

dm::Type* TypeTable::builtin(const clang::BuiltinType& type) {
  if (type.isPlaceholderType() || type.isDependentType()) return nullptr;
  dm::Type*& known = types[&type];
  if (known == nullptr) {
    const llvm::StringRef name = type.getName(context.getPrintingPolicy());
    known = sink.type({.name = {name.data(), name.size()}, .kind = kinds::kBuiltin});
  }
  return known;
}

dm::Type* TypeTable::ofTemplate(clang::TemplateName name) {
  const clang::TemplateDecl* declaration = name.getAsTemplateDecl();
  if (declaration == nullptr) return nullptr;
  const clang::NamedDecl* pattern = declaration->getTemplatedDecl();
  if (const auto* record = llvm::dyn_cast_or_null<clang::TagDecl>(pattern))
    return this->type(*record);
  if (const auto* alias = llvm::dyn_cast_or_null<clang::TypedefNameDecl>(pattern)) {
    return this->type(*alias);
  }
  return nullptr;
}

/// What a type without a name is made of: the type pointed to, an element's, a function's result;
/// under parentheses, attributes, decltype, auto or a written qualification the type itself.
clang::QualType TypeTable::inside(clang::QualType type) const {
  const clang::Type* bare = type.getTypePtr();
  if (const auto* pointer = llvm::dyn_cast<clang::PointerType>(bare)) {
    return pointer->getPointeeType();
  }
  if (const auto* reference = llvm::dyn_cast<clang::ReferenceType>(bare)) {
    return reference->getPointeeTypeAsWritten();
  }
  if (const auto* member = llvm::dyn_cast<clang::MemberPointerType>(bare)) {
    return member->getPointeeType();
  }
  if (const auto* array = llvm::dyn_cast<clang::ArrayType>(bare)) return array->getElementType();
  if (const auto* function = llvm::dyn_cast<clang::FunctionType>(bare)) {
    return function->getReturnType();
  }
  if (const auto* complex = llvm::dyn_cast<clang::ComplexType>(bare)) {
    return complex->getElementType();
  }
  if (const auto* vector = llvm::dyn_cast<clang::VectorType>(bare)) {
    return vector->getElementType();
  }
  if (const auto* atomic = llvm::dyn_cast<clang::AtomicType>(bare)) return atomic->getValueType();
  return type.getSingleStepDesugaredType(context);
}

dm::Type* TypeTable::named(clang::QualType type) {
  while (!type.isNull()) {
    const clang::Type* bare = type.getTypePtr();
    if (const auto* alias = llvm::dyn_cast<clang::TypedefType>(bare)) {
      return this->type(*alias->getDecl());
    }
    if (const auto* tag = llvm::dyn_cast<clang::TagType>(bare)) return this->type(*tag->getDecl());
    if (const auto* own = llvm::dyn_cast<clang::InjectedClassNameType>(bare)) {
      return this->type(*own->getDecl());
    }
    if (const auto* basic = llvm::dyn_cast<clang::BuiltinType>(bare)) return builtin(*basic);
    if (const auto* special = llvm::dyn_cast<clang::TemplateSpecializationType>(bare)) {
      return ofTemplate(special->getTemplateName());
    }
    if (const auto* deduced = llvm::dyn_cast<clang::DeducedTemplateSpecializationType>(bare)) {
      return ofTemplate(deduced->getTemplateName());
    }
    const clang::QualType inner = inside(type);
    if (inner.getTypePtrOrNull() == bare) return nullptr;
    type = inner;
  }
  return nullptr;
}

}  // namespace fe_db_tools
