#pragma once

#include <string>
#include <string_view>

#include "facts_file.h"

namespace fe_db_tools {

enum class AnswerFormat { text, json, sarif };

/// Prints the rows of a query with the columns path, line, column, kind, name, qualified and
/// attributes (a JSON object), in their order. Rows without a name are damaged: they are skipped
/// and counted. In a terminal, each answer is followed by its line of the source, and files are
/// apart.
class AnswerPrinter {
 public:
  /// `question` is that of a SARIF document.
  AnswerPrinter(AnswerFormat format, std::string_view question);

  /// All rows. Once.
  void print(const FactsFile& file, const Statement& rows);
  unsigned long getSkipped() const { return skipped; }

 private:
  AnswerFormat format;
  std::string question;
  unsigned long skipped = 0;
};

/// Whether standard output is a terminal that is to have colours: NO_COLOR is not set.
bool hasColours();
bool isTerminal();

/// "path:line:column", without what is not known.
std::string placeText(const Statement& row, int path, int line, int column);
std::string escapedText(std::string_view bytes);

}  // namespace fe_db_tools
