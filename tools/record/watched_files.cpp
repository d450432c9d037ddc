#include "watched_files.h"

#include "llvm/Config/llvm-config.h"
#include "llvm/Support/Path.h"

namespace fe_db_tools {

namespace {

class WatchedFiles : public llvm::vfs::ProxyFileSystem {
 public:
  explicit WatchedFiles(UnitInputs& inputs)
      : ProxyFileSystem(llvm::vfs::getRealFileSystem()), inputs(inputs) {}

  llvm::ErrorOr<llvm::vfs::Status> status(const llvm::Twine& path) override {
    auto found = ProxyFileSystem::status(path);
    if (!found) inputs.noteMissing(absolute(path));
    return found;
  }
  llvm::ErrorOr<std::unique_ptr<llvm::vfs::File>> openFileForRead(
      const llvm::Twine& path) override {
    const std::string name = absolute(path);
    const bool isThere = bool(ProxyFileSystem::status(path));
    isThere ? inputs.noteRead(name) : inputs.noteMissing(name);
    return ProxyFileSystem::openFileForRead(path);
  }
#if LLVM_VERSION_MAJOR >= 19
  // Would go past `status`.
  bool exists(const llvm::Twine& path) override { return bool(status(path)); }
#endif

 private:
  std::string absolute(const llvm::Twine& path) const {
    llvm::SmallString<256> name;
    path.toVector(name);
    // Leaves dots alone: after a symbolic link they are not what they seem.
    (void)makeAbsolute(name);
    return name.str().str();
  }

  UnitInputs& inputs;
};

}  // namespace

llvm::IntrusiveRefCntPtr<llvm::vfs::FileSystem> watchedFiles(UnitInputs& inputs) {
  return llvm::makeIntrusiveRefCnt<WatchedFiles>(inputs);
}

}  // namespace fe_db_tools
