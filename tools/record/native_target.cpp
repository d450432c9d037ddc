#include "native_target.h"

#include "clang/Basic/TargetInfo.h"  // for the triple, whose header has moved
#if __has_include("llvm/TargetParser/Host.h")
#include "llvm/TargetParser/Host.h"
#else
#include "llvm/Support/Host.h"
#endif

namespace fe_db_tools {

bool isNativeTarget(const std::string& target) {
  if (target.empty()) return true;
  const llvm::Triple asked(llvm::Triple::normalize(target));
  const llvm::Triple own(llvm::Triple::normalize(llvm::sys::getDefaultTargetTriple()));
  return asked.getArch() == own.getArch() && asked.getOS() == own.getOS() &&
         asked.getEnvironment() == own.getEnvironment();
}

}  // namespace fe_db_tools
