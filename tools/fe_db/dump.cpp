#include <nlohmann/json.hpp>

#include "canonical_rows.h"
#include "output.h"
#include "subcommands.h"

namespace fe_db_tools {
namespace {

/// A value as in a line. Numbers, zero references and NULL are themselves in JSON.
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

/// Values hold no tab, so a line splits at the tabs and at the first '=' of each piece.
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
    json ? appendJson(text, table, rows.getLine()) : static_cast<void>(text = rows.getLine());
    text += '\n';
    print(text);
  }
}

}  // namespace

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

}  // namespace fe_db_tools
