#pragma once

#include <cstdio>
#include <ctime>
#include <functional>

namespace fe_db_benchmarks {

/// Processor and wall time in seconds.
struct Spent {
  double cpu = 0;
  double wall = 0;
};

inline double secondsOf(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// Runs the part of a program that is to be measured. A function of its own, never inlined, so that
/// callgrind can be told to count in here only (--toggle-collect).
[[gnu::noinline]] inline Spent runMeasured(const std::function<void()>& work) {
  const double cpu = secondsOf(CLOCK_PROCESS_CPUTIME_ID);
  const double wall = secondsOf(CLOCK_MONOTONIC);
  work();
  return {secondsOf(CLOCK_PROCESS_CPUTIME_ID) - cpu, secondsOf(CLOCK_MONOTONIC) - wall};
}

}  // namespace fe_db_benchmarks
