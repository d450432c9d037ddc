#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iomanip>
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

/// Stops at the first source that fails, except with --keep-going.
Folded foldSources(const MergeOptions& options, const std::vector<std::string>& paths,
                   MergeTarget& target, Clock::time_point start) {
  Folded folded;
  ProgressBar bar(paths.size());
  bar.show(0);
  SourceReader reader(paths, options.jobs, options.waitSeconds);
  KnownUnits held;
  held.add(target.getMerger().getUnits());
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
      target.getMerger().mergeCompilationTables(*source->merger);
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
  if (!target.isNew() && !options.replace) line << target.getFactsBefore() << " facts before, ";
  line << target.factsStored() << " facts stored, " << std::fixed << std::setprecision(2) << seconds
       << " s, " << std::setprecision(1) << static_cast<double>(usage.ru_maxrss) / 1024
       << " MiB peak memory\n";
  print(line.str());
}

/// What the merged file cannot have, or cannot know.
void warn(const MergeOptions& options, const Folded& folded, MergeTarget& target, bool hadUnits) {
  if (const auto missing = target.getMerger().tablesNotInFile(); !missing.empty()) {
    report(options.target + ": it lacks tables that sources have rows in (" + listed(missing) +
           "): these were not merged; add the tables with fe_db index --extensions and merge with "
           "--replace");
  } else if (target.getFactsBefore() != 0 && !hadUnits && folded.haveUnits && !options.again) {
    report(options.target +
           ": it had rows but no units before, so units that were merged into it earlier were not "
           "recognised; use --replace if some may count twice");
  }
}

}  // namespace

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
  const bool hadUnits = !target.getMerger().getUnits().empty();
  if (options.debug) target.getMerger().setDebug();
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

}  // namespace fe_db_tools
