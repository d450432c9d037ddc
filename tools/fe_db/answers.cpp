#include "answers.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>

#include "canonical_text.h"
#include "output.h"
#include "source_lines.h"

namespace fe_db_tools {
namespace {

using Json = nlohmann::ordered_json;

enum Column { kPath, kLine, kColumn, kKind, kName, kQualified, kAttributes };

/// What the version of the documented members is.
constexpr int kJsonVersion = 1;

constexpr std::string_view kBold = "\x1b[1m", kFaint = "\x1b[2m", kPlain = "\x1b[0m";

struct Rule {
  const char* id;
  const char* description;
};
constexpr Rule kRules[] = {
    {"unused-macro", "Unused macro"},
    {"unused-type", "Unused type without a tag"},
    {"unused-tag", "Unused struct, union, enum or class tag"},
    {"unused-variable", "Unused variable"},
    {"unused-field", "Unused field"},
    {"no-effect-calls", "Useless call: the callee has no side effects and its result is discarded"},
    {"long-names", "Name of the requested length or longer"},
};

const Rule& ruleOf(std::string_view kind, const Json& attributes, std::string_view question) {
  const std::string form = attributes.value("form", "typedef");
  const bool isTag = kind == "type" && form != "typedef";
  const std::string asked =
      question == "unused" ? "unused-" + std::string(isTag ? "tag" : kind) : std::string(question);
  return *std::find_if(std::begin(kRules), std::end(kRules) - 1,
                       [&](const Rule& rule) { return rule.id == asked; });
}

/// A file URI, or a relative reference.
std::string uriOf(std::string_view path) {
  constexpr std::string_view kUnescaped = "-._~/";
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string uri = path.starts_with('/') ? "file://" : "";
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPlain =
        byte < 0x80 && (std::isalnum(byte) || kUnescaped.find(c) != kUnescaped.npos);
    isPlain ? uri += c : uri += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return uri;
}

/// A mask is a list of words.
Json attributesOf(const Statement& row) {
  Json attributes = Json::object();
  const Json stored = Json::parse(textOf(row, kAttributes));
  for (const auto& [name, value] : stored.items()) {
    if (value.is_null()) continue;
    if (name != "roles" && name != "flags" && name != "by") {
      attributes[name] = value;
      continue;
    }
    Json words = Json::array();
    const std::string text = value.get<std::string>();
    for (std::size_t from = 0, to; from < text.size(); from = to + 1) {
      to = std::min(text.find(',', from), text.size());
      words.push_back(text.substr(from, to - from));
    }
    attributes[name] = words;
  }
  return attributes;
}

Json numberOf(const Statement& row, int column) {
  return isNull(row, column) ? Json() : Json(sqlite3_column_int64(row.get(), column));
}

std::string jsonLine(const Statement& row) {
  Json object = {{"version", kJsonVersion},
                 {"path", isNull(row, kPath) ? Json() : Json(escapedText(textOf(row, kPath)))},
                 {"line", numberOf(row, kLine)},
                 {"column", numberOf(row, kColumn)},
                 {"kind", textOf(row, kKind)},
                 {"name", escapedText(textOf(row, kName))}};
  if (textOf(row, kQualified) != textOf(row, kName)) {
    object["qualified"] = escapedText(textOf(row, kQualified));
  }
  object.update(attributesOf(row));
  return object.dump() + '\n';
}

/// What the name has already is not said again, nor what only scripts need.
bool isInText(std::string_view kind, std::string_view name) {
  if (kind == "call") return name == "value";
  if (kind == "include") return name == "by";
  if (kind == "unit") return name == "directory" || name == "output";
  return true;
}

std::string attributesText(const Statement& row) {
  std::string text;
  const std::string_view kind = textOf(row, kKind);
  const Json attributes = attributesOf(row);
  for (const auto& [name, value] : attributes.items()) {
    const bool isEmpty = value.is_array() && value.empty();
    if (isEmpty || (value.is_boolean() && !value.get<bool>()) || !isInText(kind, name)) continue;
    text += (text.empty() ? " [" : " ") + name;
    if (value.is_string()) text += '=' + value.get<std::string>();
    if (value.is_number()) text += '=' + value.dump();
    const char* separator = "=";
    for (const Json& word : value.is_array() ? value : Json::array()) {
      text += separator + word.get<std::string>();
      separator = ",";
    }
  }
  return text.empty() ? text : text + ']';
}

std::string textLine(const Statement& row, bool coloured) {
  const std::string place = placeText(row, kPath, kLine, kColumn);
  const std::string rest = ": " + std::string(textOf(row, kKind)) + ' ';
  const std::string name = escapedText(textOf(row, kQualified));
  const std::string attributes = attributesText(row);
  if (!coloured) return place + rest + name + attributes + '\n';
  return std::string(kFaint).append(place).append(kPlain) + rest +
         std::string(kBold).append(name).append(kPlain) +
         std::string(kFaint).append(attributes).append(kPlain) + '\n';
}

std::string sarifResult(const Statement& row, std::string_view question) {
  const std::string_view kind = textOf(row, kKind);
  const Rule& rule = ruleOf(kind, attributesOf(row), question);
  const std::string what = std::string(kind) + ' ' + escapedText(textOf(row, kName));
  Json result = {{"ruleId", rule.id},
                 {"level", question == "long-names" ? "note" : "warning"},
                 {"message", {{"text", what + ": " + rule.description}}}};
  if (isNull(row, kPath)) return result.dump();
  Json place = {{"artifactLocation", {{"uri", uriOf(textOf(row, kPath))}}}};
  // Both count from 1; 0 is none.
  const sqlite3_int64 line = sqlite3_column_int64(row.get(), kLine);
  const sqlite3_int64 column = sqlite3_column_int64(row.get(), kColumn);
  if (line > 0) place["region"]["startLine"] = line;
  if (line > 0 && column > 0) place["region"]["startColumn"] = column;
  result["locations"] = Json::array({{{"physicalLocation", place}}});
  return result.dump();
}

std::string sarifHead() {
  Json rules = Json::array();
  for (const auto& [id, description] : kRules) {
    rules.push_back({{"id", id}, {"shortDescription", {{"text", description}}}});
  }
  return R"({"$schema":"https://json.schemastore.org/sarif-2.1.0.json","version":"2.1.0",)"
         R"("runs":[{"tool":{"driver":)" +
         Json({{"name", "fe_db"}, {"rules", rules}}).dump() + R"(},"results":[)";
}

}  // namespace

AnswerPrinter::AnswerPrinter(AnswerFormat answerFormat, std::string_view asked)
    : format(answerFormat), question(asked) {}

void AnswerPrinter::print(const FactsFile& file, const Statement& rows) {
  const bool isSarif = format == AnswerFormat::sarif;
  const bool withSource = format == AnswerFormat::text && isTerminal();
  SourceLines sources;
  if (isSarif) fe_db_tools::print(sarifHead());
  const char* separator = "\n";
  std::optional<std::string> lastPath;
  while (file.step(rows)) {
    if (isNull(rows, kName)) {
      ++skipped;
      continue;
    }
    const std::string path(textOf(rows, kPath));
    if (withSource && lastPath && *lastPath != path) fe_db_tools::print("\n");
    lastPath = path;
    if (isSarif) {
      fe_db_tools::print(separator + sarifResult(rows, question));
      separator = ",\n";
    } else if (format == AnswerFormat::json) {
      fe_db_tools::print(jsonLine(rows));
    } else {
      fe_db_tools::print(textLine(rows, hasColours()));
    }
    if (!withSource || isNull(rows, kPath)) continue;
    if (const auto line = sources.lineOf(path, sqlite3_column_int64(rows.get(), kLine))) {
      fe_db_tools::print("    " + printable(*line) + '\n');
    }
  }
  if (isSarif) fe_db_tools::print("\n]}]}\n");
}

bool isTerminal() {
  static const bool is = isatty(STDOUT_FILENO) != 0;
  return is;
}

bool hasColours() {
  static const bool has = [] {
    const char* noColour = std::getenv("NO_COLOR");
    return isTerminal() && (noColour == nullptr || *noColour == '\0');
  }();
  return has;
}

std::string placeText(const Statement& row, int path, int line, int column) {
  std::string text = isNull(row, path) ? "-" : escapedText(textOf(row, path));
  for (const int number : {line, column}) {
    if (!isNull(row, number)) text += ':' + std::to_string(sqlite3_column_int64(row.get(), number));
  }
  return text;
}

std::string escapedText(std::string_view bytes) {
  std::string text;
  appendEscaped(text, bytes, Colons::plain);
  return text;
}

}  // namespace fe_db_tools
