#pragma once

#include "persistence/generic_element.h"

namespace orvalesca::databases_merger {

class File;
class FrontendDatabase;
class Unit;

/// A file that a unit has read, its main file included.
class UnitFile : public persistence::GenericElement {
 public:
  UnitFile() = default;
  UnitFile(Unit* unit, File* file) : unit(unit), file(file) {}

  Unit* getUnit() const { return unit; }
  void setUnit(Unit* newUnit) { unit = newUnit; }
  File* getFile() const { return file; }
  void setFile(File* newFile) { file = newFile; }

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;

  Unit* unit = nullptr;
  File* file = nullptr;
};

}  // namespace orvalesca::databases_merger
