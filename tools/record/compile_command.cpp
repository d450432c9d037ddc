#include "compile_command.h"

#include <algorithm>
#include <filesystem>
#include <span>
#include <string_view>

#include "compiler_name.h"
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
// Outputs, dependency files, linking, messages: nothing of that happens here. Which warnings are
// errors is for the compiler that the command was written for to say.
constexpr std::string_view kDropped[] = {
    "-c", "-S", "-E", "-M", "-MM", "-MD", "-MMD", "-MG", "-MP", "-fsyntax-only", "-Werror",
    "-pedantic-errors", "--pedantic-errors", "-Wfatal-errors", "-shared", "-static", "-rdynamic",
    "-s", "-save-temps", "-emit-llvm", "-###", "-H", "-v", "--verbose", "-time", "-Q"};
constexpr std::string_view kDroppedWithValue[] = {
    "-o", "-MF", "-MT", "-MQ", "-MJ", "-dumpbase", "-dumpbase-ext", "-dumpdir", "-aux-info",
    "-Xlinker", "-Xassembler", "-L", "-l", "-T", "-u", "-z", "-e", "-wrapper",
    "-serialize-diagnostics", "--serialize-diagnostics"};
constexpr std::string_view kDroppedPrefixes[] = {
    "-o", "-MF", "-MT", "-MQ", "-MJ", "-L", "-l", "-Wl,", "-Wa,", "-Werror=", "-fmax-errors=",
    "-ferror-limit=", "-save-temps=", "--save-temps", "-fdeps-", "-ftime-trace", "-dump"};

/// What names a file to write, or begins the naming, where the preprocessor gets it directly.
constexpr std::string_view kDependencyWords[] = {"-M", "-MM", "-MG", "-MP"};
constexpr std::string_view kDependencyWordsWithValue[] = {"-MD", "-MMD", "-MF", "-MT", "-MQ"};
constexpr std::string_view kDependencyPrefixes[] = {"-MF", "-MT", "-MQ"};
constexpr std::string_view kFrontEndOutputs[] = {
    "-dependency-file", "-dependency-dot", "-MT", "-header-include-file", "-diagnostic-log-file",
    "-serialize-diagnostic-file", "-opt-record-file", "-o"};

constexpr std::string_view kKeptWithValue[] = {
    "-I", "-D", "-U", "-A", "-F", "-B", "-G", "-x", "-imacros", "-isystem", "-iquote",
    "-idirafter", "-isysroot", "-iprefix", "-iwithprefix", "-iwithprefixbefore", "-imultilib",
    "-iframework", "-framework", "-cxx-isystem", "-stdlib++-isystem", "-ivfsoverlay", "-arch",
    "-target", "-Xclang", "-Xpreprocessor", "-mllvm", "--param", "--sysroot", "-gcc-toolchain",
    "-resource-dir", "-working-directory", "-specs"};

struct LongName {
  std::string_view name;
  const char* option;
};
constexpr LongName kLongNames[] = {
    {"--assemble", "-S"}, {"--compile", "-c"}, {"--define-macro", "-D"}, {"--dependencies", "-M"},
    {"--imacros", "-imacros"}, {"--include", "-include"}, {"--include-directory", "-I"},
    {"--language", "-x"}, {"--output", "-o"}, {"--preprocess", "-E"}, {"--undefine-macro", "-U"},
    {"--user-dependencies", "-MM"}, {"--write-dependencies", "-MD"},
    {"--write-user-dependencies", "-MMD"}};

constexpr std::string_view kModuleFlags[] = {
    "-fmodules", "-fcxx-modules", "-fmodule-file", "-fmodule-mapper", "-fmodule-output",
    "-fprebuilt-module", "--precompile"};

constexpr std::string_view kSourceEndings[] = {
    ".c", ".i", ".cc", ".cp", ".cxx", ".cpp", ".CPP", ".c++", ".C", ".ii"};
constexpr std::string_view kCppEndings[] = {
    ".cc", ".cp", ".cxx", ".cpp", ".CPP", ".c++", ".C", ".ii"};
constexpr std::string_view kSourceLanguages[] = {"c", "c++", "cpp-output", "c++-cpp-output"};
constexpr std::string_view kAssemblerEndings[] = {".s", ".S", ".sx", ".asm"};
constexpr std::string_view kModuleEndings[] = {".cppm", ".ixx", ".mpp", ".ccm", ".cxxm", ".c++m"};
// clang-format on

constexpr std::string_view kCppDriver = "--driver-mode=g++";
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
  void readCompiler();
  void readFlags(bool hasInputs);
  bool isRefused(const std::string& word);
  bool readInclude(const std::string& word);
  bool readForPreprocessor(const std::string& word);
  bool skipOutput(const std::string& word);
  void readKept(const std::string& word);
  void readInput(const std::string& word);
  void refuse(std::string_view reason) {
    if (result.refusal.empty()) result.refusal = reason;
  }

  std::vector<std::string> words;
  std::size_t next = 0;
  std::string language;                        ///< of the latest -x
  std::vector<std::string> preprocessorWords;  ///< of -Wp, and -Xpreprocessor, in their order
  CleanCommand result;
};

/// After the name of a wrapper there may be its settings, NAME=VALUE, or its options up to `--`.
void Cleaner::readCompiler() {
  const auto name = [this] { return std::filesystem::path(words[next]).filename().string(); };
  while (next + 1 < words.size() && isCompilerWrapper(name())) {
    ++next;
    const auto rest = words.begin() + static_cast<std::ptrdiff_t>(next);
    const auto dashes = std::find(rest, words.end(), "--");
    if (words[next].starts_with('-') && dashes != words.end()) {
      next = static_cast<std::size_t>(dashes - words.begin()) + 1;
    }
    while (next + 1 < words.size() && words[next].find('=') != std::string::npos) ++next;
  }
  if (next >= words.size()) return;
  result.compiler = words[next];
  if (name().find("++") != std::string::npos) result.flags.emplace_back(kCppDriver);
  ++next;
  // In a command that has been cleaned before, the flag comes first.
  if (next < words.size() && words[next] == kCppDriver && !result.flags.empty()) ++next;
}

bool Cleaner::isRefused(const std::string& word) {
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
bool Cleaner::readInclude(const std::string& word) {
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

/// `-Wp,-MD,x.d` and its like are not for the driver, which would pass them on as they are.
bool Cleaner::readForPreprocessor(const std::string& word) {
  constexpr std::string_view kWords = "-Wp,";
  if (word == "-Xpreprocessor" && next < words.size()) {
    preprocessorWords.push_back(words[next++]);
    return true;
  }
  if (!word.starts_with(kWords)) return false;
  for (std::size_t at = kWords.size(); at <= word.size();) {
    const std::size_t end = std::min(word.find(',', at), word.size());
    preprocessorWords.push_back(word.substr(at, end - at));
    at = end + 1;
  }
  return true;
}

std::vector<std::string> withoutDependencies(const std::vector<std::string>& words) {
  std::vector<std::string> kept;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (isOneOf(words[i], kDependencyWordsWithValue)) {
      ++i;
    } else if (!isOneOf(words[i], kDependencyWords) &&
               !startsWithOneOf(words[i], kDependencyPrefixes)) {
      kept.push_back(words[i]);
    }
  }
  return kept;
}

bool Cleaner::skipOutput(const std::string& word) {
  if (isOneOf(word, kDroppedWithValue)) {
    ++next;
    return true;
  }
  // `-Xclang -dependency-file -Xclang x.d`
  if (word == "-Xclang" && next + 2 < words.size() && isOneOf(words[next], kFrontEndOutputs)) {
    next += 3;
    return true;
  }
  return isOneOf(word, kDropped) || startsWithOneOf(word, kDroppedPrefixes);
}

void Cleaner::readInput(const std::string& word) {
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

void Cleaner::readKept(const std::string& word) {
  result.flags.push_back(word);
  if (word.starts_with("-x")) {
    language = word == "-x" && next < words.size() ? words[next] : word.substr(2);
    if (language == "none") language.clear();
  }
  if (isOneOf(word, kKeptWithValue) && next < words.size()) {
    if (word == "-Xclang") isRefused(words[next]);
    result.flags.push_back(words[next++]);
  }
}

void Cleaner::readFlags(bool hasInputs) {
  while (next < words.size()) {
    const std::string word = words[next++];
    if (word.size() < 2 || word[0] != '-') {
      if (hasInputs) readInput(word);
    } else if (!isRefused(word) && !readInclude(word) && !readForPreprocessor(word) &&
               !skipOutput(word)) {
      readKept(word);
    }
  }
}

CleanCommand Cleaner::clean() {
  readCompiler();
  readFlags(/*hasInputs=*/true);
  words = withoutDependencies(preprocessorWords);
  next = 0;
  readFlags(/*hasInputs=*/false);
  return std::move(result);
}

}  // namespace

std::vector<std::string> plainWords(const CompileCommand& command) {
  std::vector<std::string> words;
  for (const std::string& word : expandResponseFiles(command.arguments, command.directory)) {
    const std::string_view name = std::string_view(word).substr(0, word.find('='));
    const auto known = std::find_if(std::begin(kLongNames), std::end(kLongNames),
                                    [name](const LongName& entry) { return entry.name == name; });
    words.emplace_back(known == std::end(kLongNames) ? word : known->option);
    if (known != std::end(kLongNames) && name != word)
      words.push_back(word.substr(name.size() + 1));
  }
  return words;
}

CleanCommand cleanCommand(const CompileCommand& command) {
  return Cleaner(plainWords(command)).clean();
}

std::vector<std::vector<std::string>> optionsOf(const std::vector<std::string>& flags) {
  std::vector<std::vector<std::string>> options;
  for (std::size_t i = 0; i < flags.size(); ++i) {
    std::vector<std::string> option{flags[i]};
    if (isOneOf(flags[i], kKeptWithValue) && i + 1 < flags.size()) option.push_back(flags[++i]);
    // The value of `-Xclang -include` needs an -Xclang of its own.
    const bool isValue = option[0] == "-Xclang" && !options.empty() &&
                         options.back() == std::vector<std::string>{"-Xclang", "-include"};
    if (isValue) {
      options.back().insert(options.back().end(), option.begin(), option.end());
    } else {
      options.push_back(std::move(option));
    }
  }
  return options;
}

bool isCppSource(const std::string& source, const std::vector<std::string>& flags) {
  std::string language;
  bool isCppDriver = false;
  for (const std::vector<std::string>& option : optionsOf(flags)) {
    if (option[0] == kCppDriver) isCppDriver = true;
    if (option[0].starts_with("-x")) language = option.size() > 1 ? option[1] : option[0].substr(2);
  }
  if (!language.empty() && language != "none") return language.starts_with("c++");
  return isCppDriver || isOneOf(std::filesystem::path(source).extension().string(), kCppEndings);
}

}  // namespace fe_db_tools
