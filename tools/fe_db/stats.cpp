#include <sys/stat.h>

#include <array>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <sstream>

#include "canonical_text.h"
#include "output.h"
#include "read_only_file.h"
#include "subcommands.h"

namespace fe_db_tools {
namespace {

struct Stats {
  std::vector<std::pair<std::string, sqlite3_int64>> rowsPerTable;
  sqlite3_int64 rows = 0;
  sqlite3_int64 bytes = 0;

  double bytesPerRow() const { return static_cast<double>(bytes) / static_cast<double>(rows); }
};

Stats gather(const ReadOnlyFile& file) {
  Stats stats;
  for (const Table& table : kTables) {
    if (!file.has(table)) continue;
    const std::string name(table.name);
    const sqlite3_int64 rows = file.number("SELECT count(*) FROM " + name);
    stats.rowsPerTable.emplace_back(name, rows);
    stats.rows += rows;
  }
  stats.bytes = file.number("PRAGMA page_count") * file.number("PRAGMA page_size");
  return stats;
}

void printText(const Stats& stats) {
  constexpr int kNameWidth = 26, kNumberWidth = 14;
  std::ostringstream text;
  const auto line = [&](const std::string& name, const auto& number) {
    text << std::left << std::setw(kNameWidth) << name << std::right << std::setw(kNumberWidth)
         << number << '\n';
  };
  for (const auto& [name, rows] : stats.rowsPerTable) line(name, rows);
  line("rows", stats.rows);
  line("file size in bytes", stats.bytes);
  text << std::fixed << std::setprecision(1);
  if (stats.rows == 0) {
    line("bytes per row", "-");
  } else {
    line("bytes per row", stats.bytesPerRow());
  }
  print(text.str());
}

void printJson(const Stats& stats, const std::string& file) {
  using nlohmann::ordered_json;
  const auto line = [](const ordered_json& object) { print(object.dump() + "\n"); };
  for (const auto& [name, rows] : stats.rowsPerTable) {
    line({{"table", name}, {"rows", rows}});
  }
  ordered_json whole = {{"file", printable(file)}, {"rows", stats.rows}, {"bytes", stats.bytes}};
  whole["bytesPerRow"] = stats.rows == 0 ? ordered_json() : ordered_json(stats.bytesPerRow());
  line(whole);
}

/// One line each, in the order of paths: main file, object or command, recorder, facts asked for.
void printUnits(const ReadOnlyFile& file, bool json) {
  file.require(tableOf(TableId::unit));
  constexpr const char* kNames[] = {"name",    "file",     "directory", "output",
                                    "command", "recorder", "options",   "digest"};
  const Statement units = file.prepare(
      "SELECT Name, Path, Directory, Output, Command, Recorder, Options, Digest FROM Unit LEFT "
      "JOIN File ON FileId=MainFileId ORDER BY Path, Directory, Output, Command");
  while (file.step(units)) {
    std::array<std::string, std::size(kNames)> values;
    for (std::size_t i = 0; i < values.size(); ++i) {
      const auto* text = sqlite3_column_text(units.get(), static_cast<int>(i));
      appendEscaped(values[i], text != nullptr ? reinterpret_cast<const char*>(text) : "",
                    Colons::plain);
    }
    if (json) {
      nlohmann::ordered_json line;
      for (std::size_t i = 0; i < values.size(); ++i) line[kNames[i]] = values[i];
      print(line.dump() + "\n");
    } else {
      const auto& [name, path, directory, output, command, recorder, options, digest] = values;
      print(path + '\t' + (output.empty() ? command : output) + '\t' + recorder + '\t' + options +
            '\n');
    }
  }
}

}  // namespace

int showStats(const StatsOptions& options) {
  const ReadOnlyFile file(options.file, options.waitSeconds);
  if (options.units) {
    printUnits(file, options.json);
    return kDone;
  }
  const Stats stats = gather(file);
  options.json ? printJson(stats, options.file) : printText(stats);
  return kDone;
}

}  // namespace fe_db_tools
