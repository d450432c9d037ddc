#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace fe_db_tools {

/// A line on standard error with what is done and the time left. Nothing when that is no terminal.
class ProgressBar {
 public:
  explicit ProgressBar(std::size_t total);
  ~ProgressBar() { clear(); }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// `note` is what there is to say beside the number.
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
