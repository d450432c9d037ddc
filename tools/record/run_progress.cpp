#include "run_progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace fe_db_tools {

namespace {
constexpr std::chrono::seconds kInterval{10};
}

RunProgress::RunProgress(std::size_t total)
    : total(total),
      isTerminal(isatty(STDERR_FILENO) == 1),
      bar(total),
      start(Clock::now()),
      next(start + kInterval) {}

void RunProgress::show(std::size_t done, const std::string& note) {
  if (isTerminal) return bar.show(done, note);
  const Clock::time_point now = Clock::now();
  if (total == 0 || now < next) return;
  next = now + kInterval;
  std::string line = std::to_string(done) + " of " + std::to_string(total) + " units";
  if (!note.empty()) line += ", " + note;
  if (done != 0) {
    const std::chrono::duration<double> spent = now - start;
    const auto left = static_cast<long>(spent.count() / static_cast<double>(done) *
                                        static_cast<double>(total - done));
    line += ", about " + std::to_string(left) + " s left";
  }
  std::fprintf(stderr, "fe_db_record: %s\n", line.c_str());
  std::fflush(stderr);
}

std::chrono::nanoseconds RunProgress::untilNext() const {
  if (isTerminal) return kInterval;
  return std::max<std::chrono::nanoseconds>(next - Clock::now(), std::chrono::nanoseconds(0));
}

}  // namespace fe_db_tools
