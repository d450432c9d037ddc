#pragma once

#include <benchmark/benchmark.h>

/// Each registers the benchmarks of one source file.
void registerDatasetOperations();
void registerCursorOperations();

/// What was timed has not done its work: the benchmark shows the reason in place of a time, and the
/// program fails. Called after the timed loop.
void refuse(benchmark::State& state, const char* why);

/// Runs what is no part of the measured operation inside its loop.
template <class Work>
void untimed(benchmark::State& state, Work&& work) {
  state.PauseTiming();
  work();
  state.ResumeTiming();
}
