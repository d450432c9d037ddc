#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// What the numbers in the files mean, in the words that programs print.
namespace fe_db_tools {

struct NumberWord {
  std::uint64_t number;
  std::string_view word;
};

/// The numbers of one column.
struct Vocabulary {
  std::string_view table;
  std::string_view column;
  bool isMask;  ///< each word is a bit
  std::span<const NumberWord> words;
};

extern const std::span<const Vocabulary> kVocabularies;

/// REQUIRES: there is one.
const Vocabulary& vocabularyOf(std::string_view table, std::string_view column);

/// The SQL expression that gives the word for a number, or the number; of a mask the words, each
/// followed by a comma but the last.
std::string wordSql(const Vocabulary& vocabulary, const std::string& number);

/// The number of a word, or 0. REQUIRES: a mask.
std::uint64_t bitOf(const Vocabulary& vocabulary, std::string_view word);

}  // namespace fe_db_tools
