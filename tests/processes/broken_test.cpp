#include <sys/stat.h>

#include <functional>

#include "tests/processes/process_test.h"

/// Whatever goes wrong in the middle of a save, what was there before is there.
namespace fe_db_tests {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;

using Broken = ProcessTest;
constexpr char kManyRows[] = "bulk=20000";

TEST_F(Broken, FullDisk_LeavesTheFileAsItWasAndSaysSo) {
  const std::string file = filledDatabase("it.db");
  const std::string before = dump(file);
  const auto size = static_cast<long>(std::filesystem::file_size(file));
  // From a journal that cannot be written to a file that grows a good deal before it is full.
  for (const long limit : {4096L, size, size + 32768, size + 40 * 32768}) {
    const ProgramResult result = run(file, {"unit=1", kManyRows, "limit=" + std::to_string(limit)});
    EXPECT_EQ(result.exitCode, 1) << limit;
    EXPECT_THAT(result.errors, AllOf(HasSubstr(file), AnyOf(HasSubstr("disk I/O error"),
                                                            HasSubstr("disk is full"))));
    EXPECT_LE(lineCount(result.errors), 4) << result.errors;
    EXPECT_EQ(integrity(file), "ok\n") << limit;
    EXPECT_EQ(dump(file), before) << limit;
  }
  expectSaved(run(file, {"unit=1"}));
}

TEST_F(Broken, KilledAtAnyMoment_LeavesTheFileAsItWasOrWhole) {
  const std::string original = filledDatabase("original.db");
  const std::string before = content(original);
  const std::string complete = path("complete.db");
  std::filesystem::copy_file(original, complete);
  expectSaved(run(complete, {"unit=1", kManyRows}));
  const std::string after = content(complete);

  const std::string file = path("it.db");
  const auto originalSize = std::filesystem::file_size(original);
  const auto reaches = [](const std::string& path, std::uintmax_t size) {
    std::error_code missing;
    const std::uintmax_t now = std::filesystem::file_size(path, missing);
    return !missing && now > size;
  };
  const std::pair<const char*, std::function<bool()>> moments[] = {
      {"at once", [] { return true; }},
      {"with a journal", [&] { return reaches(file + "-journal", 0); }},
      {"with rows in the file", [&] { return reaches(file, originalSize); }},
      {"with many rows in the file", [&] { return reaches(file, originalSize + 20 * 32768); }},
  };
  int rolledBack = 0;
  for (const auto& [name, reached] : moments) {
    std::filesystem::copy_file(original, file, std::filesystem::copy_options::overwrite_existing);
    const auto process = start(file, {"unit=1", kManyRows});
    ASSERT_EQ(process->readLine(), "saving");
    while (!reached() && process->isRunning()) usleep(100);
    process->kill();
    process->wait();
    EXPECT_EQ(integrity(file), "ok\n") << name;
    const std::string found = content(file);
    EXPECT_TRUE(found == before || found == after) << name;
    rolledBack += found == before;
    expectSaved(run(file, {"unit=2"}));
  }
  EXPECT_GT(rolledBack, 0) << "no save was caught in the middle";
}

TEST_F(Broken, FileThatMayNotBeWritten_IsReportedAndStays) {
  const std::string file = filledDatabase("it.db");
  const std::string before = dump(file);
  const std::string folder = std::filesystem::path(file).parent_path();
  ASSERT_EQ(chmod(file.c_str(), 0444), 0);
  ASSERT_EQ(chmod(folder.c_str(), 0755), 0);
  const ProgramResult result = run(file, {"unit=1", "nobody=1"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, AllOf(HasSubstr(file), HasSubstr("readonly")));
  EXPECT_EQ(lineCount(result.errors), 1) << result.errors;
  EXPECT_EQ(dump(file), before);
}

struct NoDatabase {
  const char* name;
  std::function<void(const std::string&)> make;
};

class BrokenPath : public ProcessTest, public testing::WithParamInterface<NoDatabase> {};

TEST_P(BrokenPath, IsReportedByOneLineAndLeftAlone) {
  const std::string file = path("it.db");
  GetParam().make(file);
  const bool isFile = std::filesystem::is_regular_file(file);
  const auto size = isFile ? std::filesystem::file_size(file) : 0;
  const ProgramResult result = run(file, {"unit=1"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr(file));
  EXPECT_EQ(lineCount(result.errors), 1) << result.errors;
  EXPECT_EQ(std::filesystem::is_regular_file(file), isFile);
  EXPECT_EQ(isFile ? std::filesystem::file_size(file) : 0, size);
}

INSTANTIATE_TEST_SUITE_P(
    That, BrokenPath,
    testing::Values(NoDatabase{"IsMissing", [](const std::string&) {}},
                    NoDatabase{"IsADirectory",
                               [](const std::string& p) { std::filesystem::create_directory(p); }},
                    NoDatabase{"IsEmpty", [](const std::string& p) { std::ofstream{p}; }},
                    NoDatabase{
                        "IsNoDatabase",
                        [](const std::string& p) { std::ofstream(p) << std::string(50'000, 'x'); }},
                    NoDatabase{"IsCutOff",
                               [](const std::string& p) {
                                 compilationFile(p, "");
                                 std::filesystem::resize_file(p, 10'000);
                               }}),
    caseName);

}  // namespace
}  // namespace fe_db_tests
