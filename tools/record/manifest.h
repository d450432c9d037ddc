#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace fe_db_tools {

struct RecordOptions;
struct Unit;

/// A regular file as it is at some time.
struct FileState {
  std::uint64_t size = 0;
  /// When content or attributes changed last, in nanoseconds. Unlike the time of modification
  /// nobody can set it back: as long as it is the same, so is the content.
  std::int64_t changed = 0;
  std::optional<std::uint64_t> hash;  ///< of the content, once it was asked for
};

/// What a parse took from the file system: the files it read, and the names under which it looked
/// for a file and found none. A header that turns up under such a name changes the unit too.
class UnitInputs {
 public:
  /// Before the file is read; its content is hashed here.
  void noteRead(const std::string& path);
  void noteMissing(const std::string& path) { missing.insert(path); }

  /// Of the contents of all files read, in the order in which they were read; empty if that is not
  /// certain.
  std::string digest() const;
  /// As lines of a manifest. Empty when they do not say what was read: a file that changed
  /// meanwhile, a pipe, a name with a line break.
  std::string lines() const;

 private:
  std::map<std::string, FileState> files;
  std::string contents;  ///< size and hash of each file, in the order of reading
  std::set<std::string> missing;
  bool isCertain = true;
};

/// The text of DIR/<unit>.manifest; empty when the inputs cannot be relied upon.
std::string manifestText(const Unit& unit, const RecordOptions& options, std::size_t facts,
                         const UnitInputs& inputs);

/// The number of facts in a unit's files, from its manifest; 0 without one.
std::size_t factsOf(const std::string& manifestPath);

/// Finds units whose files are as a new recording would write them. Remembers the state of each
/// file: use a new one after the files may have changed.
class ReuseCheck {
 public:
  /// Removes also what a killed run has left of the unit: if it is unchanged nobody else does.
  bool isUnchanged(const Unit& unit, const RecordOptions& options);

 private:
  bool isSame(const std::string& path, const FileState& before);
  bool isLineTrue(const std::string& line);

  std::map<std::string, std::optional<FileState>> files;
};

}  // namespace fe_db_tools
