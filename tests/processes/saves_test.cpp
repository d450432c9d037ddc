#include <algorithm>
#include <set>

#include "tests/processes/process_test.h"

namespace fe_db_tests {
namespace {

using testing::HasSubstr;

std::vector<std::string> unit(int number) { return {"unit=" + std::to_string(number), "bulk=300"}; }

class Saves : public ProcessTest {
 protected:
  /// What each order of three units leaves, saved one after the other.
  std::set<std::string> contentOfEachOrder() {
    std::set<std::string> contents;
    std::vector<int> order = {0, 1, 2};
    do {
      const std::string file = emptyDatabase("order" + std::to_string(contents.size()) + ".db");
      for (const int number : order) expectSaved(run(file, unit(number)));
      contents.insert(content(file));
    } while (std::next_permutation(order.begin(), order.end()));
    return contents;
  }
};

TEST_F(Saves, AtTheSameTime_LeavesTheContentOfSomeOrder) {
  const std::set<std::string> expected = contentOfEachOrder();
  EXPECT_EQ(expected.size(), 6u) << "first and last writer tell in the content";
  for (const bool queue : {false, true}) {
    if (queue) setenv(kQueue, path("queue.lock").c_str(), 1);
    for (int round = 0; round < 4; ++round) {
      const std::string file = emptyDatabase(std::to_string(queue) + std::to_string(round));
      std::vector<std::unique_ptr<ChildProcess>> processes;
      for (int number = 0; number < 3; ++number) {
        std::vector<std::string> options = unit(number);
        options.push_back("wait=1");
        processes.push_back(start(file, options));
      }
      for (const auto& process : processes) ASSERT_EQ(process->readLine(), "ready");
      for (const auto& process : processes) process->release();
      for (const auto& process : processes) expectSaved(process->wait());
      EXPECT_THAT(expected, testing::Contains(content(file)))
          << "queue " << queue << " round " << round;
      EXPECT_EQ(integrity(file), "ok\n");
    }
  }
}

TEST_F(Saves, LockOfAKilledProcess_IsFree) {
  for (const bool queue : {false, true}) {  // with a queue, on a file of its own
    if (queue) setenv(kQueue, path("queue.lock").c_str(), 1);
    const std::string file = filledDatabase(queue ? "queued.db" : "it.db");
    const auto holder = start(queue ? emptyDatabase("other.db") : file, {"hold=1"});
    EXPECT_EQ(holder->readLine(), "holding");
    const ProgramResult refused = run(file, {"unit=1", "timeout=50"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.errors, HasSubstr(queue ? path("queue.lock") : "locked"));
    holder->kill();
    EXPECT_EQ(holder->wait().signal, SIGKILL);
    expectSaved(run(file, {"unit=1", "timeout=50"}));
  }
}

TEST_F(Saves, OntoAFullDisk_LeavesTheFileAsItWasAndSaysSo) {
  const std::string file = filledDatabase("it.db");
  const std::string before = dump(file);
  const auto size = static_cast<long>(std::filesystem::file_size(file));
  // From a journal that cannot be written to a file that grows a good deal before it is full.
  for (const long limit : {4096L, size, size + 32768, size + 40 * 32768}) {
    const ProgramResult result =
        run(file, {"unit=1", "bulk=20000", "limit=" + std::to_string(limit)});
    EXPECT_EQ(result.exitCode, 1) << limit;
    EXPECT_THAT(result.errors, HasSubstr(file));
    EXPECT_THAT(result.errors, testing::ContainsRegex("disk I/O error|disk is full"));
    EXPECT_LE(lineCount(result.errors), 4) << result.errors;
    EXPECT_EQ(integrity(file), "ok\n") << limit;
    EXPECT_EQ(dump(file), before) << limit;
  }
  expectSaved(run(file, {"unit=1"}));
}

}  // namespace
}  // namespace fe_db_tests
