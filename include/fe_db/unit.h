#pragma once

#include <string>
#include <string_view>
#include "persistence/generic_element.h"

namespace orvalesca::databases_merger {

class File;
class FrontendDatabase;

/// A translation unit whose facts are in the database. Two units are the same if main file,
/// directory and object are; without an object, if the commands are as well.
class Unit : public persistence::GenericElement {
 public:
  Unit() = default;
  Unit(File* mainFile, std::string_view directory, std::string_view output,
       std::string_view command)
      : mainFile(mainFile), directory(directory), output(output), command(command) {}

  // The key: not changed inside a dataset.
  File* getMainFile() const { return mainFile; }
  void setMainFile(File* file) { mainFile = file; }
  /// Where the command ran.
  const std::string& getDirectory() const { return directory; }
  void setDirectory(const std::string& newDirectory) { directory = newDirectory; }
  /// The absolute path of the object, empty if there is none.
  const std::string& getOutput() const { return output; }
  void setOutput(const std::string& newOutput) { output = newOutput; }
  /// Belongs to the key if there is no object.
  const std::string& getCommand() const { return command; }
  void setCommand(const std::string& newCommand) { command = newCommand; }

  /// For display.
  const std::string& getName() const { return name; }
  void setName(const std::string& newName) { name = newName; }
  /// The program that recorded the unit, with its version and that of its compiler.
  const std::string& getRecorder() const { return recorder; }
  void setRecorder(const std::string& newRecorder) { recorder = newRecorder; }
  /// Which facts were asked for.
  const std::string& getOptions() const { return options; }
  void setOptions(const std::string& newOptions) { options = newOptions; }
  /// Of all that was read.
  const std::string& getDigest() const { return digest; }
  void setDigest(const std::string& newDigest) { digest = newDigest; }
  /// The row was written by a merge; false in a file of the unit's own.
  bool getIsFolded() const { return isFolded; }
  void setIsFolded(bool on) { isFolded = on; }

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;

  File* mainFile = nullptr;
  std::string directory, output, command;
  std::string name, recorder, options, digest;
  bool isFolded = false;
};

}  // namespace orvalesca::databases_merger
