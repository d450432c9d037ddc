#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "fe_db/export.h"
#include "fe_db/named_element.h"

namespace orvalesca::databases_merger {

class CompilationData;
class MacroGroup;
class MacroGroups;
class mergerImpl;

/// One definition of a preprocessor macro. A name may have several, at several positions; in a
/// dataset a macro is found by its name and position, or by its name alone where either position
/// is a wildcard.
class FE_DB_EXPORT Macro : public NamedElement {
 public:
  using Value = std::variant<std::monostate, std::int64_t, std::uint64_t>;

  /// Where a macro comes from; computed, never stored.
  enum class MacroKind : std::uint32_t {
    InFile = 0,
    CommandLine = 1,
    NoFileColumn2 = 2,
    Predefined = 3,
    Unplaced = 4,
  };

  Macro(Identifier* identifier, const Localization& localization, unsigned refCount);
  Macro(std::int64_t id = 0);
  Macro(const Macro& other);
  Macro& operator=(const Macro& other);
  ~Macro();

  const Value& getValue() const { return value; }
  void setValue(const Value& newValue) { value = newValue; }
  bool hasValue() const { return !std::holds_alternative<std::monostate>(value); }

  /// The replacement text.
  const std::string& getText() const { return text; }
  void setText(const std::string& newText) { text = newText; }

  /// InFile with a file; otherwise the column itself, or Unplaced for column 0.
  MacroKind getKind() const;

  /// False once the macro was seen as no longer defined. No column holds this: a macro read from a
  /// row is defined.
  bool getIsDefined() const { return isDefined; }
  void setIsDefined(bool on) { isDefined = on; }
  bool getIsObjectLike() const { return isObjectLike; }
  void setIsObjectLike(bool on) { isObjectLike = on; }
  bool getIsVariadic() const { return isVariadic; }
  void setIsVariadic(bool on) { isVariadic = on; }
  bool getIsCommandLineDefinition() const { return isCommandLineDefinition; }
  void setIsCommandLineDefinition(bool on) { isCommandLineDefinition = on; }
  bool getIsPredefined() const { return isPredefined; }
  void setIsPredefined(bool on) { isPredefined = on; }

  /// The column Value: the 64 bits of the value taken as signed, empty without a value. Signedness
  /// is a column of its own, read after this one.
  std::optional<std::int64_t> getIntegralValueForDB() const;
  void setIntegralValueFromDB(std::optional<std::int64_t> stored);
  bool getSignednessForDB() const { return std::holds_alternative<std::int64_t>(value); }
  /// Re-labels the held 64 bits; leaves a macro without a value alone.
  void setSignednessFromDB(bool isSigned);

  /// Merges another copy of the same macro: counts add up, a missing value is taken over, an
  /// undefined copy makes this one undefined for good. Text and the other flags stay. True when the
  /// row has to be written again.
  bool update(const Macro& other);

  /// The element's row id after the call. A macro at a wildcard position is never inserted.
  long long saveToDB(FrontendDatabase& db);
  /// Fills the element from the row of its id.
  void loadFromDB(FrontendDatabase& db);

  /// The table has been read; process-wide.
  static bool isLoaded;
  /// Every stored macro is in memory with its id, so that one without an id has no row. Set by the
  /// embedding program only.
  static bool isPreLoaded;

 private:
  friend class CompilationData;
  friend class LocatedElement;
  friend class MacroGroup;
  friend class MacroGroups;
  friend class mergerImpl;

  bool merge(long long otherId, unsigned otherRefCount, const Value& otherValue,
             bool otherIsDefined);

  Value value;
  std::string text;
  bool isDefined = true;
  bool isObjectLike = true;
  bool isVariadic = false;
  bool isCommandLineDefinition = false;
  bool isPredefined = false;
  /// The other macros of the name in the dataset that owns this one, if there are any.
  NotCopied<MacroGroup*> group;
};

}  // namespace orvalesca::databases_merger
