#include "compiler_name.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace fe_db_tools {

namespace {

// clang-format off
constexpr std::string_view kWrappers[] = {
    "ccache", "sccache", "distcc", "icecc", "buildcache", "env", "fe_db_record"};

constexpr std::string_view kInterpreters[] = {
    "sh", "bash", "dash", "ksh", "zsh", "busybox", "perl", "python", "ruby", "node", "make",
    "ninja", "cmake"};

constexpr std::string_view kCompilers[] = {
    "gcc", "g++", "cc", "c++", "cpp", "clang", "clang++"};

/// The first part of a target is one of these, or begins with one and goes on with a version.
constexpr std::string_view kProcessors[] = {
    "aarch64", "alpha", "amdgcn", "arc", "arm", "armeb", "avr", "avr32", "bfin", "bpf", "c6x",
    "cris", "csky", "h8300", "hexagon", "hppa", "i", "ia64", "lm32", "loongarch", "m32r", "m68k",
    "microblaze", "microblazeel", "mips", "mipsel", "mipsisa", "moxie", "msp430", "nds32",
    "nios2", "or1k", "powerpc", "powerpc64le", "powerpcle", "ppc", "ppc64le", "pru", "riscv",
    "rl78", "rx", "s390", "s390x", "sh", "sparc", "sparcv", "thumb", "tricore", "v850", "vax",
    "wasm", "x86_64", "xtensa"};
// clang-format on

bool isOneOf(std::string_view word, const auto& names) {
  return std::find(std::begin(names), std::end(names), word) != std::end(names);
}

/// `armv7l` and `mips64el` are processors, `armadillo` is none.
bool isProcessor(std::string_view word) {
  return std::any_of(std::begin(kProcessors), std::end(kProcessors), [word](std::string_view name) {
    if (!word.starts_with(name)) return false;
    std::string_view version = word.substr(name.size());
    if (version.empty()) return name != "i";
    if (version[0] == 'v') version.remove_prefix(1);
    return !version.empty() && version[0] >= '0' && version[0] <= '9';
  });
}

}  // namespace

bool isCompilerWrapper(std::string_view name) { return isOneOf(name, kWrappers); }

bool isInterpreter(std::string_view name) {
  return isOneOf(name.substr(0, name.find_last_not_of("0123456789.") + 1), kInterpreters);
}

std::string targetPrefix(const std::string& compiler) {
  const std::string name = std::filesystem::path(compiler).filename().string();
  // From the end: after the compiler's own name there may be a version or a thread model.
  for (std::size_t end = name.size(); end != std::string::npos && end != 0;) {
    const std::size_t hyphen = name.rfind('-', end - 1);
    if (hyphen == std::string::npos) return {};
    if (isOneOf(std::string_view(name).substr(hyphen + 1, end - hyphen - 1), kCompilers)) {
      const std::string prefix = name.substr(0, hyphen);
      return isProcessor(prefix.substr(0, prefix.find('-'))) ? prefix : std::string();
    }
    end = hyphen;
  }
  return {};
}

}  // namespace fe_db_tools
