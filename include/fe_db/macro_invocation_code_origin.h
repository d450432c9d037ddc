#pragma once

#include <string>
#include <string_view>

#include "fe_db/located_element.h"

namespace orvalesca::databases_merger {

class FrontendDatabase;
class MacroInvocation;

/// One token inside the text of a macro invocation, and where it really comes from. Offsets count
/// from the invocation's first column in the preprocessed text; the end is the column after the
/// token. Every occurrence is an element of its own.
class MacroInvocationCodeOrigin : public LocatedElement {
 public:
  MacroInvocationCodeOrigin() = default;
  MacroInvocationCodeOrigin(const Localization& localization, MacroInvocation* invocation,
                            std::uint32_t offset, std::uint32_t endOffset, bool isParameter,
                            std::string_view tokenString)
      : LocatedElement(localization),
        invocation(invocation),
        offset(offset),
        endOffset(endOffset),
        isParameter(isParameter),
        tokenString(tokenString) {}

  MacroInvocation* getInvocation() const { return invocation; }
  void setInvocation(MacroInvocation* newInvocation) { invocation = newInvocation; }
  std::uint32_t getOffset() const { return offset; }
  void setOffset(std::uint32_t newOffset) { offset = newOffset; }
  std::uint32_t getEndOffset() const { return endOffset; }
  void setEndOffset(std::uint32_t newOffset) { endOffset = newOffset; }
  bool getIsParameter() const { return isParameter; }
  void setIsParameter(bool on) { isParameter = on; }
  const std::string& getTokenString() const { return tokenString; }
  void setTokenString(const std::string& token) { tokenString = token; }

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;
  static bool isPreLoaded;

  MacroInvocation* invocation = nullptr;
  std::uint32_t offset = 0;
  std::uint32_t endOffset = 0;
  bool isParameter = false;
  std::string tokenString;
};

}  // namespace orvalesca::databases_merger
