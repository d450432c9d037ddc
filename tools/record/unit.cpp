#include "unit.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>

#include "compiler_name.h"

namespace fe_db_tools {

namespace {

constexpr std::size_t kMaxStem = 150;  // a file name has 255 bytes at most, endings included

/// FNV-1a, 64 bits. The values are part of file names: do not change.
class Hash {
 public:
  void add(const std::string& text) {
    for (const char c : text) add(c);
    add('\0');
  }
  std::string hex() const {
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(value));
    return digits;
  }

 private:
  void add(char c) {
    value ^= static_cast<unsigned char>(c);
    value *= 0x100000001b3;
  }
  std::uint64_t value = 0xcbf29ce484222325;
};

}  // namespace

std::string physicalPath(const std::string& directory, const std::string& file) {
  const std::filesystem::path path = std::filesystem::path(directory) / file;
  std::error_code error;
  const std::filesystem::path physical = std::filesystem::weakly_canonical(path, error);
  return (error ? path.lexically_normal() : physical).string();
}

std::string Unit::sourcePath() const { return physicalPath(directory, source); }

std::string hashOf(const std::vector<std::string>& texts) {
  Hash hash;
  for (const std::string& text : texts) hash.add(text);
  return hash.hex();
}

std::string Unit::name() const {
  const std::string path = sourcePath();
  std::vector<std::string> texts{path, physicalPath(directory, "")};
  texts.insert(texts.end(), flags.begin(), flags.end());
  const std::string target = targetPrefix(compiler);
  if (!target.empty()) texts.push_back(target);
  return std::filesystem::path(path).filename().string().substr(0, kMaxStem) + '-' + hashOf(texts);
}

CompileCommand Unit::command() const {
  CompileCommand command{directory, {compiler}};
  command.arguments.insert(command.arguments.end(), flags.begin(), flags.end());
  command.arguments.push_back(source);
  return command;
}

}  // namespace fe_db_tools
