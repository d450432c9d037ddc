#include "unique_name.h"

#include "clang/AST/ASTContext.h"
#include "clang/AST/Decl.h"
#include "clang/AST/DeclCXX.h"
#include "clang/AST/DeclTemplate.h"
#include "clang/AST/Mangle.h"
#include "clang/Index/USRGeneration.h"
#include "fe_db/file.h"
#include "file_table.h"

namespace fe_db_tools {

UniqueNames::UniqueNames(clang::ASTContext& context, FileTable& files)
    : files(files), names(std::make_unique<clang::ASTNameGenerator>(context)) {}

UniqueNames::~UniqueNames() = default;

std::string UniqueNames::linkerName(const clang::FunctionDecl& function) {
  return function.isDependentContext() ? std::string() : names->getName(&function);
}

std::string UniqueNames::linkerName(const clang::VarDecl& variable) {
  const bool isTemplate =
      variable.isTemplated() || llvm::isa<clang::VarTemplatePartialSpecializationDecl>(variable);
  return isTemplate ? std::string() : names->getName(&variable);
}

std::string UniqueNames::of(const clang::FunctionDecl& function) {
  std::string name = linkerName(function);
  if (name.empty()) {
    llvm::SmallString<128> reference;
    if (!clang::index::generateUSRForDecl(&function, reference)) name = reference.str().str();
  }
  if (name.empty()) name = sourceName(function);
  if (!function.isExternallyVisible()) {
    const clang::FunctionDecl* home = nullptr;
    if (!function.isDefined(home)) home = function.getCanonicalDecl();
    if (const dm::File* file = files.locate(home->getLocation()).file) {
      name += '@' + file->getPath();
    }
  }
  return name;
}

std::string sourceName(const clang::FunctionDecl& function) {
  const auto* method = llvm::dyn_cast<clang::CXXMethodDecl>(&function);
  if (llvm::isa<clang::CXXConstructorDecl>(function)) return method->getParent()->getNameAsString();
  if (llvm::isa<clang::CXXDestructorDecl>(function)) {
    return '~' + method->getParent()->getNameAsString();
  }
  return function.getNameAsString();
}

}  // namespace fe_db_tools
