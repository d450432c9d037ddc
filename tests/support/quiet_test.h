#pragma once

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

namespace fe_db_tests {

/// Standard error of this process goes to a file while it lives.
class StderrCapture {
 public:
  StderrCapture() : file(std::tmpfile()), original(dup(STDERR_FILENO)) {
    std::fflush(stderr);
    dup2(fileno(file), STDERR_FILENO);
#if defined(__SANITIZE_ADDRESS__)
    // A sanitizer ends the process: its words must not end in our file.
    __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<long>(original)));
#endif
  }
  ~StderrCapture() {
    std::fflush(stderr);
    dup2(original, STDERR_FILENO);
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<long>(STDERR_FILENO)));
#endif
    close(original);
    std::fclose(file);
  }
  StderrCapture(const StderrCapture&) = delete;
  StderrCapture& operator=(const StderrCapture&) = delete;

  /// What was written since the last call.
  std::string take() {
    std::fflush(stderr);
    std::string text;
    char buffer[4096];
    for (ssize_t n; (n = pread(fileno(file), buffer, sizeof buffer, position)) > 0;) {
      text.append(buffer, static_cast<std::size_t>(n));
      position += n;
    }
    return text;
  }

 private:
  std::FILE* file;
  int original;
  off_t position = 0;
};

/// A number that who runs the tests may set.
inline unsigned fromEnvironment(const char* name, unsigned otherwise) {
  const char* const value = std::getenv(name);
  return value == nullptr ? otherwise : static_cast<unsigned>(std::strtoul(value, nullptr, 10));
}

inline long lineCount(const std::string& text) {
  return std::count(text.begin(), text.end(), '\n');
}

/// The error line of an SQLite result code, as a POSIX regular expression of the whole text;
/// `after` is what follows that line.
inline auto isReport(int rc, int expected, const std::string& reason,
                     const std::string& after = "") {
  return testing::MatchesRegex(
      "orvalesca: sqlite error:unknown:src/verifier/databases_merger/fe_database/"
      "compilation_database:[0-9]+: rc=" +
      std::to_string(rc) + " \\(expected rc=" + std::to_string(expected) + "\\) " + reason + "\n" +
      after);
}

/// Base of the cases of a parameterised test: a failure prints the name instead of bytes.
struct NamedCase {
  constexpr NamedCase(const char* text) : name(text) {}  // implicit: the first value of a case
  friend std::ostream& operator<<(std::ostream& out, const NamedCase& c) { return out << c.name; }
  const char* name;
};

/// Names the cases of a parameterised test after their member `name`.
inline constexpr auto caseName = [](const auto& test) { return std::string(test.param.name); };

/// Base of all fixtures. A test owns a directory, and says what it expects on standard error by
/// taking it: text that nobody took fails the test.
class QuietTest : public testing::Test {
 protected:
  QuietTest() {
    std::string pattern = testing::TempDir() + "fe_db_test_XXXXXX";
    directory = mkdtemp(pattern.data());
  }
  /// Here and not in TearDown: what a derived fixture owns has been destroyed by now, and is heard.
  ~QuietTest() override {
    EXPECT_EQ(takeReports(), "") << "unannounced on standard error";
    std::filesystem::remove_all(directory);
  }

  std::string takeReports() { return capture.take(); }
  /// One line has been written, with all of these in it.
  void expectOneLine(const std::vector<std::string>& parts = {}) {
    const std::string report = takeReports();
    EXPECT_EQ(lineCount(report), 1) << report;
    for (const std::string& part : parts) EXPECT_THAT(report, testing::HasSubstr(part));
  }
  /// SQLite's error has been written once, with these words.
  void expectOneSqliteError(const std::string& words) {
    const std::string report = takeReports();
    EXPECT_THAT(report, testing::HasSubstr(words));
    EXPECT_EQ(report.find("sqlite error"), report.rfind("sqlite error")) << report;
  }
  std::string path(const std::string& name) const { return directory / name; }
  std::string fileHolding(const std::string& name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
  }

 private:
  std::filesystem::path directory;
  StderrCapture capture;
};

}  // namespace fe_db_tests
