#include "unit_output.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace fe_db_tools {

namespace {

constexpr const char* kEndings[] = {".i", ".pp.db", ".comp.db"};

void removeQuietly(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
}

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
  throw std::runtime_error(path + ": cannot be written: " + reason);
}

}  // namespace

UnitOutput::UnitOutput(const std::string& directory, const std::string& unitName,
                       bool keepPreprocessed)
    : stem((std::filesystem::path(directory) / unitName).string()),
      keepPreprocessed(keepPreprocessed) {
  removeTemporary();
}

UnitOutput::~UnitOutput() { removeTemporary(); }

void UnitOutput::removeTemporary() const {
  for (const std::string ending : kEndings) {
    removeQuietly(stem + ending + kTemporary);
    // SQLite would take a journal left behind for one of the new file.
    removeQuietly(stem + ending + kTemporary + "-journal");
  }
}

void UnitOutput::removePublished() const {
  for (const std::string ending : kEndings) removeQuietly(stem + ending);
}

void UnitOutput::writePreprocessed(const std::string& text) const {
  if (!keepPreprocessed) return;
  const std::string path = stem + ".i" + kTemporary;
  std::ofstream file(path, std::ios::binary);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  file.close();
  if (!file) fail(path, std::strerror(errno));
}

void UnitOutput::publish() {
  for (const std::string ending : kEndings) {
    if (ending == kEndings[0] && !keepPreprocessed) {
      removeQuietly(stem + ending);  // an earlier run may have kept it
      continue;
    }
    std::error_code error;
    std::filesystem::rename(stem + ending + kTemporary, stem + ending, error);
    if (error) fail(stem + ending, error.message());
  }
}

}  // namespace fe_db_tools
