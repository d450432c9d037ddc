#pragma once

#include "fe_db/located_element.h"

namespace orvalesca::databases_merger {

class Function;
class FrontendDatabase;

/// One call: who calls whom, where, and whether the value is used. At one place one function has
/// one call point; the first callee stays.
class CallPoint : public LocatedElement {
 public:
  CallPoint() = default;
  CallPoint(Function* caller, Function* callee, const Localization& localization, bool isValueUsed)
      : LocatedElement(localization), caller(caller), callee(callee), isValueUsed(isValueUsed) {}

  Function* getCaller() const { return caller; }
  void setCaller(Function* function) { caller = function; }
  Function* getCallee() const { return callee; }
  void setCallee(Function* function) { callee = function; }
  bool getIsValueUsed() const { return isValueUsed; }
  void setIsValueUsed(bool on) { isValueUsed = on; }

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;

  Function* caller = nullptr;
  Function* callee = nullptr;
  bool isValueUsed = false;
};

}  // namespace orvalesca::databases_merger
