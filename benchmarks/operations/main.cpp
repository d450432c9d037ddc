// The cost of single operations of the library: emplace and look-up in memory, find cursors on
// files. Run with --benchmark_filter=REGEX for some of them; --help lists the other options.
#include <malloc.h>

#include <vector>

#include "operations.h"
#include "search_file.h"

namespace {

bool anyRefused = false;

}  // namespace

void refuse(benchmark::State& state, const char* why) {
  anyRefused = true;
  state.SkipWithError(why);
}

int main(int argc, char** argv) {
  // Memory that one dataset has had from the kernel stays for the next one: page faults would make
  // large datasets look slow.
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  // A batch of operations takes milliseconds, so that a tenth of a second is many of them. An
  // option of the command line comes later and wins.
  char minTime[] = "--benchmark_min_time=0.1";
  std::vector<char*> arguments(argv, argv + argc);
  arguments.insert(arguments.begin() + 1, minTime);
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  registerDatasetOperations();
  registerCursorOperations();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  removeSearchFiles();
  return anyRefused ? 1 : 0;
}
