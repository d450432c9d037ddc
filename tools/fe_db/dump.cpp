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
      "dump", "Print the content without row ids: equal content prints equal bytes");
  command->footer(
      "Prints one row a line: the table, then name=value, separated by tabs, sorted by bytes. A\n"
      "reference is printed as the key that it leads to (path:line:column:name), one that leads\n"
      "nowhere as !id. Control characters, those that turn text around or end a line, backslashes\n"
      "and bytes that are no UTF-8 are printed as \\xNN, and so is a ':' within a part of a key,\n"
      "or the first byte of a text that could be taken for something else. `!integer 5` is a\n"
      "value of another type than its column has.");
  command->add_option("FILE", options->file, "The database file")->required();
  addTableOption(*command, options->table);
  command->add_flag("--json", options->json,
                    "One JSON object a line; texts and keys as they are printed without --json");
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, &action] {
    action = namingFiles(options->file, [options] { return dump(*options); });
  });
}

}  // namespace fe_db_tools
