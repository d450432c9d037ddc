#pragma once

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "support/quiet_test.h"
#include "support/run_program.h"
#include "support/sql_rows.h"

namespace fe_db_tests {

inline std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// What a run over a compile_commands.json says while it works, without a terminal.
inline void removeProgress(std::string& errors) {
  std::istringstream lines(errors);
  std::string rest;
  for (std::string line; std::getline(lines, line);) {
    const bool isProgress = line.starts_with("fe_db_record: ") && std::isdigit(line[14]) != 0;
    if (!isProgress) rest += line + '\n';
  }
  errors = rest;
}

/// Runs fe_db_record on sources in a directory of the test's own. What it keeps of compilers it
/// keeps there too.
class RecordTest : public QuietTest {
 protected:
  RecordTest() {
    std::filesystem::create_directories(sources());
    setenv("XDG_CACHE_HOME", path("cache").c_str(), 1);
  }

  std::filesystem::path sources() const { return path("sources"); }
  std::filesystem::path output() const { return path("out"); }

  void write(const std::string& name, const std::string& text) const {
    std::ofstream(sources() / name, std::ios::binary) << text;
  }

  /// From the directory of the sources, into output(). Without the lines about progress.
  ProgramResult record(const std::vector<std::string>& arguments) const {
    return recordInto(output(), arguments);
  }

  ProgramResult recordInto(const std::filesystem::path& directory,
                           const std::vector<std::string>& arguments) const {
    std::vector<std::string> command{FE_DB_RECORD_PROGRAM, "-o", directory.string()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    ProgramResult result = runProgram(command, {.directory = sources().string()});
    removeProgress(result.errors);
    return result;
  }

  void recordQuietly(const std::vector<std::string>& arguments) const {
    const ProgramResult result = record(arguments);
    EXPECT_EQ(result.errors, "");
    ASSERT_EQ(result.exitCode, 0);
  }

  /// Names of the files in output(), sorted.
  std::vector<std::string> outputs() const {
    std::vector<std::string> names;
    if (!std::filesystem::exists(output())) return names;
    for (const auto& entry : std::filesystem::directory_iterator(output())) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  /// The only output that ends like this.
  std::string outputEnding(const std::string& ending) const {
    std::string found;
    for (const std::string& name : outputs()) {
      if (!name.ends_with(ending)) continue;
      EXPECT_EQ(found, "") << "two files end in " << ending;
      found = (output() / name).string();
    }
    EXPECT_NE(found, "") << "no file ends in " << ending;
    return found;
  }
};

}  // namespace fe_db_tests
