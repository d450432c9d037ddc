#include "compile_command.h"

#include <algorithm>
#include <filesystem>
#include <span>
#include <string_view>

#include "shell_words.h"

namespace fe_db_tools {

namespace {

using Names = std::span<const std::string_view>;

bool isOneOf(std::string_view word, Names names) {
  return std::find(names.begin(), names.end(), word) != names.end();
}

bool startsWithOneOf(std::string_view word, Names prefixes) {
  return std::any_of(prefixes.begin(), prefixes.end(),
                     [word](std::string_view prefix) { return word.starts_with(prefix); });
}

// clang-format off
constexpr std::string_view kCompilerCaches[] = {
    "ccache", "sccache", "distcc", "icecc", "buildcache"};

// Outputs, dependency files, linking: nothing of that happens here.
constexpr std::string_view kDropped[] = {
    "-c", "-S", "-E", "-M", "-MM", "-MD", "-MMD", "-MG", "-MP", "-fsyntax-only", "-Werror",
    "-pedantic-errors", "-shared", "-static", "-rdynamic", "-s", "-save-temps", "-emit-llvm",
    "-###"};
constexpr std::string_view kDroppedWithValue[] = {
    "-o", "-MF", "-MT", "-MQ", "-MJ", "-dumpbase", "-dumpbase-ext", "-dumpdir", "-aux-info",
    "-Xlinker", "-Xassembler", "-L", "-l", "-T", "-u", "-z", "-e", "-wrapper"};
constexpr std::string_view kDroppedPrefixes[] = {
    "-o", "-MF", "-MT", "-MQ", "-MJ", "-L", "-l", "-Wl,", "-Wa,", "-save-temps=", "-fdeps-",
    "-dump"};

constexpr std::string_view kKeptWithValue[] = {
    "-I", "-D", "-U", "-A", "-F", "-B", "-G", "-x", "-imacros", "-isystem", "-iquote",
    "-idirafter", "-isysroot", "-iprefix", "-iwithprefix", "-iwithprefixbefore", "-imultilib",
    "-iframework", "-framework", "-cxx-isystem", "-stdlib++-isystem", "-ivfsoverlay", "-arch",
    "-target", "-Xclang", "-Xpreprocessor", "-mllvm", "--param", "--sysroot", "-gcc-toolchain",
    "-resource-dir", "-working-directory", "-specs"};

constexpr std::string_view kModuleFlags[] = {
    "-fmodules", "-fcxx-modules", "-fmodule-file", "-fmodule-mapper", "-fmodule-output",
    "-fprebuilt-module", "--precompile"};

constexpr std::string_view kSourceEndings[] = {
    ".c", ".i", ".cc", ".cp", ".cxx", ".cpp", ".CPP", ".c++", ".C", ".ii"};
constexpr std::string_view kSourceLanguages[] = {"c", "c++", "cpp-output", "c++-cpp-output"};
constexpr std::string_view kAssemblerEndings[] = {".s", ".S", ".sx", ".asm"};
constexpr std::string_view kModuleEndings[] = {".cppm", ".ixx", ".mpp", ".ccm", ".cxxm", ".c++m"};
// clang-format on

constexpr std::string_view kNoPrecompiledHeader =
    "a precompiled header (-include-pch) has no source to record; include the header itself "
    "(-include)";
constexpr std::string_view kNoModules = "modules cannot be recorded; record a build without them";

/// Goes through the words of one command.
class Cleaner {
 public:
  explicit Cleaner(std::vector<std::string> words) : words(std::move(words)) {}

  CleanCommand clean();

 private:
  void takeCompiler();
  bool takeRefused(const std::string& word);
  bool takeInclude(const std::string& word);
  bool takeDropped(const std::string& word);
  void takeInput(const std::string& word);
  void refuse(std::string_view reason) {
    if (result.refusal.empty()) result.refusal = reason;
  }

  std::vector<std::string> words;
  std::size_t next = 0;
  std::string language;  ///< of the latest -x
  CleanCommand result;
};

void Cleaner::takeCompiler() {
  const auto name = [this] { return std::filesystem::path(words[next]).filename().string(); };
  while (next + 1 < words.size() && isOneOf(name(), kCompilerCaches)) ++next;
  if (next >= words.size()) return;
  if (name().find("++") != std::string::npos) result.flags.push_back("--driver-mode=g++");
  ++next;
}

bool Cleaner::takeRefused(const std::string& word) {
  if (word == "-include-pch") {
    refuse(kNoPrecompiledHeader);
  } else if (startsWithOneOf(word, kModuleFlags)) {
    refuse(kNoModules);
  } else {
    return false;
  }
  return true;
}

/// The driver would look for a precompiled form of the header, and GCC's forms are not Clang's:
/// so the flag goes past the driver.
bool Cleaner::takeInclude(const std::string& word) {
  constexpr std::string_view kInclude = "-include";
  if (!word.starts_with(kInclude)) return false;
  std::string header = word.substr(kInclude.size());
  if (header.empty() && next < words.size()) header = words[next++];
  for (const std::string& flag :
       {std::string("-Xclang"), std::string(kInclude), std::string("-Xclang"), header}) {
    result.flags.push_back(flag);
  }
  return true;
}

bool Cleaner::takeDropped(const std::string& word) {
  if (isOneOf(word, kDroppedWithValue)) {
    ++next;
    return true;
  }
  return isOneOf(word, kDropped) || startsWithOneOf(word, kDroppedPrefixes);
}

void Cleaner::takeInput(const std::string& word) {
  const std::string ending = std::filesystem::path(word).extension().string();
  if (word == "-") {
    refuse("a source from standard input cannot be recorded; name a file");
  } else if (language.ends_with("-module") ||
             (language.empty() && isOneOf(ending, kModuleEndings))) {
    refuse(kNoModules);
  } else if (language.starts_with("assembler") || language.ends_with("-header") ||
             (language.empty() && isOneOf(ending, kAssemblerEndings))) {
    result.skipped.push_back(word);
  } else if (isOneOf(language, kSourceLanguages) ||
             (language.empty() && isOneOf(ending, kSourceEndings))) {
    result.sources.push_back(word);
  }  // else: an object, a library, another language
}

CleanCommand Cleaner::clean() {
  takeCompiler();
  while (next < words.size()) {
    const std::string word = words[next++];
    if (word.size() < 2 || word[0] != '-') {
      takeInput(word);
      continue;
    }
    if (takeRefused(word) || takeInclude(word) || takeDropped(word)) continue;
    result.flags.push_back(word);
    if (word.starts_with("-x")) {
      language = word == "-x" && next < words.size() ? words[next] : word.substr(2);
      if (language == "none") language.clear();
    }
    if (isOneOf(word, kKeptWithValue) && next < words.size()) {
      if (word == "-Xclang") takeRefused(words[next]);
      result.flags.push_back(words[next++]);
    }
  }
  return std::move(result);
}

}  // namespace

CleanCommand cleanCommand(const CompileCommand& command) {
  return Cleaner(expandResponseFiles(command.arguments, command.directory)).clean();
}

}  // namespace fe_db_tools
