#include "unit_output.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <regex>
#include <stdexcept>

#include "durable_file.h"
#include "work_directory.h"

namespace fe_db_tools {

namespace {

constexpr char kManifest[] = ".manifest";
/// The files that a manifest answers for.
constexpr const char* kEndings[] = {".i", ".pp.db", ".comp.db"};

bool isThere(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::exists(path, ignored);
}

[[noreturn]] void fail(const std::string& path, const char* what, const std::string& reason) {
  throw std::runtime_error(path + ": cannot be " + what + ": " + reason +
                           "; see that the directory may be written and the disk is sound");
}

void remove(const std::string& path) {
  std::error_code error;
  std::filesystem::remove(path, error);
  if (error) fail(path, "removed", error.message());
}

}  // namespace

UnitOutput::UnitOutput(const std::string& directory, const std::string& name, bool keepPreprocessed)
    : stem((std::filesystem::path(directory) / name).string()),
      keepPreprocessed(keepPreprocessed) {}

UnitOutput::~UnitOutput() = default;

std::string UnitOutput::temporary(const std::string& ending) const {
  // With an ending of its own: nobody who looks for databases should find unfinished ones.
  return WorkDirectory::pathOf(stem, ending + ".tmp");
}

std::string UnitOutput::preprocessing() const { return temporary(".pp.db"); }
std::string UnitOutput::compilation() const { return temporary(".comp.db"); }
std::string UnitOutput::manifest() const { return stem + kManifest; }

void UnitOutput::begin() { work = std::make_unique<WorkDirectory>(stem); }

void UnitOutput::removeLeftover() const { WorkDirectory::removeLeftover(stem); }

void UnitOutput::write(const std::string& ending, const std::string& bytes) const {
  if (!writeFile(temporary(ending), bytes)) fail(stem + ending, "written", std::strerror(errno));
}

bool UnitOutput::isPublished() const {
  return isThere(manifest()) && isThere(stem + ".pp.db") && isThere(stem + ".comp.db") &&
         (!keepPreprocessed || isThere(stem + ".i"));
}

/// A power failure can undo or keep each of several changes of names, unless the directory is
/// synchronised between them. So the old manifest is gone for good before the first of the files
/// that it answers for is touched, also when a run that was killed had removed it.
void UnitOutput::withdraw() const {
  if (!isThere(manifest()) && !isThere(stem + ".pp.db") && !isThere(stem + ".comp.db")) return;
  remove(manifest());
  sync();
}

void UnitOutput::sync() const {
  const std::string directory = directoryOf(stem);
  if (!syncDirectory(directory)) fail(directory, "synchronised", std::strerror(errno));
}

void UnitOutput::replace(const std::string& ending) const {
  std::error_code error;
  std::filesystem::rename(temporary(ending), stem + ending, error);
  if (error) fail(stem + ending, "written", error.message());
}

void UnitOutput::publish() {
  const bool hasManifest = isThere(temporary(kManifest));
  for (const char* ending : {".i", ".pp.db", ".comp.db", kManifest}) {
    if (!isThere(temporary(ending)) || syncFile(temporary(ending))) continue;
    fail(stem + ending, "synchronised", std::strerror(errno));
  }
  withdraw();
  for (const char* ending : kEndings) {
    // An earlier run may have kept the text.
    isThere(temporary(ending)) ? replace(ending) : remove(stem + ending);
  }
  if (!hasManifest) return;
  sync();
  replace(kManifest);
}

void UnitOutput::removePublished() const {
  withdraw();
  for (const char* ending : kEndings) remove(stem + ending);
}

std::vector<std::string> staleUnits(const std::string& directory,
                                    const std::set<std::string>& current) {
  static const std::regex file(R"((.+-[0-9a-f]{16})\.(i|pp\.db|comp\.db|manifest))");
  static const std::regex unit(R"(.+-[0-9a-f]{16})");
  std::set<std::string> stale;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    const std::string name = entry.path().filename().string();
    std::smatch parts;
    std::string found = WorkDirectory::productNameOf(name);
    if (std::regex_match(name, parts, file)) found = parts[1].str();
    if (std::regex_match(found, unit) && current.count(found) == 0) stale.insert(found);
  }
  return {stale.begin(), stale.end()};
}

}  // namespace fe_db_tools
