#include <memory>
#include <nlohmann/json.hpp>

#include "canonical_rows.h"
#include "output.h"
#include "subcommands.h"

namespace fe_db_tools {
namespace {

struct DumpOptions {
  std::string file;
  std::string table;
  bool json = false;
  int waitSeconds = kDefaultWaitSeconds;
};

/// A value as it stands in a line. Numbers, zero references and NULL are themselves in JSON.
void appendJsonValue(std::string& out, ColumnKind kind, std::string_view value) {
  const bool isReference = kind == ColumnKind::reference || kind == ColumnKind::entity;
  const bool isNumber = kind == ColumnKind::number
                            ? value.find_first_not_of("-+.e0123456789") == std::string_view::npos
                            : isReference && value == "0";
  if (value == "NULL") {
    out += "null";
  } else if (isNumber) {
    out += value;
  } else {
    out += nlohmann::json(value).dump();
  }
}

/// Values hold no tab, so a line falls apart at the tabs and at the first '=' of each piece.
void appendJson(std::string& out, const Table& table, std::string_view line) {
  out += "{\"table\":\"";
  out += table.name;
  out += '"';
  for (const Column& column : table.columns) {
    line.remove_prefix(line.find('\t') + 1);
    const std::string_view cell = line.substr(0, line.find('\t'));
    out += ",\"";
    out += column.name;
    out += "\":";
    appendJsonValue(out, column.kind, cell.substr(column.name.size() + 1));
  }
  out += '}';
}

void dumpTable(const ReadOnlyFile& file, const Table& table, bool json) {
  CanonicalRows rows(file, table);
  std::string text;
  while (rows.next()) {
    text.clear();
    json ? appendJson(text, table, rows.line()) : static_cast<void>(text = rows.line());
    text += '\n';
    print(text);
  }
}

int dump(const DumpOptions& options) {
  const ReadOnlyFile file(options.file, options.waitSeconds);
  for (const Table& table : kTables) {
    if (options.table == table.name) file.require(table);
    if (options.table.empty() || options.table == table.name) {
      dumpTable(file, table, options.json);
    }
  }
  return kDone;
}

}  // namespace

void addDump(CLI::App& program, Action& action) {
  auto options = std::make_shared<DumpOptions>();
  CLI::App* command = program.add_subcommand(
      "dump", "Print the content without row ids; equal content gives equal output");
  command->footer(
      "Prints one row per line: the table, then name=value, separated by tabs, sorted by bytes. A\n"
      "reference is printed as the key of the row that it references (path:line:column:name), a\n"
      "dangling one as !id. Control characters, bidirectional controls, line separators,\n"
      "backslashes and bytes that are not UTF-8 are printed as \\xNN, and so is a ':' within a\n"
      "part of a key, or the first byte of an ambiguous text. `!integer 5` is a value whose type\n"
      "is not that of its column.");
  command->add_option("FILE", options->file, "The database file")->required();
  addTableOption(*command, options->table);
  command->add_flag("--json", options->json,
                    "One JSON object per line; texts and keys are escaped as without --json");
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, &action] {
    action = namingFiles(options->file, [options] { return dump(*options); });
  });
}

}  // namespace fe_db_tools
