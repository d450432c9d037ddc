#include "source_lines.h"

#include <fstream>

namespace fe_db_tools {

std::optional<std::string> SourceLines::lineOf(const std::string& path, long long line) {
  const auto [known, isNew] = files.try_emplace(path);
  if (isNew) {
    std::ifstream file(path, std::ios::binary);
    for (std::string text; std::getline(file, text);) known->second.push_back(std::move(text));
  }
  if (line < 1 || line > static_cast<long long>(known->second.size())) return std::nullopt;
  std::string text = known->second[static_cast<std::size_t>(line - 1)];
  if (text.ends_with('\r')) text.pop_back();
  return text;
}

}  // namespace fe_db_tools
