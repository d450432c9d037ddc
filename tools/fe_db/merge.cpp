#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iomanip>
#include <memory>
#include <sstream>
#include <thread>

#include "canonical_text.h"
#include "known_units.h"
#include "merge_sources.h"
#include "merge_target.h"
#include "output.h"
#include "progress_bar.h"
#include "source_reader.h"
#include "subcommands.h"

namespace fe_db_tools {
namespace {

using Clock = std::chrono::steady_clock;

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

struct Folded {
  std::size_t sources = 0;
  std::size_t failed = 0;
  std::size_t known = 0;  ///< passed over: their units are all held
  unsigned long long facts = 0;
  bool isComplete = true;
  bool haveUnits = false;
};

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

std::string progressNote(const Folded& folded, Clock::time_point start) {
  std::string note = std::to_string(folded.facts) + " facts";
  const double seconds = secondsSince(start);
  if (seconds > 0) {
    note += ", " + std::to_string(static_cast<long>(static_cast<double>(folded.facts) / seconds)) +
            " per second";
  }
  return note;
}

/// Why the source would count something twice, for the user; empty if it does not, or shall.
std::string refusalOf(const MergeOptions& options, const std::string& path, std::size_t units,
                      const std::vector<std::string>& known) {
  if (known.empty() || options.again) return "";
  const bool isPart = options.skipKnown && known.size() < units;
  return path + ": " + options.target + " or an earlier source already has " +
         (isPart              ? "some of its units: "
          : known.size() == 1 ? "its unit "
                              : "its units ") +
         listed(known) + "; merged again, they would count twice: use --replace to make " +
         options.target + " anew from the sources given, " +
         (isPart ? "" : "--skip-known to skip sources whose units are all there, ") +
         "or --again to add them all the same";
}

/// Stops at the first source that fails, unless told to keep going.
Folded foldSources(const MergeOptions& options, const std::vector<std::string>& paths,
                   MergeTarget& target, Clock::time_point start) {
  Folded folded;
  ProgressBar bar(paths.size());
  bar.show(0);
  SourceReader reader(paths, options.jobs, options.waitSeconds);
  KnownUnits held;
  held.add(target.merger().getUnits());
  for (std::size_t i = 0; std::optional<Source> source = reader.next(); ++i) {
    if (source->failure.empty()) {
      const auto& units = source->merger->getUnits();
      const std::vector<std::string> known = held.find(units);
      if (options.skipKnown && !known.empty() && known.size() == units.size()) {
        ++folded.known;
        continue;
      }
      source->failure = refusalOf(options, paths[i], units.size(), known);
    }
    if (source->failure.empty()) {
      held.add(source->merger->getUnits());
      folded.haveUnits = folded.haveUnits || !source->merger->getUnits().empty();
      target.merger().mergeCompilationTables(*source->merger);
      source->merger.reset();
      ++folded.sources;
      folded.facts += source->facts;
      folded.isComplete = folded.isComplete && source->isComplete;
    } else {
      bar.clear();
      report(source->failure);
      ++folded.failed;
      if (!options.keepGoing) break;
    }
    bar.show(folded.sources + folded.failed, progressNote(folded, start));
  }
  return folded;
}

std::string sourceCount(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " source" : " sources");
}

void printSummary(const MergeOptions& options, const Folded& folded, const MergeTarget& target,
                  double seconds) {
  struct rusage usage {};
  getrusage(RUSAGE_SELF, &usage);
  std::ostringstream line;
  line << printable(options.target) << ": " << sourceCount(folded.sources) << " merged, "
       << folded.facts << " facts read, ";
  if (folded.known != 0) line << sourceCount(folded.known) << " skipped as known, ";
  if (!target.isNew() && !options.replace) line << target.factsBefore() << " facts before, ";
  line << target.factsStored() << " facts stored, " << std::fixed << std::setprecision(2) << seconds
       << " s, " << std::setprecision(1) << static_cast<double>(usage.ru_maxrss) / 1024
       << " MiB peak memory\n";
  print(line.str());
}

/// What the merged file cannot have, or cannot know.
void warn(const MergeOptions& options, const Folded& folded, MergeTarget& target, bool hadUnits) {
  if (const auto missing = target.merger().tablesNotInFile(); !missing.empty()) {
    report(options.target + ": it lacks tables that sources have rows in (" + listed(missing) +
           "): these were not merged; add the tables with fe_db index --extensions and merge with "
           "--replace");
  } else if (target.factsBefore() != 0 && !hadUnits && folded.haveUnits && !options.again) {
    report(options.target +
           ": it had rows but no units before, so units that were merged into it earlier were not "
           "recognised; use --replace if some may count twice");
  }
}

int merge(const MergeOptions& options) {
  const Clock::time_point start = Clock::now();
  const std::vector<std::string> paths = expandSources(options.sources);
  if (paths.empty()) {
    report("merge: no sources given; name at least one, see fe_db merge --help");
    return kWrongUsage;
  }
  if (const std::string same = findSameFile(options.target, paths); !same.empty()) {
    report("merge: " + same + "; give each file once");
    return kWrongUsage;
  }
  const auto content =
      options.replace ? MergeTarget::Content::replaced : MergeTarget::Content::kept;
  MergeTarget target(options.target, content, options.waitSeconds);
  const bool hadUnits = !target.merger().getUnits().empty();
  if (options.debug) target.merger().setDebug();
  const Folded folded = foldSources(options, paths, target, start);
  if (folded.sources == 0 && folded.failed == 0) {
    print(printable(options.target) + ": it has all units of the sources already\n");
    return kDone;
  }
  if (folded.sources == 0 || (folded.failed != 0 && !options.keepGoing)) {
    report(options.target + ": nothing was written" +
           (options.keepGoing ? "" : "; use --keep-going to merge the other sources"));
    return kFailed;
  }
  target.write(options.index);
  warn(options, folded, target, hadUnits);
  printSummary(options, folded, target, secondsSince(start));
  if (folded.failed != 0) {
    report(options.target + ": " + sourceCount(folded.failed) + " skipped");
  }
  return folded.failed != 0 || (options.strict && !folded.isComplete) ? kFailed : kDone;
}

void addUnitOptions(CLI::App& command, MergeOptions& options) {
  command.add_flag("--replace", options.replace,
                   "Make TARGET anew from the sources; its old content goes");
  auto* skipKnown = command.add_flag("--skip-known", options.skipKnown,
                                     "Skip sources whose units TARGET or an earlier source has");
  command.add_flag("--again", options.again, "Merge units again that TARGET has already")
      ->excludes(skipKnown);
}

}  // namespace

void addMerge(CLI::App& program, Action& action) {
  auto options = std::make_shared<MergeOptions>();
  CLI::App* command = program.add_subcommand(
      "merge", "Merge compilation databases into one that has each fact once");
  command->footer(
      "SOURCE is a file, @LISTFILE for a file that lists one path per line, or - for a list on\n"
      "standard input. Sources are merged in the order given; where two disagree, the first value\n"
      "is kept, and counts add up. TARGET is created if it does not exist; otherwise its content\n"
      "comes first, and its triggers do not run. On any failure TARGET either has the result of\n"
      "the whole merge or is unchanged.\n"
      "A source with a unit that TARGET or an earlier source already has would count it twice: it\n"
      "is refused unless --replace, --skip-known or --again is given.");
  command->add_option("TARGET", options->target, "The file to merge into")->required();
  command->add_option("SOURCE", options->sources, "The files to merge, or lists of them")
      ->required();
  command->add_option("-j,--jobs", options->jobs, "How many sources to read ahead, in parallel")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  command->add_flag("--index,!--no-index", options->index,
                    "Create the search indexes in the merged file, or omit them (default: create)");
  command->add_flag("--keep-going", options->keepGoing,
                    "Skip sources that cannot be merged; the exit code is still 1");
  addUnitOptions(*command, *options);
  command->add_flag("--strict", options->strict,
                    "Exit with 1 if rows or references of a source had to be skipped");
  command->add_flag("--debug", options->debug, "Print the number of rows of each table");
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, &action] {
    action = namingFiles(options->target, [options] { return merge(*options); });
  });
}

}  // namespace fe_db_tools
