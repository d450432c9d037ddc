#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "compiler_answer.h"

namespace fe_db_tools {

struct Unit;

/// Asks compilers what they compile for and where they look for headers. Each question is asked
/// once, however many units have it: what decides an answer is the compiler, the language and the
/// few flags that concern target and paths.
///
/// Only what a command names as its compiler is run. Of a compiler cache that is installed under
/// the compiler's name, the compiler that the cache would call is asked.
class CompilerInquiry {
 public:
  enum class Memory {
    run,      ///< answers are good for this object
    lasting,  ///< also for other processes: kept in the user's cache directory for an hour
  };

  explicit CompilerInquiry(Memory memory,
                           std::chrono::milliseconds patience = std::chrono::seconds(10))
      : memory(memory), patience(patience) {}

  /// Gives the unit its compiler's answer. Returns why the unit cannot be recorded, empty when it
  /// can: its compiler is for another machine and does not answer. For a compiler of this machine
  /// that does not answer Clang uses its own paths; `warning` is set the first time.
  std::string askFor(Unit& unit, std::string& warning);

 private:
  struct Question;
  /// An answer, or why there is none.
  struct Reply {
    std::shared_ptr<const CompilerAnswer> answer;
    std::string problem;
  };

  static Question questionOf(const Unit& unit);
  Reply replyTo(const Question& question);
  Reply askNow(const Question& question, const std::filesystem::path& program);

  Memory memory;
  std::chrono::milliseconds patience;
  std::map<std::string, Reply> replies;         ///< by question
  std::map<std::string, std::string> unusable;  ///< programs that hang or do not start, and why
  std::set<std::string> silent;                 ///< compilers named in a warning
};

}  // namespace fe_db_tools
