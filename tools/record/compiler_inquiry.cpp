#include "compiler_inquiry.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "brief_process.h"
#include "compiler_name.h"
#include "native_target.h"
#include "unit.h"

namespace fe_db_tools {

namespace {

namespace fs = std::filesystem;

// clang-format off
constexpr std::string_view kRelevant[] = {
    "-m", "-B", "-EB", "-EL", "--sysroot", "-isysroot", "--target=", "-target", "--gcc-toolchain=",
    "-gcc-toolchain", "-imultilib", "-specs=", "-stdlib=", "-nostdinc", "-nostdlibinc",
    "-nobuiltininc", "-undef", "-fshort-", "-fno-short-", "-funsigned-char", "-fsigned-char",
    "-fno-unsigned-char", "-fno-signed-char"};
// clang-format on

bool startsWithOneOf(std::string_view word, const auto& prefixes) {
  return std::any_of(std::begin(prefixes), std::end(prefixes),
                     [word](std::string_view prefix) { return word.starts_with(prefix); });
}

/// A path relative to the directory that the command runs in: the same flag means something else
/// in another directory.
bool hasRelativePath(const std::vector<std::string>& option) {
  for (const std::string_view flag : {"--sysroot=", "--sysroot", "-isysroot", "-B"}) {
    if (!option[0].starts_with(flag)) continue;
    const std::string value = option.size() > 1 ? option[1] : option[0].substr(flag.size());
    return !value.starts_with('/');
  }
  return false;
}

bool isExecutable(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

bool isWrapperItself(const fs::path& path) {
  std::error_code error;
  return isCompilerWrapper(fs::canonical(path, error).filename().string());
}

/// Where the compiler is; of one in the PATH the first that is not a compiler cache. Empty when it
/// is nowhere.
fs::path findCompiler(const std::string& name, const std::string& directory) {
  if (name.find('/') != std::string::npos) {
    const fs::path path = fs::path(directory) / name;
    if (!isExecutable(path)) return {};
    if (!isWrapperItself(path)) return path;
  }
  const char* const search = std::getenv("PATH");
  std::istringstream places(search == nullptr ? "/usr/bin:/bin" : search);
  for (std::string place; std::getline(places, place, ':');) {
    const fs::path path = fs::path(directory) / place / fs::path(name).filename();
    if (isExecutable(path) && !isWrapperItself(path)) return path;
  }
  return {};
}

std::string valueOf(const char* variable) {
  const char* const value = std::getenv(variable);
  return value == nullptr ? "" : value;
}

/// The user's, or empty when there is none.
fs::path cacheDirectory() {
  const fs::path own = valueOf("XDG_CACHE_HOME");
  if (own.is_absolute()) return own / "fe_db_record";
  const fs::path home = valueOf("HOME");
  return home.is_absolute() ? home / ".cache" / "fe_db_record" : fs::path();
}

/// What else a compiler, or a script in its place, looks at.
std::string environmentText() {
  std::string text;
  for (const char* name : {"PATH", "GCC_EXEC_PREFIX", "COMPILER_PATH", "SDKROOT"}) {
    text += std::string(name) + '=' + valueOf(name) + '\n';
  }
  return text;
}

/// The program as it is now: another one is asked anew.
std::string identityOf(const fs::path& program) {
  struct stat found {};
  std::error_code error;
  if (stat(program.c_str(), &found) != 0) return {};
  return fs::canonical(program, error).string() + ' ' + std::to_string(found.st_size) + ' ' +
         std::to_string(found.st_ctim.tv_sec) + '.' + std::to_string(found.st_ctim.tv_nsec) + '\n';
}

}  // namespace

struct CompilerInquiry::Question {
  std::string compiler;
  std::string directory;
  std::vector<std::string> words;  ///< after the program
  std::string prefix;              ///< the target in the compiler's name
  std::string text;                ///< all that decides the answer but the program itself
};

namespace {

/// A file with one question and its reply. If anything is wrong with it, the compiler is asked.
class KeptReply {
 public:
  explicit KeptReply(const std::string& question)
      : head("fe_db_record compiler 1\n" + question), path(cacheDirectory()) {
    if (!path.empty()) path /= hashOf({question});
  }

  /// The text after the question; empty when there is none, or none that is recent.
  std::string read() const {
    constexpr std::time_t kLifetime = 3600;
    std::ifstream file(path, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    if (!text.starts_with(head)) return {};
    std::istringstream rest(text.substr(head.size()));
    std::time_t asked = 0;
    std::string body;
    if (!(rest >> asked) || asked > std::time(nullptr)) return {};
    if (asked + kLifetime < std::time(nullptr)) return {};
    std::getline(rest, body);
    return {std::istreambuf_iterator<char>(rest), {}};
  }

  void write(const std::string& body) const {
    if (path.empty()) return;
    std::error_code error;
    fs::create_directories(path.parent_path(), error);
    const fs::path temporary = path.string() + '.' + std::to_string(getpid());
    std::ofstream file(temporary, std::ios::binary);
    file << head << std::time(nullptr) << '\n' << body;
    file.close();
    if (file) fs::rename(temporary, path, error);
    if (!file || error) fs::remove(temporary, error);
  }

 private:
  std::string head;
  fs::path path;
};

bool areThere(const std::vector<std::string>& directories) {
  return std::all_of(directories.begin(), directories.end(), [](const std::string& directory) {
    std::error_code error;
    return fs::is_directory(directory, error);
  });
}

}  // namespace

CompilerInquiry::Question CompilerInquiry::questionOf(const Unit& unit) {
  Question question{unit.compiler, unit.directory, {}, targetPrefix(unit.compiler), {}};
  bool isRelative = unit.compiler.find('/') != std::string::npos && unit.compiler[0] != '/';
  for (const std::vector<std::string>& option : optionsOf(unit.flags)) {
    if (!startsWithOneOf(option[0], kRelevant) || option[0] == "-mllvm") continue;
    question.words.insert(question.words.end(), option.begin(), option.end());
    isRelative = isRelative || hasRelativePath(option);
  }
  const char* const language = isCppSource(unit.source, unit.flags) ? "c++" : "c";
  for (const char* word : {"-v", "-dM", "-E", "-x", language, "/dev/null"}) {
    question.words.emplace_back(word);
  }
  question.text = unit.compiler + '\n';
  if (isRelative) question.text += unit.directory + '\n';
  for (const std::string& word : question.words) question.text += word + '\n';
  return question;
}

CompilerInquiry::Reply CompilerInquiry::askNow(const Question& question, const fs::path& program) {
  if (program.empty()) return {nullptr, "not found"};
  std::string& problem = unusable[program.string()];
  if (!problem.empty()) return {nullptr, problem};
  std::vector<std::string> command{program.string()};
  command.insert(command.end(), question.words.begin(), question.words.end());
  const BriefOutput printed = runBriefly(command, question.directory, patience);
  problem = printed.problem;
  if (!problem.empty()) return {nullptr, problem};
  std::optional<CompilerAnswer> answer =
      readAnswer(printed.errors, printed.output, question.directory);
  if (!answer) return {nullptr, "it does not answer as GCC and Clang do"};
  if (answer->target.empty()) answer->target = question.prefix;
  if (isNativeTarget(answer->target)) answer->keepPathsAndStandard();
  return {std::make_shared<const CompilerAnswer>(std::move(*answer)), {}};
}

CompilerInquiry::Reply CompilerInquiry::replyTo(const Question& question) {
  constexpr std::string_view kProblem = "problem ";
  if (isInterpreter(fs::path(question.compiler).filename().string())) {
    return {nullptr, "it is no compiler"};
  }
  const fs::path program = findCompiler(question.compiler, question.directory);
  if (memory == Memory::run || program.empty()) return askNow(question, program);
  const KeptReply kept(question.text + identityOf(program) + environmentText());
  const std::string text = kept.read();
  if (text.starts_with(kProblem)) return {nullptr, text.substr(kProblem.size())};
  std::optional<CompilerAnswer> answer = CompilerAnswer::parse(text);
  if (answer && areThere(answer->directories)) {
    return {std::make_shared<const CompilerAnswer>(std::move(*answer)), {}};
  }
  Reply reply = askNow(question, program);
  kept.write(reply.answer ? reply.answer->text() : std::string(kProblem) + reply.problem);
  return reply;
}

std::string CompilerInquiry::askFor(Unit& unit, std::string& warning) {
  const Question question = questionOf(unit);
  const auto [place, isNew] = replies.try_emplace(question.text);
  if (isNew) place->second = replyTo(question);
  const Reply& reply = place->second;
  unit.answer = reply.answer;
  if (reply.answer) return {};
  if (!isNativeTarget(question.prefix)) {
    return "cannot be recorded as " + question.prefix + " code: " + unit.compiler +
           " cannot be asked for its macros and include paths (" + reply.problem +
           "); install it, or put it into the PATH";
  }
  if (silent.insert(unit.compiler).second) {
    warning = unit.compiler + " cannot be asked for its include paths (" + reply.problem +
              "); Clang's own are used";
  }
  return {};
}

}  // namespace fe_db_tools
