#include "nearest_word.h"

#include <algorithm>
#include <cctype>

namespace fe_db_tools {
namespace {

char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

/// Insertions, deletions and replacements that make one out of the other; more than `most` is
/// `most` + 1. Case does not count.
std::size_t distance(std::string_view a, std::string_view b, std::size_t most) {
  const std::size_t difference = a.size() > b.size() ? a.size() - b.size() : b.size() - a.size();
  if (difference > most) return most + 1;
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    std::size_t least = row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = diagonal + (lower(a[i - 1]) == lower(b[j - 1]) ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
      least = std::min(least, row[j]);
    }
    if (least > most) return most + 1;
  }
  return row[b.size()];
}

}  // namespace

std::vector<std::string> nearestWords(std::string_view word, std::span<const std::string> known,
                                      std::size_t most) {
  const std::size_t tolerance = std::max<std::size_t>(1, word.size() / 3);
  std::vector<std::pair<std::size_t, std::string>> near;
  for (const std::string& candidate : known) {
    const bool isBeginning = !word.empty() && candidate.starts_with(word);
    const std::size_t steps = isBeginning ? 1 : distance(word, candidate, tolerance);
    if (steps <= tolerance) near.emplace_back(steps, candidate);
  }
  std::sort(near.begin(), near.end());
  near.erase(std::unique(near.begin(), near.end()), near.end());
  std::vector<std::string> words;
  for (std::size_t i = 0; i < near.size() && i < most; ++i) words.push_back(near[i].second);
  return words;
}

std::string suggestion(std::string_view word, std::span<const std::string> known) {
  const std::vector<std::string> near = nearestWords(word, known, 3);
  if (near.empty()) return {};
  std::string text = "; did you mean ";
  for (std::size_t i = 0; i < near.size(); ++i) {
    text += (i == 0 ? "\"" : i + 1 == near.size() ? " or \"" : ", \"") + near[i] + '"';
  }
  return text + '?';
}

}  // namespace fe_db_tools
