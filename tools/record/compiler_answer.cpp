#include "compiler_answer.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <set>

namespace fe_db_tools {

namespace {

constexpr std::string_view kDefine = "#define ";

// clang-format off

/// Sizes, limits and formats. Where the compiler has none, Clang's own stays: its headers use it.
constexpr std::string_view kValuePrefixes[] = {
    "__BIGGEST_ALIGNMENT__", "__BYTE_ORDER__", "__CHAR_BIT__", "__DBL_", "__DECIMAL_DIG__",
    "__FLOAT_WORD_ORDER__", "__FLT_", "__GCC_ATOMIC_", "__INT", "__LDBL_", "__LONG_", "__ORDER_",
    "__REGISTER_PREFIX__", "__SCHAR_", "__SHRT_", "__SIG_ATOMIC_", "__SIZEOF_", "__UINT",
    "__USER_LABEL_PREFIX__", "__WINT_"};

/// Not although they begin like that: types that Clang has or lacks whatever the compiler does,
/// and what is evaluated where it is used.
constexpr std::string_view kNoValues[] = {
    "__FLT_EVAL_METHOD", "__SIZEOF_FLOAT80__", "__SIZEOF_FLOAT128__", "__SIZEOF_INT128__"};

/// Processors, systems and data models. A name that only Clang defines goes away.
constexpr std::string_view kExactPrefixes[] = {
    "_ABI", "_ARCH_", "_CALL_", "_ILP32", "_INTEGRAL_MAX_BITS", "_LP64", "_MIPS", "_WIN32",
    "_WIN64", "_X86_", "__3dNOW", "__AARCH64", "__ALTIVEC__", "__ANDROID", "__APCS_32__",
    "__APPLE_", "__ARMEB__", "__ARMEL__", "__ARM_", "__AVR", "__AVX", "__CHAR_UNSIGNED__",
    "__CYGWIN", "__EABI__", "__ELF__", "__FreeBSD", "__GCC_HAVE_SYNC_", "__ILP32__", "__IWMMXT",
    "__LP64__", "__MINGW", "__MIPS", "__MMX__", "__MSP430", "__MSVCRT", "__NO_FPRS__", "__NetBSD",
    "__OpenBSD", "__PPC", "__SEH__", "__SH", "__SOFTFP__", "__SPE__", "__SSE", "__THUMB",
    "__USES_INITFINI__", "__USING_SJLJ_EXCEPTIONS__", "__VFP_FP__", "__VSX__", "__WIN32",
    "__WIN64", "__WINNT", "__XSCALE__", "__XTENSA", "__aarch64", "__amd64", "__arm", "__avr",
    "__code_model_", "__gnu_linux__", "__hexagon", "__hppa", "__i386", "__i486", "__i586",
    "__i686", "__ia64", "__k8", "__linux", "__loongarch", "__m68k", "__mc68", "__microblaze",
    "__mips", "__msp430", "__nios2", "__pentium", "__powerpc", "__ppc", "__riscv", "__s390",
    "__sh", "__sparc", "__sun", "__svr4__", "__thumb", "__tune_", "__unix", "__x86_64",
    "__xtensa", "__zarch__"};

/// Clang's own headers refuse to work without.
constexpr std::string_view kNotExact[] = {"__ARM_ACLE", "__SHRT_"};

// clang-format on

bool startsWithOneOf(std::string_view word, const auto& prefixes) {
  return std::any_of(std::begin(prefixes), std::end(prefixes),
                     [word](std::string_view prefix) { return word.starts_with(prefix); });
}

bool isValue(std::string_view name) {
  return startsWithOneOf(name, kValuePrefixes) && !startsWithOneOf(name, kNoValues);
}

bool isExact(std::string_view name) {
  return startsWithOneOf(name, kExactPrefixes) && !startsWithOneOf(name, kNotExact);
}

/// Calls `handle` with each line, without its end.
template <typename Handle>
void eachLine(std::string_view text, Handle handle) {
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    handle(line);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
}

std::string_view nameIn(std::string_view macro) {
  return macro.substr(0, macro.find_first_of(" ("));
}

bool isName(std::string_view name) {
  const auto isPart = [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; };
  return !name.empty() && std::isdigit(static_cast<unsigned char>(name[0])) == 0 &&
         std::all_of(name.begin(), name.end(), isPart);
}

bool isTarget(std::string_view word) {
  constexpr std::size_t kLongest = 64;
  const auto isPart = [](unsigned char c) {
    return std::isalnum(c) != 0 || c == '_' || c == '-' || c == '.';
  };
  return !word.empty() && word.size() <= kLongest && std::all_of(word.begin(), word.end(), isPart);
}

std::string_view valueOf(std::string_view macro) {
  const std::size_t blank = macro.find(' ');
  return blank == std::string_view::npos ? "" : macro.substr(blank + 1);
}

/// The standard that is in force when no flag names one. Releases differ in it.
std::string standardOf(std::string_view name, std::string_view value) {
  struct Standard {
    std::string_view value;
    const char* option;
  };
  static constexpr Standard kC[] = {{"199901L", "-std=gnu99"},
                                    {"201112L", "-std=gnu11"},
                                    {"201710L", "-std=gnu17"},
                                    {"202000L", "-std=gnu2x"},
                                    {"202311L", "-std=gnu2x"}};
  static constexpr Standard kCpp[] = {{"199711L", "-std=gnu++98"}, {"201103L", "-std=gnu++11"},
                                      {"201402L", "-std=gnu++14"}, {"201703L", "-std=gnu++17"},
                                      {"201709L", "-std=gnu++20"}, {"202002L", "-std=gnu++20"},
                                      {"202302L", "-std=gnu++2b"}};
  const auto optionIn = [value](const auto& standards) -> std::string {
    for (const Standard& standard : standards) {
      if (standard.value == value) return standard.option;
    }
    return {};
  };
  if (name == "__STDC_VERSION__") return optionIn(kC);
  return name == "__cplusplus" ? optionIn(kCpp) : std::string();
}

/// Quoted with blanks between, as GCC prints what it has made of its options.
void readDefaults(std::string_view quoted, std::vector<std::string>& defaults) {
  constexpr std::string_view kProcessor[] = {
      "-march=", "-mcpu=", "-mfloat-abi=", "-mfpu=", "-mthumb", "-marm"};
  for (std::size_t at = quoted.find('\''); at != std::string_view::npos;) {
    const std::size_t end = quoted.find('\'', at + 1);
    if (end == std::string_view::npos) return;
    const std::string_view option = quoted.substr(at + 1, end - at - 1);
    if (startsWithOneOf(option, kProcessor)) defaults.emplace_back(option);
    at = quoted.find('\'', end + 1);
  }
}

void readMacros(std::string_view text, CompilerAnswer& answer) {
  bool isCharUnsigned = false;
  bool isOldC = true;
  eachLine(text, [&](std::string_view line) {
    if (!line.starts_with(kDefine)) return;
    const std::string_view macro = line.substr(kDefine.size());
    const std::string_view name = nameIn(macro);
    if (!isName(name)) return;
    if (isValue(name) || isExact(name)) answer.macros.emplace_back(macro);
    if (name == "__CHAR_UNSIGNED__") isCharUnsigned = true;
    if (name == "__ARM_SIZEOF_MINIMAL_ENUM") {
      answer.defaults.push_back(valueOf(macro) == "1" ? "-fshort-enums" : "-fno-short-enums");
    }
    const std::string standard = standardOf(name, valueOf(macro));
    if (!standard.empty()) answer.defaults.push_back(standard);
    if (name == "__STDC_VERSION__" || name == "__cplusplus") isOldC = false;
  });
  if (answer.macros.empty()) return;
  if (isOldC) answer.defaults.push_back("-std=gnu89");
  answer.defaults.push_back(isCharUnsigned ? "-funsigned-char" : "-fsigned-char");
  std::sort(answer.macros.begin(), answer.macros.end());
}

/// The components of a path, without `.` and what `..` takes back.
std::vector<std::string> partsOf(std::string_view directory) {
  std::vector<std::string> parts;
  for (const auto& part : std::filesystem::path(directory).lexically_normal()) {
    if (!part.empty()) parts.push_back(part.string());
  }
  return parts;
}

}  // namespace

std::optional<CompilerAnswer> readAnswer(std::string_view messages, std::string_view macros,
                                         const std::string& directory) {
  CompilerAnswer answer;
  bool isInList = false;
  bool isListWhole = false;
  eachLine(messages, [&](std::string_view line) {
    constexpr std::string_view kTarget = "Target: ";
    constexpr std::string_view kOptions = "COLLECT_GCC_OPTIONS=";
    if (line.starts_with("#include <...> search starts here:")) {
      isInList = true;
      answer.directories.clear();
    } else if (isInList && line.starts_with("End of search list")) {
      isInList = false;
      isListWhole = true;
    } else if (isInList) {
      std::error_code error;
      line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
      const std::filesystem::path name = std::filesystem::path(directory) / line;
      if (std::filesystem::is_directory(name, error)) answer.directories.push_back(name.string());
    } else if (line.starts_with(kTarget) && isTarget(line.substr(kTarget.size()))) {
      answer.target = line.substr(kTarget.size());
    } else if (line.starts_with(kOptions)) {
      answer.defaults.clear();  // printed before each program that the compiler runs
      readDefaults(line, answer.defaults);
    }
  });
  if (!isListWhole) return {};
  readMacros(macros, answer);
  return answer;
}

bool isCompilersOwn(std::string_view directory) {
  std::vector<std::string> parts = partsOf(directory);
  if (parts.empty() || (parts.back() != "include" && parts.back() != "include-fixed")) return false;
  parts.pop_back();
  const auto isVersion = [](const std::string& part) { return part[0] >= '0' && part[0] <= '9'; };
  if (parts.size() < 3 || !isVersion(parts.back())) return false;
  const std::string& family = parts[parts.size() - 2];
  return family == "clang" || parts[parts.size() - 3].starts_with("gcc");
}

bool isOfCppLibrary(std::string_view directory) {
  const std::vector<std::string> parts = partsOf(directory);
  return std::any_of(parts.begin(), parts.end(), [](const std::string& part) {
    return part == "c++" || part.starts_with("g++");
  });
}

std::string withMacrosOf(const CompilerAnswer& answer, std::string_view predefined) {
  if (answer.macros.empty()) return std::string(predefined);
  std::set<std::string_view> replaced;
  for (const std::string& macro : answer.macros) replaced.insert(nameIn(macro));
  std::string text;
  bool isOnCommandLine = false;
  eachLine(predefined, [&](std::string_view line) {
    if (!isOnCommandLine && line.find("\"<command line>\"") != std::string_view::npos) {
      isOnCommandLine = true;
      for (const std::string& macro : answer.macros) text += std::string(kDefine) + macro + '\n';
    }
    if (!isOnCommandLine && line.starts_with(kDefine)) {
      const std::string_view name = nameIn(line.substr(kDefine.size()));
      if (isExact(name) || replaced.count(name) != 0) return;
    }
    text += std::string(line) + '\n';
  });
  return text;
}

void CompilerAnswer::keepPathsAndStandard() {
  target.clear();
  macros.clear();
  std::erase_if(defaults, [](const std::string& option) { return !option.starts_with("-std="); });
}

std::string CompilerAnswer::text() const {
  std::string text = "target " + target + '\n';
  for (const std::string& directory : directories) text += "directory " + directory + '\n';
  for (const std::string& option : defaults) text += "default " + option + '\n';
  for (const std::string& macro : macros) text += "macro " + macro + '\n';
  return text + "end\n";
}

std::optional<CompilerAnswer> CompilerAnswer::parse(std::string_view text) {
  CompilerAnswer answer;
  bool isWhole = false;
  eachLine(text, [&](std::string_view line) {
    const std::string_view kind = line.substr(0, line.find(' '));
    const std::string rest(line.substr(std::min(line.size(), kind.size() + 1)));
    if (kind == "target") answer.target = rest;
    if (kind == "directory") answer.directories.push_back(rest);
    if (kind == "default") answer.defaults.push_back(rest);
    if (kind == "macro") answer.macros.push_back(rest);
    if (kind == "end") isWhole = true;
  });
  if (!isWhole) return {};
  return answer;
}

}  // namespace fe_db_tools
