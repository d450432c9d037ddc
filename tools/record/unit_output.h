#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace fe_db_tools {

class NewFile;

/// The files of one unit. They are built under temporary names, which a later run of the unit
/// overwrites, and get their own names when all of them are whole. The manifest comes last: where
/// it stands, so does the rest.
class UnitOutput {
 public:
  /// The directory exists.
  UnitOutput(const std::string& directory, const std::string& name, bool keepPreprocessed);
  /// Removes what was begun and not published.
  ~UnitOutput();
  UnitOutput(const UnitOutput&) = delete;
  UnitOutput& operator=(const UnitOutput&) = delete;

  /// Where to build them.
  std::string preprocessing() const { return stem + ".pp.db" + kTemporary; }
  std::string compilation() const { return stem + ".comp.db" + kTemporary; }
  std::string manifest() const { return stem + ".manifest"; }

  /// Waits while another process writes this unit, and clears away what a killed one has left.
  void begin();
  /// The text file with this ending. Throws std::runtime_error when it cannot be written.
  void write(const std::string& ending, const std::string& text) const;
  /// Throws std::runtime_error when a file cannot be renamed.
  void publish();
  /// Removes what an earlier run published: it tells of a source that is another now.
  void removePublished() const;
  bool isPublished() const;

 private:
  static constexpr char kTemporary[] = ".tmp";

  void removeTemporary() const;

  std::string stem;
  bool keepPreprocessed;
  std::unique_ptr<NewFile> lock;  ///< never published: two processes may have the same unit
};

/// Names of the units that have files in the directory and are not among the current ones, sorted.
/// What is not named like the file of a unit is none of them.
std::vector<std::string> staleUnits(const std::string& directory,
                                    const std::set<std::string>& current);

}  // namespace fe_db_tools
