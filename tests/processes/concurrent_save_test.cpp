#include <algorithm>
#include <set>

#include "tests/processes/process_test.h"

namespace fe_db_tests {
namespace {

using testing::HasSubstr;

std::vector<std::string> unit(int number) { return {"unit=" + std::to_string(number), "bulk=300"}; }

class ConcurrentSave : public ProcessTest {
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

TEST_F(ConcurrentSave, AtTheSameTime_LeavesTheContentOfSomeOrder) {
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

class TwoWriters : public ProcessTest, public testing::WithParamInterface<bool> {
 protected:
  /// The first process holds its transaction; with a queue, on a file of its own.
  TwoWriters() : file(filledDatabase("it.db")), before(dump(file)) {
    if (GetParam()) setenv(kQueue, path("queue.lock").c_str(), 1);
    holder = start(GetParam() ? emptyDatabase("other.db") : file, {"hold=1"});
    EXPECT_EQ(holder->readLine(), "holding");
  }

  const std::string file;
  const std::string before;
  std::unique_ptr<ChildProcess> holder;
};

TEST_P(TwoWriters, SecondWaitsAndSucceeds) {
  const auto second = start(file, {"unit=1"});
  ASSERT_EQ(second->readLine(), "saving");
  EXPECT_TRUE(second->isRunning());
  holder->release();
  expectSaved(second->wait());
  expectSaved(holder->wait());
  EXPECT_EQ(rows(file, "SELECT Count FROM Identifier WHERE Name = 'SHARED'"), "2\n");
}

TEST_P(TwoWriters, SecondFailsAfterItsTimeoutAndSaysWhy) {
  const ProgramResult second = run(file, {"unit=1", "timeout=50"});
  EXPECT_EQ(second.exitCode, 1);
  EXPECT_EQ(lineCount(second.errors), 1) << second.errors;
  EXPECT_THAT(second.errors, HasSubstr(file));
  EXPECT_THAT(second.errors, HasSubstr(GetParam() ? path("queue.lock") : "locked"));
  expectSaved(holder->wait());
  EXPECT_EQ(dump(file), before);
}

TEST_P(TwoWriters, LockOfAKilledProcess_IsFree) {
  holder->kill();
  EXPECT_EQ(holder->wait().signal, SIGKILL);
  expectSaved(run(file, {"unit=1", "timeout=50"}));
}

INSTANTIATE_TEST_SUITE_P(At, TwoWriters, testing::Bool(), [](const auto& test) {
  return test.param ? std::string("TheQueueLock") : std::string("OneFile");
});

}  // namespace
}  // namespace fe_db_tests
