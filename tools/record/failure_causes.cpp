#include "failure_causes.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace fe_db_tools {

namespace {

constexpr std::string_view kError = "error: ";
constexpr std::size_t kMostCauses = 10;

std::string restOfLine(const std::string& text, std::size_t at) {
  return text.substr(at, text.find('\n', at) - at);
}

/// The first error, or without one this program's own message about the unit.
std::string causeIn(const std::string& messages, const std::string& source) {
  const std::size_t error = messages.find(kError);
  if (error != std::string::npos) return restOfLine(messages, error + kError.size());
  const std::size_t unit = messages.rfind(source + ": ");
  const std::string own =
      restOfLine(messages, unit == std::string::npos ? 0 : unit + source.size() + 2);
  return own.substr(0, own.find("; "));
}

/// Without the names that it is about: a name is a reason only where it is that of a file.
std::string withoutNames(const std::string& cause) {
  if (cause.ends_with("file not found")) return cause;
  std::string text;
  bool isName = false;
  for (const char c : cause) {
    if (c == '\'') isName = !isName;
    if (!isName) text += c;
  }
  return text;
}

}  // namespace

void FailureCauses::add(const std::string& source, const std::string& messages) {
  const std::string text = causeIn(messages, source);
  Cause& cause = causes[withoutNames(text)];
  if (cause.units++ == 0) cause = {text, source, 1};
}

std::string FailureCauses::text() const {
  std::vector<const Cause*> sorted;
  for (const auto& [key, cause] : causes) sorted.push_back(&cause);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const Cause* a, const Cause* b) { return a->units > b->units; });
  std::string text;
  for (std::size_t i = 0; i < sorted.size() && i < kMostCauses; ++i) {
    const Cause& cause = *sorted[i];
    text += "  " + std::to_string(cause.units) + " failed: " + cause.text + " (";
    text += (cause.units == 1 ? "" : "first: ") + cause.source + ")\n";
  }
  if (sorted.size() > kMostCauses) {
    text += "  and " + std::to_string(sorted.size() - kMostCauses) + " further causes\n";
  }
  return text;
}

}  // namespace fe_db_tools
