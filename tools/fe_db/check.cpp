#include <memory>
#include <nlohmann/json.hpp>

#include "canonical_text.h"
#include "check_rules.h"
#include "check_text.h"
#include "output.h"
#include "subcommands.h"

namespace fe_db_tools {
namespace {

struct CheckOptions {
  std::string file;
  std::string text;
  bool json = false;
  int waitSeconds = kDefaultWaitSeconds;
};

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

}  // namespace

void addCheck(CLI::App& program, Action& action) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App* command = program.add_subcommand(
      "check", "Check a file for damage: content that the library would never write");
  command->footer(
      "Prints one finding per line, `TABLE row ID: reason`, or `FILE: reason` for the file as a\n"
      "whole; prints nothing if the file is sound. Findings: errors of SQLite's integrity check,\n"
      "missing tables and columns, tables whose ids are not the row ids (fe_db merge would lose\n"
      "them), virtual tables, a page size other than 32768, values of a wrong type, missing or\n"
      "dangling references, rows with equal keys, row id 0. Lines that begin with `note: ` are\n"
      "not findings: bits of Identifier.Kind that differ from the content of the tables, unknown\n"
      "kinds of external identifiers, and ids of macro uses in a compilation file that are stale\n"
      "since a merge. Exit code 1 if there is a finding.");
  command->add_option("FILE", options->file, "The database file")->required();
  command
      ->add_option("--text", options->text,
                   "The preprocessed text of a preprocessing FILE: also check that it has each "
                   "token and each expansion at the position in its row")
      ->type_name("UNIT.i");
  command->add_flag("--json", options->json,
                    "One JSON object per line: severity, table, row, reason");
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, &action] {
    action = namingFiles(options->file, [options] { return check(*options); });
  });
}

}  // namespace fe_db_tools
