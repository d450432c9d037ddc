#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <cstring>
#include <future>

#include "fe_db_fixture.h"

/// The temporary name under which a new file is built: nobody's file is lost by it, and nothing of
/// a killed run stays.
namespace fe_db_tests {
namespace {

using testing::MatchesRegex;

struct NewTarget : FeDbProgram {
  NewTarget() {
    compilationFile(path("unit"), "INSERT INTO Identifier (Name, Count) VALUES ('name', 1)");
    fs::create_directory(folder);
  }
  ProgramResult run(const char* subcommand, const std::string& name = "t",
                    const RunOptions& options = {}) const {
    if (subcommand == std::string("init")) return feDb({"init", folder / name}, options);
    return feDb({"merge", folder / name, path("unit")}, options);
  }
  static RunOptions preloaded(const std::string& variable, const std::string& value) {
    return {.environment = {{"LD_PRELOAD", FILE_CALLS},
                            {"ASAN_OPTIONS", "verify_asan_link_order=0"},
                            {variable, value}}};
  }
  Words files() const {
    Words names;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      names.push_back(fs::relative(entry.path(), folder));
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  /// Written by a shell, in the folder.
  void make(const char* script) const {
    ASSERT_EQ(runProgram({"sh", "-ec", script}, {.directory = folder}).exitCode, 0);
  }
  std::string counts() const { return rows(folder / "t", "SELECT Count FROM Identifier"); }

  const fs::path folder = path("folder");
};

struct Neighbour {
  const char* name;
  const char* script;
  bool isInTheWay = true;
};

struct NewTargetBeside : NewTarget, testing::WithParamInterface<Neighbour> {};

TEST_P(NewTargetBeside, SomebodysFile_KeepsItAsItIs) {
  for (const char* subcommand : {"merge", "init"}) {
    make("rm -rf -- .[!.]* *");
    make(GetParam().script);
    Words before = files();
    const ProgramResult result = run(subcommand);
    if (GetParam().isInTheWay) {
      EXPECT_EQ(result.exitCode, 1);
      EXPECT_THAT(result.errors, MatchesRegex("fe_db: [^\n]*/folder/.t.fe_db-new: not created "
                                              "by fe_db[^\n]*; move it away\n"));
    } else {
      EXPECT_EQ(result.exitCode, 0) << result.errors;
      before.insert(std::upper_bound(before.begin(), before.end(), "t"), "t");
    }
    EXPECT_EQ(files(), before) << subcommand;
    make("test $(cat $(find . -type f ! -name t) | sort -u) = precious");
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, NewTargetBeside,
    testing::Values(Neighbour{"New", "echo precious > t.new", false},
                    Neighbour{"Others", "for e in tmp lock part; do echo precious > t.$e; done",
                              false},
                    Neighbour{"File", "echo precious > .t.fe_db-new"},
                    Neighbour{"Link", "mkdir d; echo precious > d/x; ln -s d .t.fe_db-new"},
                    Neighbour{"FileLink", "echo precious > x; ln -s x .t.fe_db-new"},
                    Neighbour{"Directory", "mkdir .t.fe_db-new; echo precious > .t.fe_db-new/x"},
                    Neighbour{"DirectoryInDirectory",
                              "mkdir -p .t.fe_db-new/fe_db-new; "
                              "echo precious > .t.fe_db-new/fe_db-new/x"}),
    caseName);

/// At any call, and with any content that a power failure makes of the files.
TEST_F(NewTarget, LeftoverOfAKilledRun_GoesWithTheNext) {
  for (const char* leftover :
       {"true", "touch fe_db-lock", "touch fe_db-new", "echo half > fe_db-new",
        "head -c 99999 /dev/zero > fe_db-new; echo x > fe_db-new-journal",
        "cp ../../unit fe_db-new; echo x > fe_db-new-journal; touch fe_db-lock",
        "echo x > fe_db-new-journal", "ln -s ../../unit fe_db-new"}) {
    for (const bool isTargetThere : {false, true}) {
      make("rm -rf -- .[!.]* *");
      if (isTargetThere) run("merge");
      make((std::string("mkdir .t.fe_db-new; cd .t.fe_db-new; ") + leftover).c_str());
      EXPECT_EQ(run("merge").errors, "");
      EXPECT_EQ(files(), Words{"t"}) << leftover << isTargetThere;
      EXPECT_EQ(counts(), isTargetThere ? "2\n" : "1\n") << leftover;
    }
  }
  EXPECT_EQ(rows(path("unit"), "SELECT Count FROM Identifier"), "1\n");
}

/// A killed run may leave the temporary name, one that is told to end removes it.
TEST_F(NewTarget, EndedAtAnyCall_LeavesAllOrNothingAndTheNextRunNothingElse) {
  const std::pair<std::string, int> ends[] = {
      {"merge", SIGKILL}, {"init", SIGKILL}, {"merge", SIGTERM}};
  for (const auto& [subcommand, signal] : ends) {
    SCOPED_TRACE(subcommand + " " + strsignal(signal));
    int calls = 0;
    for (int ended = signal; ended == signal;) {
      make("rm -rf -- .[!.]* *");
      RunOptions options = preloaded("FILE_CALLS_KILL", std::to_string(++calls));
      options.environment.push_back({"FILE_CALLS_SIGNAL", std::to_string(signal)});
      ended = run(subcommand.c_str(), "t", options).signal;
      const bool isThere = fs::exists(folder / "t");
      EXPECT_TRUE(signal == SIGKILL || isThere || files().empty()) << "before call " << calls;
      EXPECT_EQ(run(subcommand.c_str()).exitCode, isThere && subcommand == "init" ? 1 : 0);
      EXPECT_EQ(files(), Words{"t"}) << "before call " << calls;
      if (subcommand == "init") continue;
      EXPECT_EQ(counts(), isThere ? "2\n" : "1\n");
    }
    EXPECT_GT(calls, 5);
  }
}

TEST_F(NewTarget, NameThatAnotherRunHolds_IsWaitedForAndLeftAlone) {
  make("mkdir .t.fe_db-new; touch .t.fe_db-new/fe_db-lock .t.fe_db-new/fe_db-new");
  const int lock = open((folder / ".t.fe_db-new/fe_db-lock").c_str(), O_RDWR | O_CLOEXEC);
  flock(lock, LOCK_EX);
  const Words before = files();
  expectRefusal({"merge", "--wait", "0", folder / "t", path("unit")},
                "/t: another program is creating it; try again when it has finished\n");
  EXPECT_EQ(files(), before);
  auto waiting = std::async(std::launch::async, [&] { return run("merge"); });
  EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
  close(lock);
  EXPECT_EQ(waiting.get().errors, "");
  EXPECT_EQ(files(), Words{"t"});
}

struct FailingCall {
  const char* name;
  const char* calls;
  const char* message;  ///< a regular expression
};

struct NewTargetFailing : NewTarget, testing::WithParamInterface<FailingCall> {};

TEST_P(NewTargetFailing, IsReported_AndLeavesNoTarget) {
  for (const char* subcommand : {"merge", "init"}) {
    make("rm -rf .t.fe_db-new; mkdir .t.fe_db-new; touch .t.fe_db-new/fe_db-new-journal");
    const ProgramResult result =
        run(subcommand, "t", preloaded("FILE_CALLS_FAIL", GetParam().calls));
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, MatchesRegex("fe_db: [^\n]*" + std::string(GetParam().message)));
    EXPECT_FALSE(fs::exists(folder / "t"));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, NewTargetFailing,
    testing::Values(FailingCall{"Leftover", " unlink=13 ",
                                "/.t.fe_db-new: a killed run left this, and it cannot "
                                "be removed: Permission denied; remove it\n"},
                    FailingCall{
                        "Directory", " mkdir=30 ",
                        "/t: cannot create it: Read-only file system; choose a file in [^\n]*\n"},
                    FailingCall{"Sync", " fsync=5 ",
                                "/t: cannot create it: Input/output error; check the disk[^\n]*\n"},
                    FailingCall{"NeitherRenameNorLink", " renameat2=22 link=1 ",
                                "/t: cannot create it: its file system can neither [^\n]*\n"}),
    caseName);

TEST_F(NewTarget, FileSystemThatCannotRenameWithoutReplacing_IsServedByALink) {
  EXPECT_EQ(run("merge", "t", preloaded("FILE_CALLS_FAIL", " renameat2=22 ")).errors, "");
  EXPECT_EQ(files(), Words{"t"});
}

struct BadName {
  const char* rule;
  std::string name;
  const char* reason;  ///< none: it works
};

struct NewTargetNamed : NewTarget, testing::WithParamInterface<BadName> {};

TEST_P(NewTargetNamed, WorksOrIsRefusedBeforeAnyWork) {
  const std::string& name = GetParam().name;
  // A source that is not there would be the failure if the name were looked at later.
  const ProgramResult result =
      GetParam().reason == nullptr
          ? run("merge", name)
          : feDb({"merge", name.empty() ? "" : (folder / name).string(), path("no source")});
  if (GetParam().reason == nullptr) {
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(files(), Words{name});
  } else {
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, MatchesRegex("fe_db: [^\n]*: cannot create it: " +
                                            std::string(GetParam().reason) + "; [^\n]*\n"));
    EXPECT_EQ(files().size(), 0U);
  }
}

std::string umlauts(int number) {
  std::string name;
  for (int i = 0; i < number; ++i) name += "\u00fc";
  return name;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, NewTargetNamed,
    testing::Values(BadName{"AsLongAsCanBe", std::string(NAME_MAX, 'x'), nullptr},
                    BadName{"LongInUtf8", umlauts(NAME_MAX / 2), nullptr},
                    BadName{"TooLong", std::string(NAME_MAX + 1, 'x'), "File name too long"},
                    BadName{"Empty", "", "Is a directory"},
                    BadName{"EndsInASlash", "t/", "Is a directory"},
                    BadName{"NoSuchDirectory", "d/t", "No such file or directory"}),
    kRuleName);

}  // namespace
}  // namespace fe_db_tests
