#include <algorithm>
#include <cctype>

#include "finding.h"
#include "output.h"

namespace fe_db_tools {
namespace {

using Json = nlohmann::ordered_json;

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

const Rule& ruleOf(const Finding& finding, std::string_view question) {
  const auto* type = std::get_if<const dm::Type*>(&finding);
  const bool isTag = type != nullptr && hasTag(**type);
  const std::string unused = "unused-" + std::string(isTag ? "tag" : kindOf(finding));
  const std::string_view id = question == "unused" ? unused : question;
  return *std::find_if(std::begin(kRules), std::end(kRules) - 1,
                       [id](const Rule& rule) { return rule.id == id; });
}

/// A file URI, or a relative reference.
std::string uriOf(std::string_view path) {
  constexpr std::string_view kPlain = "-._~/";
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string uri = path.starts_with('/') ? "file://" : "";
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPlain = byte < 0x80 && (std::isalnum(byte) || kPlain.find(c) != kPlain.npos);
    isPlain ? uri += c : uri += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return uri;
}

Json resultOf(const Finding& finding, std::string_view question) {
  const Rule& rule = ruleOf(finding, question);
  const std::string what = std::string(kindOf(finding)) + ' ' + shown(nameOf(finding));
  Json result = {{"ruleId", rule.id},
                 {"level", question == "long-names" ? "note" : "warning"},
                 {"message", {{"text", what + ": " + rule.description}}}};
  const dm::Localization& at = positionOf(finding);
  if (at.file == nullptr) return result;
  Json place = {{"artifactLocation", {{"uri", uriOf(at.file->getPath())}}}};
  // Both count from 1; 0 is none.
  if (at.line > 0) place["region"]["startLine"] = at.line;
  if (at.line > 0 && at.column > 0) place["region"]["startColumn"] = at.column;
  result["locations"] = Json::array({{{"physicalLocation", place}}});
  return result;
}

}  // namespace

void printText(std::span<const Finding> findings) {
  for (const Finding& finding : findings) {
    const auto& [file, line, column, wildcard] = positionOf(finding);
    std::string said;
    const Json attributes = attributesOf(finding);
    for (const auto& [name, value] : attributes.items()) {
      if (value.is_boolean() && !value.get<bool>()) continue;
      said += (said.empty() ? " [" : " ") + name;
      if (value.is_string()) said += '=' + value.get<std::string>();
      if (value.is_number()) said += '=' + value.dump();
    }
    print((file == nullptr ? "-" : shown(file->getPath())) + ':' + std::to_string(line) + ':' +
          std::to_string(column) + ": " + std::string(kindOf(finding)) + ' ' +
          shown(nameOf(finding)) + (said.empty() ? "\n" : said + "]\n"));
  }
}

void printJson(std::span<const Finding> findings) {
  for (const Finding& finding : findings) {
    const auto& [file, line, column, wildcard] = positionOf(finding);
    Json object = {{"path", file == nullptr ? Json() : Json(shown(file->getPath()))},
                   {"line", line},
                   {"column", column},
                   {"kind", kindOf(finding)},
                   {"name", shown(nameOf(finding))}};
    if (const auto* call = std::get_if<const dm::CallPoint*>(&finding)) {
      object["caller"] = shown(nameOf((*call)->getCaller()));
      object["callee"] = shown(nameOf((*call)->getCallee()));
    }
    object.update(attributesOf(finding));
    print(object.dump() + '\n');
  }
}

/// Result by result, since there may be very many.
void printSarif(std::span<const Finding> findings, std::string_view question) {
  Json rules = Json::array();
  for (const auto& [id, description] : kRules) {
    rules.push_back({{"id", id}, {"shortDescription", {{"text", description}}}});
  }
  print(R"({"$schema":"https://json.schemastore.org/sarif-2.1.0.json","version":"2.1.0",)"
        R"("runs":[{"tool":{"driver":)" +
        Json({{"name", "fe_db"}, {"rules", rules}}).dump() + R"(},"results":[)");
  const char* separator = "\n";
  for (const Finding& finding : findings) {
    print(separator + resultOf(finding, question).dump());
    separator = ",\n";
  }
  print("\n]}]}\n");
}

}  // namespace fe_db_tools
