#include "unit_output.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <stdexcept>

#include "new_file.h"

namespace fe_db_tools {

namespace {

/// In the order of publishing.
constexpr const char* kEndings[] = {".i", ".pp.db", ".comp.db", ".manifest"};

bool isThere(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::exists(path, ignored);
}

void removeQuietly(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
}

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
  throw std::runtime_error(path + ": cannot be written: " + reason);
}

}  // namespace

UnitOutput::UnitOutput(const std::string& directory, const std::string& name, bool keepPreprocessed)
    : stem((std::filesystem::path(directory) / name).string()),
      keepPreprocessed(keepPreprocessed) {}

UnitOutput::~UnitOutput() {
  if (lock) removeTemporary();
}

void UnitOutput::begin() {
  lock = std::make_unique<NewFile>(stem + ".lock");
  removeTemporary();
}

void UnitOutput::removeTemporary() const {
  for (const std::string ending : kEndings) {
    removeQuietly(stem + ending + kTemporary);
    // SQLite would take a journal left behind for one of the new file.
    removeQuietly(stem + ending + kTemporary + "-journal");
  }
}

void UnitOutput::removePublished() const {
  removeQuietly(manifest());
  for (const std::string ending : kEndings) removeQuietly(stem + ending);
}

bool UnitOutput::isPublished() const {
  return isThere(manifest()) && isThere(stem + ".pp.db") && isThere(stem + ".comp.db") &&
         (!keepPreprocessed || isThere(stem + ".i"));
}

void UnitOutput::write(const std::string& ending, const std::string& text) const {
  const std::string path = stem + ending + kTemporary;
  std::ofstream file(path, std::ios::binary);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  file.close();
  if (!file) fail(path, std::strerror(errno));
}

void UnitOutput::publish() {
  removeQuietly(manifest());
  for (const std::string ending : kEndings) {
    const std::string temporary = stem + ending + kTemporary;
    const bool isOptional = ending == ".i" || ending == ".manifest";
    if (isOptional && !isThere(temporary)) {
      removeQuietly(stem + ending);  // an earlier run may have kept it
      continue;
    }
    std::error_code error;
    std::filesystem::rename(temporary, stem + ending, error);
    if (error) fail(stem + ending, error.message());
  }
}

std::vector<std::string> staleUnits(const std::string& directory,
                                    const std::set<std::string>& current) {
  static const std::regex pattern(R"((.+-[0-9a-f]{16})\.(i|pp\.db|comp\.db|manifest))");
  std::set<std::string> stale;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    const std::string file = entry.path().filename().string();
    std::smatch parts;
    if (!std::regex_match(file, parts, pattern)) continue;
    if (current.count(parts[1].str()) == 0) stale.insert(parts[1].str());
  }
  return {stale.begin(), stale.end()};
}

}  // namespace fe_db_tools
