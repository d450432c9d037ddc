#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace fe_db_tools {

class WorkDirectory;

/// The files of one unit. They are built in a WorkDirectory, and get their own names when all of
/// them are whole. The manifest comes last: where it is, the rest is whole and of the same run,
/// also after a power failure.
class UnitOutput {
 public:
  /// The directory exists.
  UnitOutput(const std::string& directory, const std::string& name, bool keepPreprocessed);
  /// Removes what was begun and not published.
  ~UnitOutput();
  UnitOutput(const UnitOutput&) = delete;
  UnitOutput& operator=(const UnitOutput&) = delete;

  /// Where to build them.
  std::string preprocessing() const;
  std::string compilation() const;
  std::string manifest() const;

  /// Waits while another process writes this unit, and removes what a killed one has left.
  void begin();
  /// Removes what a killed process has left, where nothing is to be written.
  void removeLeftover() const;
  /// The file with this ending. Throws std::runtime_error when it cannot be written.
  void write(const std::string& ending, const std::string& bytes) const;
  /// Throws std::runtime_error when a file cannot be synchronised or renamed.
  void publish();
  /// Removes what an earlier run published, which describes another state of the source. Throws
  /// std::runtime_error.
  void removePublished() const;
  bool isPublished() const;

 private:
  std::string temporary(const std::string& ending) const;
  void withdraw() const;
  void sync() const;
  void replace(const std::string& ending) const;

  std::string stem;
  bool keepPreprocessed;
  std::unique_ptr<WorkDirectory> work;
};

/// Names of the units that have files in the directory, leftovers of a killed run included, and are
/// not among the current ones, sorted. What is not named like the file of a unit is none of them.
std::vector<std::string> staleUnits(const std::string& directory,
                                    const std::set<std::string>& current);

}  // namespace fe_db_tools
