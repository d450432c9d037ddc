#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "progress_bar.h"

namespace fe_db_tools {

/// How far a run is: a bar on a terminal, else a line on standard error every ten seconds.
class RunProgress {
 public:
  /// Of no units: nothing is shown.
  explicit RunProgress(std::size_t total);

  void show(std::size_t done, const std::string& note);
  /// Before anything else is printed.
  void clear() { bar.clear(); }
  /// How long to wait at most before the next call of `show`.
  std::chrono::nanoseconds untilNext() const;

 private:
  using Clock = std::chrono::steady_clock;

  std::size_t total;
  bool isTerminal;
  ProgressBar bar;
  Clock::time_point start;
  Clock::time_point next;
};

}  // namespace fe_db_tools
