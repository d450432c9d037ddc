#include <sys/stat.h>

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

}  // namespace
}  // namespace fe_db_tests
