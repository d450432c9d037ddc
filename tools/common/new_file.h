#pragma once

#include <chrono>
#include <span>
#include <string>

namespace fe_db_tools {

/// A file that is built under a temporary name, `path` + ".new", and gets its own in the end: under
/// its own name it is whole or not there. The temporary name goes away with the object; what a
/// killed run has left under it is overwritten. Failures are std::runtime_error with path and
/// reason.
class NewFile {
 public:
  static constexpr int kPatient = 1'000'000;

  /// Waits while another run builds the same file, up to so many seconds: check afterwards whether
  /// it is there now.
  explicit NewFile(std::string path, int waitSeconds = kPatient);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  const std::string& temporaryPath() const { return temporary_; }
  /// The whole content.
  void write(std::span<const unsigned char> bytes) const;
  /// Fails when something has got the name meanwhile. REQUIRES: nobody has the file open for
  /// writing.
  void publish();

 private:
  bool openAndLock(std::chrono::steady_clock::time_point deadline);

  std::string path_;
  std::string temporary_;
  int descriptor_ = -1;
  bool published_ = false;
};

/// Something has the name, a dangling symbolic link included.
bool isTaken(const std::string& path);

/// Writes a file that was not there before.
void writeNewFile(const std::string& path, std::span<const unsigned char> bytes);

}  // namespace fe_db_tools
