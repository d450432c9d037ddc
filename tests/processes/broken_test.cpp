#include "tests/processes/process_test.h"

namespace fe_db_tests {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;

using BrokenSave = ProcessTest;

TEST_F(BrokenSave, ByAFullDisk_LeavesTheFileAsItWasAndSaysSo) {
  const std::string file = filledDatabase("it.db");
  const std::string before = dump(file);
  const auto size = static_cast<long>(std::filesystem::file_size(file));
  // From a journal that cannot be written to a file that grows a good deal before it is full.
  for (const long limit : {4096L, size, size + 32768, size + 40 * 32768}) {
    const ProgramResult result =
        run(file, {"unit=1", "bulk=20000", "limit=" + std::to_string(limit)});
    EXPECT_EQ(result.exitCode, 1) << limit;
    EXPECT_THAT(result.errors, AllOf(HasSubstr(file), AnyOf(HasSubstr("disk I/O error"),
                                                            HasSubstr("disk is full"))));
    EXPECT_LE(lineCount(result.errors), 4) << result.errors;
    EXPECT_EQ(integrity(file), "ok\n") << limit;
    EXPECT_EQ(dump(file), before) << limit;
  }
  expectSaved(run(file, {"unit=1"}));
}

}  // namespace
}  // namespace fe_db_tests
