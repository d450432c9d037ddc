#include "check_text.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "canonical_text.h"

namespace fe_db_tools {
namespace {

/// A text by lines and columns, which count from 1.
class PreprocessedText {
 public:
  explicit PreprocessedText(std::string_view text) : text(text) {
    for (std::size_t at = 0; at <= text.size(); ++at) {
      if (at == 0 || text[at - 1] == '\n') starts.push_back(at);
    }
  }

  /// The text there; shorter, or empty, if the line ends before.
  std::string_view slice(sqlite3_int64 line, sqlite3_int64 column, std::size_t length) const {
    if (line < 1 || line > static_cast<sqlite3_int64>(starts.size()) || column < 1) return {};
    const std::size_t start = starts[static_cast<std::size_t>(line - 1)];
    std::string_view rest = text.substr(start);
    rest = rest.substr(0, rest.find('\n'));
    if (static_cast<std::size_t>(column - 1) > rest.size()) return {};
    return rest.substr(static_cast<std::size_t>(column - 1), length);
  }

 private:
  std::string_view text;
  std::vector<std::size_t> starts;
};

/// Row id, line, first column, the column after the last (NULL: where the text ends), and the
/// expected text.
constexpr char kExpansions[] =
    "SELECT rowid, PpLineNum, PpColNum, NULL, ExpandedCode FROM MacroExpansion";
constexpr char kTokens[] =
    "SELECT O.rowid, ppLineNum, ppStartColNum + OffsetColumnInInvocation,"
    " ppStartColNum + EndOffsetColumnInInvocation, TokenString FROM MacroInvocationCodeOrigin O"
    " JOIN MacroInvocation USING (MacroInvocationId) ORDER BY O.rowid";

std::string quoted(std::string_view text) {
  std::string result = "'";
  appendEscaped(result, text, Colons::plain);
  return result + "'";
}

std::vector<Remark> misplaced(const ReadOnlyFile& file, const PreprocessedText& text,
                              const char* query) {
  std::vector<Remark> remarks;
  const Statement rows = file.prepare(query);
  while (file.step(rows)) {
    const auto number = [&](int cell) { return sqlite3_column_int64(rows.get(), cell); };
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(rows.get(), 4));
    const std::string_view expected = bytes != nullptr ? bytes : "";
    const bool hasEnd = sqlite3_column_type(rows.get(), 3) != SQLITE_NULL;
    // Of any two numbers; a length that is none reaches to the end of the line.
    const auto length =
        hasEnd ? static_cast<std::size_t>(number(3)) - static_cast<std::size_t>(number(2))
               : expected.size();
    const std::string_view found = text.slice(number(1), number(2), length);
    if (found == expected) continue;
    remarks.push_back({false, number(0),
                       quoted(expected) + " is not in line " + std::to_string(number(1)) +
                           ", column " + std::to_string(number(2)) + ", where the text has " +
                           quoted(found)});
  }
  return remarks;
}

}  // namespace

std::string readText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (file) file.peek();  // a directory can be opened, and fails at the first read
  if (!file.is_open() || file.bad()) {
    throw std::runtime_error(path + ": cannot read it: " + std::strerror(errno) +
                             "; give the text that fe_db_record --keep-preprocessed wrote");
  }
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void checkText(const ReadOnlyFile& file, std::string_view preprocessed, const Reporter& report) {
  const PreprocessedText text(preprocessed);
  report(&tableOf(TableId::macroInvocationCodeOrigin), misplaced(file, text, kTokens));
  report(&tableOf(TableId::macroExpansion), misplaced(file, text, kExpansions));
}

}  // namespace fe_db_tools
