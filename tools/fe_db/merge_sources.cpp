#include "merge_sources.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>
#include <utility>

namespace fe_db_tools {
namespace {

void appendLines(std::istream& list, const std::string& name, std::vector<std::string>& paths) {
  errno = 0;
  for (std::string line; std::getline(list, line);) {
    if (line.ends_with('\r')) line.pop_back();  // a list written on Windows
    if (!line.empty()) paths.push_back(line);
  }
  // A directory opens, and fails at the first read.
  if (list.bad() || errno == EISDIR) {
    throw std::runtime_error(name + ": cannot read the list of sources: " + std::strerror(errno));
  }
}

}  // namespace

std::vector<std::string> expandSources(const std::vector<std::string>& arguments) {
  std::vector<std::string> paths;
  for (const std::string& argument : arguments) {
    if (argument == "-") {
      appendLines(std::cin, "standard input", paths);
    } else if (argument.starts_with('@')) {
      const std::string name = argument.substr(1);
      std::ifstream list(name);
      if (!list) {
        throw std::runtime_error(name +
                                 ": cannot read the list of sources: " + std::strerror(errno));
      }
      appendLines(list, name, paths);
    } else {
      paths.push_back(argument);
    }
  }
  return paths;
}

std::string findSameFile(const std::string& target, const std::vector<std::string>& sources) {
  std::map<std::pair<dev_t, ino_t>, const std::string*> known;
  const auto findOther = [&known](const std::string& path) -> const std::string* {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return nullptr;
    const auto [place, isNew] = known.try_emplace({status.st_dev, status.st_ino}, &path);
    return isNew ? nullptr : place->second;
  };
  findOther(target);
  for (const std::string& source : sources) {
    if (const std::string* other = findOther(source)) {
      return *other + " and " + source + " are the same file";
    }
  }
  return "";
}

}  // namespace fe_db_tools
