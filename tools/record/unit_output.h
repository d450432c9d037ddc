#pragma once

#include <string>

namespace fe_db_tools {

/// The files of one unit. They are built under temporary names, which a later run of the unit
/// overwrites, and get their own names when all of them are whole.
class UnitOutput {
 public:
  /// The directory exists.
  UnitOutput(const std::string& directory, const std::string& unitName, bool keepPreprocessed);
  /// Removes what is not published.
  ~UnitOutput();
  UnitOutput(const UnitOutput&) = delete;
  UnitOutput& operator=(const UnitOutput&) = delete;

  /// Where to build them; nothing is there.
  std::string preprocessing() const { return stem + ".pp.db" + kTemporary; }
  std::string compilation() const { return stem + ".comp.db" + kTemporary; }

  /// Throws std::runtime_error when the text cannot be written.
  void writePreprocessed(const std::string& text) const;
  /// Throws std::runtime_error when a file cannot be renamed.
  void publish();
  /// Removes what an earlier run published: it tells of a source that no longer parses.
  void removePublished() const;
  void removeTemporary() const;

 private:
  static constexpr char kTemporary[] = ".tmp";

  std::string stem;
  bool keepPreprocessed;
};

}  // namespace fe_db_tools
