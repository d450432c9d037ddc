#include <chrono>
#include <csignal>
#include <future>

#include "fe_db_fixture.h"
#include "support/content.h"

/// Whatever goes wrong in the middle of a merge, its target holds the whole of it or nothing.
namespace fe_db_tests {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::HasSubstr;

/// Long names make many pages of few rows; half of them are in the next unit too. The last two
/// units have a file in common, whose kind tells which of them was merged first.
std::string rowsOf(const std::string& number) {
  return "INSERT INTO File (Path, Kind) VALUES ('" + number + ".c', 1), ('shared' || (" + number +
         " > 0), " + number + "); WITH RECURSIVE n(i) AS (SELECT 600 * " + number +
         " UNION ALL SELECT i + 1 FROM n LIMIT 1200) INSERT INTO Identifier (Name, Kind, Count) "
         "SELECT hex(zeroblob(300)) || i, 2, 1 FROM n;"
         "INSERT INTO Function (IdentifierId, SourceNameId, DeclFileId, DeclLineNum, DeclColNum) "
         "SELECT IdentifierId, IdentifierId, 1, IdentifierId, 1 FROM Identifier LIMIT 150";
}

/// How it is disturbed, and whether the target is new.
struct MergeBroken : FeDbProgram, testing::WithParamInterface<std::tuple<const char*, bool>> {
  MergeBroken() {
    for (const std::string number : {"0", "1", "2"})
      compilationFile(path("unit" + number), rowsOf(number));
    execute(path("unit0"), "PRAGMA page_size=4096; VACUUM");  // more pages, more writes
    setUp();
    before = stateOf(folder);
    const auto start = std::chrono::steady_clock::now();
    merge();
    seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    after = stateOf(folder);
    merge();
    afterTwo = stateOf(folder);
    EXPECT_TRUE(before != after && after != afterTwo);
    setUp();
  }

  void setUp() const {
    fs::remove_all(folder);
    fs::create_directory(folder);
    if (!isNew) fs::copy_file(path("unit0"), target);
  }
  void merge() const { outputOf(words); }
  static std::string stateOf(const std::string& folder) {
    const std::string file = folder + "/all.db";
    if (!fs::exists(file)) return "no target";
    EXPECT_EQ(integrity(file), "ok\n");
    return rows(file, "SELECT name FROM sqlite_schema ORDER BY name") + content(file);
  }
  long files() const { return std::distance(fs::directory_iterator(folder), {}); }

  RunOptions failingAt(long operation) const {
    return {.environment = {{"LD_PRELOAD", FAILING_VFS},
                            {"ASAN_OPTIONS", "verify_asan_link_order=0"},
                            {"FAILING_VFS_HOW", how},
                            {"FAILING_VFS_AT", std::to_string(operation)},
                            {"FAILING_VFS_COUNT", path("count")}}};
  }
  ProgramResult runWithSignalAfter(double delay) const {
    std::vector<std::string> timed = {"timeout", "--foreground",        "-s",
                                      how,       std::to_string(delay), FE_DB_PROGRAM};
    timed.insert(timed.end(), words.begin(), words.end());
    return runProgram(timed);
  }

  /// After a disturbed run. True when it had not come to its end.
  bool wasBroken(const ProgramResult& result) const {
    // A look at the target may repair it, which is the next merge's business: look at a copy.
    fs::remove_all(path("copy"));
    fs::copy(folder, path("copy"));
    const std::string found = stateOf(path("copy"));
    EXPECT_THAT(result.signal, AnyOf(0, SIGKILL, SIGINT)) << "crashed";
    EXPECT_TRUE(found == before || found == after) << "half a merge";
    EXPECT_TRUE(result.exitCode != 0 || found == after) << "done, but it is not stored";
    if (result.exitCode == 1) {
      EXPECT_TRUE(found == before) << "failed, but it is stored";
      EXPECT_THAT(result.errors, HasSubstr("fe_db: "));
      EXPECT_TRUE(files() == !isNew || (!isNew && how != "FullDisk")) << "left something";
    }
    EXPECT_TRUE(result.signal != SIGINT || !isNew || files() == (found == after))
        << "left something";
    merge();
    EXPECT_TRUE(stateOf(folder) == (found == after ? afterTwo : after)) << "the next merge differs";
    EXPECT_EQ(files(), 1) << "left something";
    return found == before;
  }

  const std::string how = std::get<0>(GetParam());
  const bool isNew = std::get<bool>(GetParam());
  const std::string folder = path("target"), target = folder + "/all.db";
  const std::vector<std::string> words = {"merge", "--wait",      "0",
                                          target,  path("unit1"), path("unit2")};
  double seconds = 0;  ///< what a merge took
  std::string before, after, afterTwo;
};

TEST_P(MergeBroken, LeavesAllOrNothing) {
#if defined(__SANITIZE_ADDRESS__)
  constexpr int kPoints = 3;  // processes are slow there; what is looked for is in the other pass
#else
  constexpr int kPoints = 10;
#endif
  const bool byTime = how == "KILL" || how == "INT";
  EXPECT_EQ(feDb(words, failingAt(0)).exitCode, 0);
  long total = 0;
  std::ifstream(path("count")) >> total;
  int broken = 0;
  for (int point = 1; point <= kPoints; ++point) {
    SCOPED_TRACE(std::to_string(point) + "/" + std::to_string(kPoints) + " of " +
                 std::to_string(total) + " operations");
    setUp();
    broken += wasBroken(byTime ? runWithSignalAfter(seconds * point / kPoints)
                               : feDb(words, failingAt(total * point / kPoints)));
  }
  EXPECT_GT(broken, byTime ? 0 : kPoints / 2);
}

constexpr auto kCaseName = [](const auto& test) {
  return std::get<0>(test.param) + std::string(std::get<1>(test.param) ? "_NewFile" : "_OldFile");
};
constexpr const char* kDisturbances[] = {"Killed",       "Interrupted", "FullDisk", "FailingWrites",
                                         "FailingReads", "KILL",        "INT"};
INSTANTIATE_TEST_SUITE_P(Merge, MergeBroken,
                         testing::Combine(testing::ValuesIn(kDisturbances), testing::Bool()),
                         kCaseName);

using MergeTwoWriters = MergeBroken;

TEST_P(MergeTwoWriters, BothMerges_AreStoredInSomeOrder) {
  const auto mergeOf = [&](const char* unit) { outputOf({"merge", target, path(unit)}); };
  mergeOf("unit2");
  mergeOf("unit1");
  const std::string otherOrder = stateOf(folder);
  EXPECT_TRUE(otherOrder != after);
  for (int round = 0; round < 4; ++round) {
    setUp();
    auto one = std::async(std::launch::async, mergeOf, "unit1");
    mergeOf("unit2");
    one.get();
    const std::string found = stateOf(folder);
    EXPECT_TRUE(found == after || found == otherOrder) << "round " << round;
  }
}

INSTANTIATE_TEST_SUITE_P(Merge, MergeTwoWriters,
                         testing::Combine(testing::Values("AtOnce"), testing::Bool()), kCaseName);

}  // namespace
}  // namespace fe_db_tests
