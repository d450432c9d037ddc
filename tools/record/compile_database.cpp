#include "compile_database.h"

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>

#include "product.h"
#include "shell_words.h"

namespace fe_db_tools {

namespace {

struct Entry {
  CompileCommand command;
  std::string file;
};

Entry readEntry(const nlohmann::json& json, const std::filesystem::path& base) {
  Entry entry;
  entry.command.directory = (base / json.at("directory").get<std::string>()).string();
  entry.file = json.at("file").get<std::string>();
  entry.command.arguments = json.contains("arguments")
                                ? json["arguments"].get<std::vector<std::string>>()
                                : splitWords(json.at("command").get<std::string>());
  return entry;
}

/// The entry's file as its command has it: a source may be written in another way there.
std::string sourceAsWritten(const Entry& entry, const std::vector<std::string>& candidates) {
  const std::string path = physicalPath(entry.command.directory, entry.file);
  for (const std::string& candidate : candidates) {
    if (physicalPath(entry.command.directory, candidate) == path) return candidate;
  }
  return {};
}

void addEntry(const Entry& entry, std::set<std::string>& names, CompileDatabase& database) {
  const CleanCommand clean = cleanCommand(entry.command);
  if (!clean.refusal.empty()) {
    database.refused.push_back({physicalPath(entry.command.directory, entry.file), clean.refusal});
    return;
  }
  const std::string source = sourceAsWritten(entry, clean.sources);
  if (source.empty()) {
    ++database.skipped;
    return;
  }
  Unit unit{entry.command.directory, source, clean.flags, clean.compiler};
  unit.object = objectOf(entry.command, source);
  if (names.insert(unit.name()).second) database.units.push_back(std::move(unit));
}

}  // namespace

CompileDatabase readCompileDatabase(const std::string& path) {
  std::filesystem::path file = path;
  if (std::filesystem::is_directory(file)) file /= "compile_commands.json";
  std::ifstream stream(file);
  if (!stream) {
    throw std::runtime_error(file.string() +
                             ": cannot be read; let the build write it (cmake "
                             "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON, or bear -- make)");
  }
  try {
    CompileDatabase database;
    std::set<std::string> names;
    const std::filesystem::path base = std::filesystem::absolute(file).parent_path();
    for (const nlohmann::json& entry : nlohmann::json::parse(stream)) {
      addEntry(readEntry(entry, base), names, database);
    }
    return database;
  } catch (const nlohmann::json::exception& error) {
    throw std::runtime_error(file.string() + ": is no compilation database (" + error.what() +
                             "); let the build write it again");
  }
}

}  // namespace fe_db_tools
