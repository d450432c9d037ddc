#include "record/record_fixture.h"

namespace fe_db_tests {

namespace {

using testing::AllOf;
using testing::Each;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class Incremental : public RecordTest {
 protected:
  Incremental() {
    std::filesystem::create_directories(sources() / "first");
    std::filesystem::create_directories(sources() / "second");
    write("second/part.h", "extern int part1;\n");
    write("unit.c", "#include <part.h>\nint unit;\n");
    writeDatabase({"gcc -Ifirst -Isecond -c unit.c"});
  }

  /// The source is the last word of a command.
  void writeDatabase(const std::vector<std::string>& commands) const {
    std::string entries;
    for (const std::string& command : commands) {
      entries += entries.empty() ? "[" : ",\n";
      entries += R"({"directory": ")" + sources().string() + R"(", "file": ")" +
                 command.substr(command.rfind(' ') + 1) + R"(", "command": ")" + command + "\"}";
    }
    write("compile_commands.json", entries + "]");
  }

  ProgramResult shell(const std::string& script) const {
    return runProgram({"sh", "-ec", script}, {.directory = sources().string()});
  }
};

struct Change {
  const char* name;
  const char* script;  ///< run between the sources, beside ../out
  bool isRecordedAgain;
  std::vector<std::string> options = {};
};

class AfterChange : public Incremental, public testing::WithParamInterface<Change> {};

TEST_P(AfterChange, FilesAreThoseOfANewRecording_AndMadeAgainOnlyIfNeeded) {
  recordQuietly({"-p", "."});
  ASSERT_EQ(shell(GetParam().script).exitCode, 0);
  std::vector<std::string> arguments = GetParam().options;
  arguments.insert(arguments.end(), {"-p", "."});
  const ProgramResult result = record(arguments);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, StartsWith(GetParam().isRecordedAgain ? "1 of 1" : "0 of 1"));
  EXPECT_EQ(result.output.find("1 reused") == std::string::npos, GetParam().isRecordedAgain);

  ASSERT_EQ(recordInto(path("fresh"), arguments).errors, "");
  for (const auto& fresh : std::filesystem::directory_iterator(path("fresh"))) {
    const std::filesystem::path made = output() / fresh.path().filename();
    EXPECT_TRUE(std::filesystem::exists(made)) << made;
    if (made.extension() != ".db") continue;
    EXPECT_EQ(runProgram({FE_DB_PROGRAM, "diff", made.string(), fresh.path().string()}).output, "");
  }
}

constexpr char kEqualSizeAndTime[] =
    "touch -r second/part.h t; echo 'extern int part2;' > second/part.h; touch -r t second/part.h";

INSTANTIATE_TEST_SUITE_P(
    Changes, AfterChange,
    testing::Values(Change{"Nothing", "true", false},
                    Change{"SameContent", "touch second/part.h", false},
                    Change{"Header", kEqualSizeAndTime, true},
                    Change{"HeaderEarlierInThePath", "echo 'int other;' > first/part.h", true},
                    Change{"Flag", "sed -i s/-Ifirst/-Dunit=x/ compile_commands.json", true},
                    Change{"Database", "rm ../out/*.pp.db", true},
                    Change{"HalfAManifest", "sed -i '/^missing/d; /^end/d' ../out/*.manifest",
                           true},
                    Change{"Option", "true", true, {"--system=all"}},
                    Change{"References", "true", true, {"--references=none"}},
                    Change{"MoreFiles", "true", true, {"--keep-preprocessed"}},
                    Change{"Force", "true", true, {"--force"}}),
    caseName);

TEST_F(Incremental, ChangeThatHidesItsTime_IsSeenAlsoWhereTimesAreTrusted) {
  shell("sleep 2.1");  // younger times are not
  recordQuietly({"-p", "."});
  EXPECT_THAT(readFile(outputEnding(".manifest")), Not(HasSubstr(" 0 /")));
  EXPECT_THAT(record({"-p", "."}).output, HasSubstr("1 reused"));
  shell(kEqualSizeAndTime);
  EXPECT_THAT(record({"-p", "."}).output, StartsWith("1 of 1"));
}

TEST_F(Incremental, UnitThatHangs_CostsOnlyItself) {
  write("hang.c", "int hang;\n");
  writeDatabase({"gcc -c hang.c", "gcc -Isecond -c unit.c"});
  recordQuietly({"-p", "."});
  shell("mkfifo endless.h; echo '#include \"endless.h\"' > hang.c");
  const ProgramResult result = record({"-p", ".", "--timeout", "1", "--force"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.output, AllOf(HasSubstr("1 of 2 units recorded"), HasSubstr("1 failed")));
  EXPECT_THAT(result.errors, HasSubstr("hang.c: took longer than 1 s"));
  EXPECT_THAT(outputs(), AllOf(SizeIs(3), Each(StartsWith("unit.c-"))));
}

TEST_F(Incremental, KeepGoing_SavesWhatThereIsOfErrorsAndNeverReusesIt) {
  write("unit.c", "int whole;\nint broken = unknown;\n");
  for (int run = 0; run < 2; ++run) {
    const ProgramResult result = record({"--keep-going", "-p", "."});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, HasSubstr("unit.c: has errors"));
    EXPECT_EQ(rows(outputEnding(".comp.db"),
                   "SELECT Name FROM Variable JOIN Identifier USING (IdentifierId) LIMIT 1"),
              "whole\n");
  }
}

TEST_F(Incremental, UnitsThatAreGone_AreNamedAndRemovedOnRequest) {
  writeDatabase({"gcc -Isecond -c unit.c", "gcc -Isecond -DA -c unit.c"});
  recordQuietly({"-p", "."});
  shell("cd ../out; touch notes.db; mkdir .gone.c-0123456789abcdef.fe_db-new");
  writeDatabase({"gcc -Isecond -c unit.c"});
  EXPECT_THAT(record({"-p", "."}).output,
              AllOf(HasSubstr("gone.c-"), HasSubstr("2 units"), HasSubstr("--prune")));
  EXPECT_THAT(outputs(), SizeIs(8));
  recordQuietly({"--prune", "-p", "."});
  EXPECT_THAT(outputs(), AllOf(SizeIs(4), testing::Contains("notes.db")));
  EXPECT_THAT(record({"-p", "."}).output, AllOf(HasSubstr("1 reused"), Not(HasSubstr("prune"))));
}

}  // namespace

}  // namespace fe_db_tests
