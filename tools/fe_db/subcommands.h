#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace fe_db_tools {

/// Exit codes of all subcommands; `kFailed` is also the result of a comparison or check that
/// found something.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kWrongUsage = 2;

/// A command line that cannot be carried out as it is, found before any work: ends in kWrongUsage.
struct WrongUsage : std::runtime_error {
  using std::runtime_error::runtime_error;
};

inline constexpr int kDefaultWaitSeconds = 60;
inline constexpr char kCompilationKind[] = "compilation";
inline constexpr char kPreprocessingKind[] = "preprocessing";

// Each subcommand: its options, and its work, which returns the exit code and throws
// std::runtime_error with a message for the user if something fails.

struct InitOptions {
  std::string file;
  std::string kind = kCompilationKind;
};
int init(const InitOptions& options);

struct IndexOptions {
  std::string file;
  bool drop = false;
  bool extensions = false;
  int waitSeconds = kDefaultWaitSeconds;
};
int makeIndexes(const IndexOptions& options);

struct StatsOptions {
  std::string file;
  bool json = false;
  bool units = false;
  int waitSeconds = kDefaultWaitSeconds;
};
int showStats(const StatsOptions& options);

struct DumpOptions {
  std::string file;
  std::string table;
  bool json = false;
  int waitSeconds = kDefaultWaitSeconds;
};
int dump(const DumpOptions& options);

struct DiffOptions {
  std::string left;
  std::string right;
  std::string table;
  int waitSeconds = kDefaultWaitSeconds;
};
int diff(const DiffOptions& options);

struct MergeOptions {
  std::string target;
  std::vector<std::string> sources;
  std::size_t jobs = std::max(1U, std::thread::hardware_concurrency());
  bool index = true;
  bool keepGoing = false;
  bool replace = false;
  bool skipKnown = false;
  bool again = false;
  bool strict = false;
  bool debug = false;
  int waitSeconds = kDefaultWaitSeconds;
};
int merge(const MergeOptions& options);

/// Restricts a search: every given condition has to hold.
struct FindFilter {
  std::vector<std::string> words;   ///< the arguments of the question
  std::optional<std::string> name;  ///< the identifier or, of a function, its name in the source
  std::optional<std::size_t> minLength;
  std::optional<int> refCount;
  std::optional<std::uint32_t> linkage;
  bool defined = false;
  std::optional<std::string> fileGlob;
  std::string role;  ///< of references; empty: any
};
struct FindOptions {
  std::string file;
  std::string question;
  std::vector<std::string> given;  ///< the names of the options that were given
  FindFilter filter;
  std::optional<std::size_t> limit;
  std::optional<unsigned> depth;
  bool explain = false;
  bool count = false;
  bool json = false;
  bool sarif = false;
  int waitSeconds = kDefaultWaitSeconds;
};
int find(const FindOptions& options);

struct CheckOptions {
  std::string file;
  std::string text;
  bool json = false;
  int waitSeconds = kDefaultWaitSeconds;
};
int check(const CheckOptions& options);

}  // namespace fe_db_tools
