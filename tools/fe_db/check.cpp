#include <nlohmann/json.hpp>

#include "canonical_text.h"
#include "check_rules.h"
#include "check_text.h"
#include "output.h"
#include "subcommands.h"

namespace fe_db_tools {
namespace {

/// `table` is null for the file as a whole.
std::string textOf(const Remark& remark, const std::string& file, const Table* table) {
  std::string line = remark.isNote ? "note: " : "";
  line += table != nullptr ? std::string(table->name) : printable(file);
  if (remark.row) line += " row " + std::to_string(*remark.row);
  return line + ": " + remark.reason + "\n";
}

std::string jsonOf(const Remark& remark, const Table* table) {
  using nlohmann::ordered_json;
  ordered_json object;
  object["severity"] = remark.isNote ? "note" : "finding";
  object["table"] = table != nullptr ? ordered_json(table->name) : ordered_json();
  object["row"] = remark.row ? ordered_json(*remark.row) : ordered_json();
  object["reason"] = remark.reason;
  return object.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace

int check(const CheckOptions& options) {
  const ReadOnlyFile file(options.file, options.waitSeconds, MissingSchema::accepted);
  const bool hasText = !options.text.empty();
  const std::string text = hasText ? readText(options.text) : "";
  bool isSound = true;
  const auto report = [&](const Table* table, const std::vector<Remark>& remarks) {
    for (const Remark& remark : remarks) {
      isSound &= remark.isNote;
      print(options.json ? jsonOf(remark, table) : textOf(remark, options.file, table));
    }
  };
  checkFile(file, report);
  if (hasText) checkText(file, text, report);
  return isSound ? kDone : kFailed;
}

}  // namespace fe_db_tools
