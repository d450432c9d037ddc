#include "fe_db_fixture.h"

/// The program is started without standard input, output or error: the database that it opens next
/// must not get the descriptor, or what is printed is written into it.
namespace fe_db_tests {
namespace {

using testing::MatchesRegex;

struct StandardStreams : FeDbProgram {
  StandardStreams() {
    for (const char* name : {"a", "b"}) {
      compilationFile(path(name), "INSERT INTO Identifier (Name, Count) VALUES ('name', 1)");
    }
    fileHolding("bad", "no database");
  }
  ProgramResult without(const std::string& redirections, Words words,
                        const RunOptions& options = {}) const {
    words.insert(words.begin(), {"sh", "-c", "exec \"$@\" " + redirections, "sh", FE_DB_PROGRAM});
    return runProgram(words, options);
  }
};

struct ClosedStreams : StandardStreams, testing::WithParamInterface<const char*> {};

TEST_P(ClosedStreams, FilesAreWrittenAsWithAllOfThem) {
  // Prints on both streams while files are open, and after the commit.
  const auto merge = [&](const std::string& target, const std::string& redirections) {
    return without(redirections, {"merge", "--debug", "--keep-going", path(target), path("a"),
                                  path("bad"), path("b")});
  };
  for (const char* target : {"open", "closed"}) {
    const std::string redirections = target == std::string("open") ? "" : GetParam();
    for (const char* name : {"/new", "/old"}) {
      fs::create_directories(path(target));
      const std::string file = std::string(target) + name;
      if (name == std::string("/old")) fs::copy_file(path("a"), path(file));
      EXPECT_EQ(merge(file, redirections).exitCode, 1) << "for the bad source";
    }
    EXPECT_EQ(without(redirections, {"init", path(target) + "/init"}).exitCode, 0);
    EXPECT_EQ(without(redirections, {"index", path(target) + "/old"}).exitCode, 0);
  }
  for (const char* name : {"/new", "/old", "/init"}) {
    EXPECT_TRUE(bytesOf(path("open") + name) == bytesOf(path("closed") + name)) << name;
  }
  EXPECT_EQ(integrity(path("closed/new")), "ok\n");
}

INSTANTIATE_TEST_SUITE_P(Closed, ClosedStreams,
                         testing::Values("<&-", ">&-", "2>&-", ">&- 2>&-", "<&- 2>&-",
                                         "<&- >&- 2>&-"),
                         [](const auto& test) { return "Case" + std::to_string(test.index); });

TEST_F(StandardStreams, ResultThatCannotBeWritten_IsAFailure) {
  const std::vector<Words> commands = {
      {"stats", path("a")}, {"dump", path("a")}, {"stats", "--json", path("a")}, {"--help"}};
  for (const Words& words : commands) {
    for (const char* redirection : {">&-", ">/dev/full"}) {
      const ProgramResult result = without(redirection, words);
      EXPECT_EQ(result.exitCode, 1) << words[0] << redirection;
      EXPECT_THAT(result.errors, MatchesRegex("fe_db: standard output: cannot write: [^\n]*\n"));
    }
    const ProgramResult result = without("2>&-", words);
    EXPECT_EQ(result.exitCode, 0) << words[0];
    EXPECT_NE(result.output, "");
  }
}

TEST_F(StandardStreams, SummaryOfAMergeThatCannotBeWritten_LeavesAMergeThatIsDone) {
  for (const char* redirection : {">&-", ">/dev/full"}) {
    fs::remove(path("t"));
    const ProgramResult result = without(redirection, {"merge", path("t"), path("a")});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.errors, MatchesRegex("fe_db: standard output: cannot write: [^\n]*; the "
                                            "merge itself is done\n"));
    EXPECT_EQ(rows(path("t"), "SELECT Count FROM Identifier"), "1\n");
  }
}

TEST_F(StandardStreams, RootWithoutDevices_TheStreamIsReplacedAllTheSame) {
  const ProgramResult result =
      without(">&- 2>&-", {"merge", path("t"), path("a")},
              {.environment = {{"LD_PRELOAD", FILE_CALLS},
                               {"ASAN_OPTIONS", "verify_asan_link_order=0"},
                               {"FILE_CALLS_FAIL", " /dev/null=2 "}}});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(integrity(path("t")), "ok\n");
}

}  // namespace
}  // namespace fe_db_tests
