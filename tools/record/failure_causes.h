#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace fe_db_tools {

/// Why units failed, the most frequent first.
class FailureCauses {
 public:
  /// `messages`: all that was printed about the unit.
  void add(const std::string& source, const std::string& messages);
  /// A line for each cause, the most frequent ones.
  std::string text() const;

 private:
  struct Cause {
    std::string text;  ///< of the first unit
    std::string source;
    std::size_t units = 0;
  };

  std::map<std::string, Cause> causes;  ///< by what is the same in all of its units
};

}  // namespace fe_db_tools
