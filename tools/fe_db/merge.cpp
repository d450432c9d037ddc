#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iomanip>
#include <sstream>
#include <thread>

#include "canonical_text.h"
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
  unsigned long long facts = 0;
  bool isComplete = true;
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

/// Stops at the first source that fails, except with --keep-going.
Folded foldSources(const MergeOptions& options, const std::vector<std::string>& paths,
                   MergeTarget& target, Clock::time_point start) {
  Folded folded;
  ProgressBar bar(paths.size());
  bar.show(0);
  SourceReader reader(paths, options.jobs, options.waitSeconds);
  while (std::optional<Source> source = reader.next()) {
    if (source->failure.empty()) {
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
  if (!target.isNew()) line << target.getFactsBefore() << " facts before, ";
  line << target.factsStored() << " facts stored, " << std::fixed << std::setprecision(2) << seconds
       << " s, " << std::setprecision(1) << static_cast<double>(usage.ru_maxrss) / 1024
       << " MiB peak memory\n";
  print(line.str());
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
  MergeTarget target(options.target, options.waitSeconds);
  if (options.debug) target.getMerger().setDebug();
  const Folded folded = foldSources(options, paths, target, start);
  if (folded.sources == 0 || (folded.failed != 0 && !options.keepGoing)) {
    report(options.target + ": nothing was written" +
           (options.keepGoing ? "" : "; use --keep-going to merge the other sources"));
    return kFailed;
  }
  target.write(options.index);
  printSummary(options, folded, target, secondsSince(start));
  if (folded.failed != 0) {
    report(options.target + ": " + sourceCount(folded.failed) + " skipped");
  }
  return folded.failed != 0 || (options.strict && !folded.isComplete) ? kFailed : kDone;
}

}  // namespace fe_db_tools
