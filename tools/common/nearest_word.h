#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fe_db_tools {

/// The words that somebody who typed `word` may have meant, the nearest first, at most `most`.
/// Costs time proportional to the lengths of all of them.
std::vector<std::string> nearestWords(std::string_view word, std::span<const std::string> known,
                                      std::size_t most);

/// "; did you mean \"calls\"?" or nothing.
std::string suggestion(std::string_view word, std::span<const std::string> known);

}  // namespace fe_db_tools
