#include "shell_words.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace fe_db_tools {

namespace {

constexpr int kMaxNesting = 32;  // a file may name itself
constexpr std::string_view kSpace = " \t\n\r\f\v";

/// Reads the quoted part that begins at `at`; leaves `at` after the closing quote.
void readQuoted(std::string_view text, std::size_t& at, std::string& word) {
  const char quote = text[at++];
  for (; at < text.size() && text[at] != quote; ++at) {
    const bool isEscape = quote == '"' && text[at] == '\\' && at + 1 < text.size() &&
                          (text[at + 1] == '"' || text[at + 1] == '\\');
    if (isEscape) ++at;
    word += text[at];
  }
  ++at;
}

void appendExpanded(const std::vector<std::string>& arguments,
                    const std::filesystem::path& directory, int nesting,
                    std::vector<std::string>& result) {
  for (const std::string& argument : arguments) {
    std::ifstream file;
    if (argument.size() > 1 && argument[0] == '@' && nesting < kMaxNesting) {
      file.open(directory / argument.substr(1), std::ios::binary);
    }
    if (!file.is_open() || !file) {
      result.push_back(argument);
      continue;
    }
    const std::string text(std::istreambuf_iterator<char>(file), {});
    appendExpanded(splitWords(text), directory, nesting + 1, result);
  }
}

}  // namespace

std::vector<std::string> splitWords(std::string_view text) {
  std::vector<std::string> words;
  for (std::size_t at = text.find_first_not_of(kSpace); at < text.size();
       at = text.find_first_not_of(kSpace, at)) {
    std::string word;
    while (at < text.size() && kSpace.find(text[at]) == std::string_view::npos) {
      if (text[at] == '\'' || text[at] == '"') {
        readQuoted(text, at, word);
        continue;
      }
      if (text[at] == '\\' && at + 1 < text.size()) ++at;
      word += text[at++];
    }
    words.push_back(std::move(word));
  }
  return words;
}

std::string joinWords(const std::vector<std::string>& words) {
  constexpr std::string_view kSpecial = " \t\n\r\f\v'\"\\$`&|;<>()*?[]{}~#!";
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += ' ';
    if (!word.empty() && word.find_first_of(kSpecial) == std::string::npos) {
      text += word;
      continue;
    }
    text += '\'';
    for (const char c : word) text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    text += '\'';
  }
  return text;
}

std::vector<std::string> expandResponseFiles(const std::vector<std::string>& arguments,
                                             const std::string& directory) {
  std::vector<std::string> result;
  appendExpanded(arguments, directory, /*nesting=*/0, result);
  return result;
}

}  // namespace fe_db_tools
