#pragma once

#include <memory>
#include <string>

namespace clang {
class ASTContext;
class ASTNameGenerator;
class FunctionDecl;
class VarDecl;
}  // namespace clang

namespace fe_db_tools {

class FileTable;

/// Names that distinguish functions across units: what a linker sees where it sees anything.
class UniqueNames {
 public:
  UniqueNames(clang::ASTContext& context, FileTable& files);
  ~UniqueNames();

  /// The linker's name: in C the function's own, in C++ the mangled one, or what an asm label
  /// says. A function that no other unit can see gets "@" and the path of the file that it is
  /// in: without it all static functions of one name would look like one. A template has no
  /// linker's name and gets Clang's universal symbol reference.
  std::string of(const clang::FunctionDecl& function);

  /// Empty for what has no name in a linker.
  std::string linkerName(const clang::FunctionDecl& function);
  std::string linkerName(const clang::VarDecl& variable);

 private:
  FileTable& files;
  std::unique_ptr<clang::ASTNameGenerator> names;
};

/// The name as the source has it: `S` for a constructor of a template S<T>.
std::string sourceName(const clang::FunctionDecl& function);

}  // namespace fe_db_tools
