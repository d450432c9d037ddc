#include "manifest.h"

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>

#include "compiler_answer.h"
#include "llvm/Support/MemoryBuffer.h"
#include "llvm/Support/xxhash.h"
#include "shell_words.h"
#include "unit_facts.h"
#include "unit_output.h"
#include "unit_recorder.h"

namespace fe_db_tools {

namespace {

constexpr char kFormat[] = "fe_db_record manifest 1";

/// File systems tell times as coarsely as this: younger times prove nothing about a content.
constexpr std::int64_t kCoarsestTime = 2'000'000'000;

std::int64_t now() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

std::optional<FileState> fileState(const std::string& path) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0 || !S_ISREG(found.st_mode)) return {};
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  return FileState{static_cast<std::uint64_t>(found.st_size),
                   found.st_ctim.tv_sec * kNanoseconds + found.st_ctim.tv_nsec,
                   {}};
}

std::optional<std::uint64_t> fileHash(const std::string& path) {
  // Volatile: read and not mapped, for a mapped file that somebody shortens is a crash.
  const auto content = llvm::MemoryBuffer::getFile(
      path, /*IsText=*/false, /*RequiresNullTerminator=*/false, /*IsVolatile=*/true);
  if (!content) return {};
  return llvm::xxHash64((*content)->getBuffer());
}

/// Everything but the files that decides what is recorded. Another build of this program may
/// record more.
std::string keyLine(const Unit& unit, const RecordOptions& options) {
  static const std::optional<std::uint64_t> self = fileHash("/proc/self/exe");
  std::ostringstream parts;
  parts << self.value_or(0) << '\n' << unit.name() << '\n' << options.parse.resourceDirectory;
  parts << '\n' << optionsText(options.parse);
  parts << '\n' << unit.object << '\n' << joinWords(unit.command().arguments);
  parts << '\n' << (unit.answer ? unit.answer->text() : "");
  for (const std::string& word : options.parse.extraArguments) parts << "\nextra " << word;
  for (const std::string& glob : options.parse.removedArguments) parts << "\nremove " << glob;
  for (const char* name : {"CPATH", "C_INCLUDE_PATH", "CPLUS_INCLUDE_PATH", "SOURCE_DATE_EPOCH"}) {
    const char* value = std::getenv(name);
    parts << '\n' << (value == nullptr ? "" : value);
  }
  return "key " + std::to_string(llvm::xxHash64(parts.str()));
}

}  // namespace

void UnitInputs::noteRead(const std::string& path) {
  if (files.count(path) != 0) return;
  std::optional<FileState> state = fileState(path);
  if (!state) {
    std::error_code ignored;
    isCertain = isCertain && std::filesystem::is_directory(path, ignored);
    return;
  }
  state->hash = fileHash(path);
  isCertain = isCertain && state->hash;
  contents += std::to_string(state->size) + ' ' + std::to_string(state->hash.value_or(0)) + '\n';
  files.emplace(path, *state);
}

std::string UnitInputs::digest() const {
  if (!isCertain || files.empty()) return {};
  std::ostringstream digits;
  digits << std::hex << std::setw(16) << std::setfill('0') << llvm::xxHash64(contents);
  return digits.str();
}

std::string UnitInputs::lines() const {
  if (!isCertain || files.empty()) return {};
  std::ostringstream text;
  for (const auto& [path, before] : files) {
    const std::optional<FileState> state = fileState(path);
    if (!state || state->size != before.size || state->changed != before.changed) return {};
    const bool isTimeSafe = before.changed < now() - kCoarsestTime;
    text << "read " << *before.hash << ' ' << before.size << ' '
         << (isTimeSafe ? before.changed : 0) << ' ' << path << '\n';
  }
  for (const std::string& path : missing) text << "missing " << path << '\n';
  const std::string result = text.str();
  const auto breaks = static_cast<std::size_t>(std::count(result.begin(), result.end(), '\n'));
  return breaks == files.size() + missing.size() ? result : "";
}

std::string manifestText(const Unit& unit, const RecordOptions& options, std::size_t facts,
                         const UnitInputs& inputs) {
  const std::string lines = inputs.lines();
  if (lines.empty()) return {};
  return std::string(kFormat) + "\nfacts " + std::to_string(facts) + '\n' + keyLine(unit, options) +
         '\n' + lines + "end\n";
}

std::size_t factsOf(const std::string& manifestPath) {
  std::ifstream file(manifestPath);
  std::string format;
  std::string word;
  std::size_t facts = 0;
  if (std::getline(file, format) && format == kFormat) file >> word >> facts;
  return facts;
}

bool ReuseCheck::isSame(const std::string& path, const FileState& before) {
  const auto [place, isNew] = files.try_emplace(path);
  std::optional<FileState>& state = place->second;
  if (isNew) state = fileState(path);
  if (!state || state->size != before.size) return false;
  if (before.changed != 0 && before.changed == state->changed) return true;
  if (!state->hash) state->hash = fileHash(path);
  return state->hash == before.hash;
}

bool ReuseCheck::isLineTrue(const std::string& line) {
  std::istringstream words(line);
  std::string kind;
  std::string path;
  words >> kind;
  FileState before;
  if (kind == "read") words >> before.hash.emplace() >> before.size >> before.changed;
  if (!std::getline(words.ignore(), path)) return false;
  struct stat found {};
  return kind == "read" ? isSame(path, before) : stat(path.c_str(), &found) != 0;
}

bool ReuseCheck::isUnchanged(const Unit& unit, const RecordOptions& options) {
  const UnitOutput output(options.outputDirectory, options.nameOf(unit), options.keepPreprocessed);
  output.removeLeftover();
  if (!output.isPublished()) return false;
  std::ifstream file(output.manifest());
  std::string line;
  if (!std::getline(file, line) || line != kFormat) return false;
  if (!std::getline(file, line)) return false;  // the number of facts
  if (!std::getline(file, line) || line != keyLine(unit, options)) return false;
  while (std::getline(file, line)) {
    if (line == "end") return true;
    if (!isLineTrue(line)) return false;
  }
  return false;
}

}  // namespace fe_db_tools
