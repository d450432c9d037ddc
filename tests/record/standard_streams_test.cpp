#include <map>

#include "record/record_fixture.h"

/// fe_db_record, started without standard input, output or error.
namespace fe_db_tests {

namespace {

using testing::HasSubstr;

class RecordStreams : public RecordTest {
 protected:
  RecordStreams() {
    write("unit.c", "int unit;\n");
    write("broken.c", "int whole;\nint broken = unknown;\n");
    std::string entries;
    for (const std::string name : {"unit.c", "broken.c"}) {
      entries += entries.empty() ? "[" : ", ";
      entries += R"({"directory": ")" + sources().string() + R"(", "file": ")" + name +
                 R"(", "command": "gcc -c )" + name + "\"}";
    }
    write("compile_commands.json", entries + "]");
  }
  ProgramResult without(const std::string& redirections, std::vector<std::string> words) const {
    words.insert(words.begin(),
                 {"sh", "-c", "exec \"$@\" " + redirections, "sh", FE_DB_RECORD_PROGRAM});
    return runProgram(words, {.directory = sources().string()});
  }
};

class RecordWithout : public RecordStreams, public testing::WithParamInterface<const char*> {};

TEST_P(RecordWithout, RecordsWhatItRecordsWithAllStreams) {
  const std::vector<std::vector<std::string>> ways = {
      {"-p", "."}, {"--", "gcc", "-c", "unit.c"}, {"--keep-going", "--", "gcc", "-c", "broken.c"}};
  for (const std::vector<std::string>& way : ways) {
    const auto recordingOf = [&](const std::string& redirections) {
      std::filesystem::remove_all(output());
      std::vector<std::string> words = {"-o", output().string()};
      words.insert(words.end(), way.begin(), way.end());
      std::map<std::string, std::string> files;
      files["exit code"] = std::to_string(without(redirections, words).exitCode);
      for (const std::string& name : outputs()) {
        files[name] = name.ends_with(".db") ? readFile(output() / name) : "";
      }
      return files;
    };
    const auto expected = recordingOf("");
    EXPECT_GT(expected.size(), 2U);
    EXPECT_TRUE(recordingOf(GetParam()) == expected) << way[0];
  }
}

TEST_P(RecordWithout, CompilerHasTheDescriptorsThatTheLauncherHas) {
  const std::string script =
      "open=; for i in 0 1 2 3 4 5 6 7 8 9; do if [ -e /proc/$$/fd/$i ]; then open=$open$i; fi; "
      "done; echo $open > ";
  const auto launch = [&](const std::string& launcher, const std::string& file) {
    runProgram(
        {"sh", "-c", "exec " + launcher + " sh -c \"$1\" " + GetParam(), "sh", script + file},
        {.directory = sources().string()});
    return readFile(sources() / file);
  };
  EXPECT_EQ(launch(FE_DB_RECORD_PROGRAM, "launched"), launch("", "alone"));
}

INSTANTIATE_TEST_SUITE_P(Closed, RecordWithout, testing::Values("<&-", "2>&-", "<&- >&- 2>&-"),
                         [](const auto& test) { return "Case" + std::to_string(test.index); });

TEST_F(RecordStreams, OutputThatCannotBeWritten_IsReportedAndIsAFailureWhereItIsAll) {
  const ProgramResult recorded = without(">&-", {"-o", output().string(), "-p", ".", "unit.c"});
  EXPECT_EQ(recorded.exitCode, 0);
  EXPECT_THAT(recorded.errors, HasSubstr("fe_db_record: standard output: cannot write: "));
  EXPECT_EQ(without(">&-", {"--help"}).exitCode, 1);
}

}  // namespace

}  // namespace fe_db_tests
