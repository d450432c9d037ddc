#include "clang_arguments.h"

#include <fnmatch.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "compiler_answer.h"
#include "unit.h"

namespace fe_db_tools {

namespace {

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

/// An option as somebody writes it: the forced header without what takes it past the driver.
std::vector<std::string> asWritten(const std::vector<std::string>& option) {
  if (option.size() == 4 && option[1] == "-include") return {option[1], option[3]};
  return option;
}

bool isRemoved(const std::vector<std::string>& option, const std::vector<std::string>& globs) {
  const std::vector<std::string> written = asWritten(option);
  return std::any_of(globs.begin(), globs.end(), [&](const std::string& glob) {
    return fnmatch(glob.c_str(), written[0].c_str(), 0) == 0 ||
           fnmatch(glob.c_str(), joined(written).c_str(), 0) == 0;
  });
}

/// `-I DIR`, `-isystem DIR`, in one word or two: the directory, else nothing.
std::string includeDirectory(const std::vector<std::string>& option) {
  for (const std::string_view flag : {"-isystem", "-idirafter", "-I"}) {
    if (!option[0].starts_with(flag)) continue;
    return option.size() > 1 ? option[1] : option[0].substr(flag.size());
  }
  return {};
}

/// The value of the options that decide the same thing: what comes before the sign of equality.
bool isGiven(std::string_view assumed, const std::vector<std::vector<std::string>>& options) {
  const std::string_view name = assumed.substr(0, assumed.find('='));
  constexpr std::string_view kChoices[][2] = {{"-mthumb", "-marm"},
                                              {"-fshort-enums", "-fno-short-enums"},
                                              {"-fsigned-char", "-funsigned-char"},
                                              {"-std", "-ansi"},
                                              {"-std", "--std"},
                                              {"-march", "-mcpu"}};
  return std::any_of(options.begin(), options.end(), [&](const std::vector<std::string>& option) {
    const std::string_view given = std::string_view(option[0]).substr(0, option[0].find('='));
    if (given == name) return true;
    return std::any_of(std::begin(kChoices), std::end(kChoices), [&](const auto& choice) {
      return (choice[0] == name && choice[1] == given) || (choice[1] == name && choice[0] == given);
    });
  });
}

/// GCC's name of the only data model that Clang has there; it knows no name for it.
bool isUnknownToClang(const std::vector<std::string>& flag, const Unit& unit) {
  return flag[0] == "-mabi=lp64" && unit.answer && unit.answer->target.starts_with("aarch64");
}

/// Takes the place of Clang's own search: its headers come in the place of the compiler's, whose
/// own come last, for those that Clang has none of.
void addSearchPath(const CompilerAnswer& answer, const std::string& resources, bool hasOwn,
                   std::vector<std::string>& command) {
  command.insert(command.end(), {"-nostdinc", "-nostdinc++"});
  const auto add = [&command](const char* kind, const std::string& directory) {
    command.insert(command.end(), {"-Xclang", kind, "-Xclang", directory});
  };
  bool isOwnAdded = !hasOwn;
  for (const std::string& directory : answer.directories) {
    if (isCompilersOwn(directory)) continue;
    const bool isCpp = isOfCppLibrary(directory);
    if (!isCpp && !isOwnAdded) add("-internal-isystem", resources + "/include");
    isOwnAdded = isOwnAdded || !isCpp;
    const bool isNamedLocal = directory.ends_with("/local/include");
    add(isCpp || isNamedLocal ? "-internal-isystem" : "-internal-externc-isystem", directory);
  }
  if (!isOwnAdded) add("-internal-isystem", resources + "/include");
  for (const std::string& directory : answer.directories) {
    if (isCompilersOwn(directory)) add("-internal-isystem", directory);
  }
}

}  // namespace

std::vector<std::string> clangArguments(const Unit& unit, const ParseOptions& options) {
  std::vector<std::vector<std::string>> flags = optionsOf(unit.flags);
  std::erase_if(flags, [&](const std::vector<std::string>& flag) {
    return isRemoved(flag, options.removedArguments) || isUnknownToClang(flag, unit);
  });
  const std::string resources =
      options.resourceDirectory.empty() ? FE_DB_RECORD_RESOURCE_DIR : options.resourceDirectory;
  // Clang finds its surroundings from its own path: with a bare name, GCC's headers would get
  // paths that depend on the current directory.
  std::vector<std::string> command{FE_DB_RECORD_CLANG_PREFIX "/bin/clang"};
  if (unit.answer && !unit.answer->target.empty()) {
    command.push_back("--target=" + unit.answer->target);
  }
  if (unit.answer) {
    std::copy_if(unit.answer->defaults.begin(), unit.answer->defaults.end(),
                 std::back_inserter(command),
                 [&flags](const std::string& option) { return !isGiven(option, flags); });
  }
  bool hasOwn = true;
  for (const std::vector<std::string>& flag : flags) {
    if (flag[0] == "-nostdinc" || flag[0] == "-nobuiltininc") hasOwn = false;
    if (isCompilersOwn(includeDirectory(flag))) {
      command.insert(command.end(), {"-isystem", resources + "/include"});
    }
    command.insert(command.end(), flag.begin(), flag.end());
  }
  if (unit.answer) addSearchPath(*unit.answer, resources, hasOwn, command);
  for (const char* flag : {"-fsyntax-only", "-w", "-Qunused-arguments", "-resource-dir"}) {
    command.emplace_back(flag);
  }
  command.push_back(resources);
  // Errors that are excused count for the limit.
  command.emplace_back("-ferror-limit=0");
  command.insert(command.end(), options.extraArguments.begin(), options.extraArguments.end());
  command.push_back(unit.source);
  return command;
}

}  // namespace fe_db_tools
