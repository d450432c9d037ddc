#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace fe_db_tools {

/// Lines of the sources that answers are in, as far as they can be read. A file is read once.
class SourceLines {
 public:
  /// The line, counted from 1, without its end; none if the file or the line does not exist.
  std::optional<std::string> lineOf(const std::string& path, long long line);

 private:
  std::map<std::string, std::vector<std::string>> files;
};

}  // namespace fe_db_tools
