#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "work_directory.h"

namespace fe_db_tools {

/// A file that is built in a WorkDirectory and renamed at the end: under its own name it is
/// complete or does not exist. Failures are std::runtime_error with path, reason and advice.
class NewFile {
 public:
  /// Waits while another run builds the same file, up to so many seconds: check afterwards whether
  /// it is there now.
  explicit NewFile(std::string path, int waitSeconds = WorkDirectory::kPatient);

  /// Where it is built. The path does not exist at first.
  std::string temporaryPath() const { return WorkDirectory::pathOf(path); }
  /// The whole content, or its beginning.
  void write(std::string_view bytes) const;
  /// Fails if the name has been taken meanwhile. REQUIRES: nobody has the file open for
  /// writing.
  void publish();
  /// All temporary files, in an order in which they can be removed.
  std::vector<std::string> temporaryNames() const { return directory.contents(); }

 private:
  std::string path;
  WorkDirectory directory;
};

/// The name exists, even as a dangling symbolic link.
bool isTaken(const std::string& path);

/// Writes a file that did not exist before.
void writeNewFile(const std::string& path, std::string_view bytes);

}  // namespace fe_db_tools
