#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace fe_db_tools {

/// A line on standard error with the progress and the time left. Nothing if that is not a terminal.
class ProgressBar {
 public:
  explicit ProgressBar(std::size_t total);
  ~ProgressBar() { clear(); }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// `note` is printed after the number.
  void show(std::size_t done, const std::string& note = {});
  /// Before anything else is printed.
  void clear();

 private:
  std::size_t total;
  bool isTerminal;
  bool isShown = false;
  std::chrono::steady_clock::time_point start;
};

}  // namespace fe_db_tools
