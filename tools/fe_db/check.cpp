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
  const ReadOnlyFile file(options.file, options.waitSeconds, Gaps::accepted);
  const bool hasText = !options.text.empty();
  const std::string text = hasText ? readText(options.text) : "";
  bool good = true;
  const auto tell = [&](const Table* table, const std::vector<Remark>& remarks) {
    for (const Remark& remark : remarks) {
      good &= remark.isNote;
      print(options.json ? jsonOf(remark, table) : textOf(remark, options.file, table));
    }
  };
  checkFile(file, tell);
  if (hasText) checkText(file, text, tell);
  return good ? kDone : kFailed;
}

}  // namespace

void addCheck(CLI::App& program, Action& action) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App* command = program.add_subcommand(
      "check", "Look for damage: what the file holds and the library would never write");
  command->footer(
      "Prints one finding a line, `TABLE row ID: reason`, or `FILE: reason` of the whole file;\n"
      "nothing for a good file. Findings: whatever SQLite's integrity check finds, missing tables\n"
      "and columns, tables whose ids are not the row ids, so that fe_db merge would lose them,\n"
      "virtual tables, another page size than 32768, values of a wrong type, ids that lead to no\n"
      "row or are missing, rows with equal keys, row id 0. Lines that begin with `note: ` are no\n"
      "findings: bits of Identifier.Kind that differ from what the tables hold, unknown kinds of\n"
      "external identifiers, and macro uses in a compilation file whose ids a merge has outdated.\n"
      "Exit code 1 when there is a finding.");
  command->add_option("FILE", options->file, "The database file")->required();
  command
      ->add_option("--text", options->text,
                   "The preprocessed text of a preprocessing FILE: look as well whether each token "
                   "and each expansion stands in it where its row says")
      ->type_name("UNIT.i");
  command->add_flag("--json", options->json,
                    "One JSON object a line: severity, table, row, reason");
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, &action] {
    action = namingFiles(options->file, [options] { return check(*options); });
  });
}

}  // namespace fe_db_tools
