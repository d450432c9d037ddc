#include "progress_bar.h"

#include <unistd.h>

#include <cstdio>
#include <string>

namespace fe_db_tools {

namespace {
constexpr std::size_t kWidth = 30;
}

ProgressBar::ProgressBar(std::size_t total)
    : total(total),
      isTerminal(isatty(STDERR_FILENO) == 1),
      start(std::chrono::steady_clock::now()) {}

void ProgressBar::show(std::size_t done, const std::string& note) {
  if (!isTerminal || total == 0) return;
  std::string bar(kWidth * done / total, '#');
  bar.resize(kWidth, '.');
  std::string line = "[" + bar + "] " + std::to_string(done) + "/" + std::to_string(total);
  if (!note.empty()) line += ", " + note;
  if (done != 0) {
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
    const auto left = static_cast<long>(spent.count() / static_cast<double>(done) *
                                        static_cast<double>(total - done));
    char time[32];
    std::snprintf(time, sizeof time, ", %ld:%02ld left", left / 60, left % 60);
    line += time;
  }
  std::fprintf(stderr, "\r\033[K%s", line.c_str());
  std::fflush(stderr);
  isShown = true;
}

void ProgressBar::clear() {
  if (!isShown) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
  isShown = false;
}

}  // namespace fe_db_tools
