#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "work_directory.h"

namespace fe_db_tools {

/// A file that is built in a WorkDirectory and gets its own name in the end: under that name it is
/// whole or not there. Failures are std::runtime_error with path, reason and advice.
class NewFile {
 public:
  /// Waits while another run builds the same file, up to so many seconds: check afterwards whether
  /// it is there now.
  explicit NewFile(std::string path, int waitSeconds = WorkDirectory::kPatient);

  /// Where it is built. Nothing is there to begin with.
  std::string temporaryPath() const { return WorkDirectory::pathOf(path_); }
  /// The whole content, or what it begins as.
  void write(std::string_view bytes) const;
  /// Fails when something has got the name meanwhile. REQUIRES: nobody has the file open for
  /// writing.
  void publish();
  /// What is there meanwhile, in an order in which it can be removed.
  std::vector<std::string> temporaryNames() const { return directory_.contents(); }

 private:
  std::string path_;
  WorkDirectory directory_;
};

/// Something has the name, a dangling symbolic link included.
bool isTaken(const std::string& path);

/// Writes a file that was not there before.
void writeNewFile(const std::string& path, std::string_view bytes);

}  // namespace fe_db_tools
