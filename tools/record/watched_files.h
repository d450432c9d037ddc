#pragma once

#include "llvm/Support/VirtualFileSystem.h"
#include "manifest.h"

namespace fe_db_tools {

/// The file system as it is, telling `inputs` what is read and what is looked for in vain.
llvm::IntrusiveRefCntPtr<llvm::vfs::FileSystem> watchedFiles(UnitInputs& inputs);

}  // namespace fe_db_tools
