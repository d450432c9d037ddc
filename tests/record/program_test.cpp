#include "record/record_fixture.h"

namespace fe_db_tests {

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

class RecordProgram : public RecordTest {
 protected:
  RecordProgram() { write("good.c", "int good(void) { return 1; }\n"); }

  void expectWhole(const std::vector<std::string>& names) const {
    for (const std::string& name : names) {
      if (!name.ends_with(".db")) continue;
      EXPECT_EQ(integrity((output() / name).string()), "ok\n");
    }
  }

  /// A compile_commands.json with one `gcc -c` for each source.
  void writeDatabase(const std::vector<std::string>& names) const {
    std::string entries;
    for (const std::string& name : names) {
      entries += entries.empty() ? "[" : ",\n";
      entries += R"({"directory": ")" + sources().string() + R"(", "file": ")" + name +
                 R"(", "command": "gcc -c )" + name + "\"}";
    }
    write("compile_commands.json", entries + "]");
  }
};

TEST_F(RecordProgram, SourceThatDoesNotParse_LeavesNoFileNotEvenOfAnEarlierRun) {
  write("source.c", "int x;\n");
  recordQuietly({"--keep-preprocessed", "--", "gcc", "-c", "source.c"});
  EXPECT_THAT(outputs(), SizeIs(4));

  write("source.c", "int x = y;\n");
  const ProgramResult result = record({"--", "gcc", "-c", "source.c"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors,
              AllOf(HasSubstr("source.c:1:9: error: "),
                    HasSubstr("fe_db_record: " + (sources() / "source.c").string())));
  EXPECT_THAT(outputs(), IsEmpty());
}

TEST_F(RecordProgram, MissingSource_IsNamed) {
  const ProgramResult result = record({"--", "gcc", "-c", "missing.c"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("missing.c"));
  EXPECT_THAT(outputs(), IsEmpty());
}

TEST_F(RecordProgram, Database_RecordsTheOthersWhenSomeFail) {
  write("bad.c", "int x = y;\n");
  write("crash.c", "#pragma clang __debug crash\n");
  write("asm.S", "nop\n");
  writeDatabase({"good.c", "bad.c", "good.c", "crash.c", "asm.S"});
  const ProgramResult result = record({"-j", "2", "-p", sources().string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.output, HasSubstr("1 of 3 units recorded"));
  EXPECT_THAT(result.errors,
              AllOf(HasSubstr("bad.c:1:9: error: "), HasSubstr("crash.c: its process was killed")));
  EXPECT_THAT(outputs(), ElementsAre(MatchesRegex("good\\.c-[0-9a-f]{16}\\.comp\\.db"),
                                     MatchesRegex("good\\.c-[0-9a-f]{16}\\.manifest"),
                                     MatchesRegex("good\\.c-[0-9a-f]{16}\\.pp\\.db")));
}

TEST_F(RecordProgram, Database_RecordsOnlyTheFilesAskedForAndNamesThoseItDoesNotHave) {
  write("other.c", "int other;\n");
  write("stranger.c", "int stranger;\n");
  writeDatabase({"good.c", "other.c"});
  const ProgramResult result = record({"-p", ".", "other.c", "stranger.c"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr((sources() / "stranger.c").string()));
  EXPECT_THAT(outputs(), ElementsAre(MatchesRegex("other\\.c-.*\\.comp\\.db"),
                                     MatchesRegex("other\\.c-.*\\.manifest"),
                                     MatchesRegex("other\\.c-.*\\.pp\\.db")));
}

TEST_F(RecordProgram, UnitHasOneNameAndOneContentWhoeverRecordsIt) {
  write("good.c", "#include \"good.h\"\nint good(void) { return CALL(1); }\n");
  write("good.h", "#define CALL(x) (x)\nint good(void);\n");
  writeDatabase({"good.c"});
  recordQuietly({"-p", "."});
  const std::vector<std::string> names = outputs();
  std::filesystem::rename(output(), path("first"));
  recordQuietly({"--", "gcc", "-c", "./good.c", "-o", "elsewhere.o"});
  ASSERT_EQ(outputs(), names);
  for (const std::string& name : names) {
    if (!name.ends_with(".db")) continue;
    if (name.ends_with(".comp.db")) {  // the row of the unit says what the command made of it
      for (const auto& directory : {std::filesystem::path(path("first")), output()}) {
        rows((directory / name).string(), "DELETE FROM UnitFile; DELETE FROM Unit");
      }
    }
    const ProgramResult diff =
        runProgram({FE_DB_PROGRAM, "diff", path("first/" + name), (output() / name).string()});
    EXPECT_EQ(diff.exitCode, 0) << diff.output << diff.errors;
  }
}

TEST_F(RecordProgram, CommandWithTwoSourcesAndUnknownFlags_GivesTwoUnits) {
  write("other.c", "int other = X;\n");
  write("flags.rsp", "-DX=1 -fconserve-stack -mindirect-branch=keep");
  recordQuietly({"--", "gcc", "-fanalyzer", "@flags.rsp", "good.c", "other.c", "-o", "program"});
  EXPECT_THAT(outputs(), SizeIs(6));
}

TEST_F(RecordProgram, FilesOfOthersBesideThoseOfAUnit_StayAsTheyAre) {
  recordQuietly({"--", "gcc", "-c", "good.c"});
  const std::vector<std::string> names = outputs();
  for (const std::string& name : names) {
    for (const char* ending : {".tmp", ".new", ".tmp-journal"}) {
      std::ofstream(output() / (name + ending)) << "precious";
    }
  }
  recordQuietly({"--force", "--keep-preprocessed", "--", "gcc", "-c", "good.c"});
  expectWhole(names);
  for (const std::string& name : names) {
    for (const char* ending : {".tmp", ".new", ".tmp-journal"}) {
      EXPECT_EQ(readFile(output() / (name + ending)), "precious") << name << ending;
    }
  }
}

TEST_F(RecordProgram, KilledWhileItReads_LeavesNothing) {
  runProgram({"mkfifo", (sources() / "endless.h").string()});
  write("waiting.c", "#include \"endless.h\"\n");
  // Nobody ever writes: the program waits until it is killed.
  const ProgramResult result =
      runProgram({"timeout", "-s", "KILL", "1", FE_DB_RECORD_PROGRAM, "-o", output().string(), "--",
                  "gcc", "-c", (sources() / "waiting.c").string()});
  EXPECT_NE(result.exitCode, 0);
  EXPECT_THAT(outputs(), IsEmpty());
}

TEST_F(RecordProgram, FullDisk_IsReportedWithTheFileAndKeepsWhatWasThere) {
  recordQuietly({"--", "gcc", "-c", "good.c"});
  const std::vector<std::string> names = outputs();
  const std::string command = std::string("trap '' XFSZ; ulimit -f 64; exec ") +
                              FE_DB_RECORD_PROGRAM + " --force -o " + output().string() +
                              " -- gcc -c good.c";
  const ProgramResult result = runProgram({"sh", "-c", command}, {.directory = sources().string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("fe_db_record: " + output().string()));
  EXPECT_EQ(outputs(), names);
  expectWhole(names);
}

TEST_F(RecordProgram, SystemFacts_AreThoseReferredToOrAll) {
  write("good.c", "#include <stdlib.h>\nint good(div_t *d) { return abs(d->quot); }\n");
  const char* query =
      "SELECT group_concat(DISTINCT Name) FROM Function JOIN Identifier USING (IdentifierId) "
      "WHERE Name IN ('abs', 'labs', 'good') ORDER BY Name";
  recordQuietly({"--", "gcc", "-c", "good.c"});
  EXPECT_EQ(rows(outputEnding(".comp.db"), query).find("labs"), std::string::npos);
  EXPECT_EQ(rows(outputEnding(".comp.db"),
                 "SELECT Name, RefCount FROM Field JOIN Identifier USING (IdentifierId)"),
            "quot|1\n");
  recordQuietly({"--system=all", "--", "gcc", "-c", "good.c"});
  EXPECT_THAT(rows(outputEnding(".comp.db"), query), HasSubstr("labs"));
}

TEST_F(RecordProgram, FilesTellWhatTheyAre) {
  write("forced.h", "#include <stddef.h>\n");
  write("own.h", "");
  write("inner/../good.c", "");
  write("good.c", "#include \"./own.h\"\n");
  recordQuietly({"--", "gcc", "-include", "forced.h", "-c", "./good.c"});
  EXPECT_EQ(rows(outputEnding(".pp.db"), "SELECT Kind, Lang, Path FROM File WHERE Path LIKE '" +
                                             sources().string() + "%' ORDER BY Kind"),
            "1|1|" + (sources() / "good.c").string() + "\n2|1|" + (sources() / "own.h").string() +
                "\n4|1|" + (sources() / "forced.h").string() + "\n");
  EXPECT_EQ(
      rows(outputEnding(".pp.db"), "SELECT DISTINCT Kind FROM File WHERE Path LIKE '%/stddef.h'"),
      "3\n");
}

struct Usage {
  const char* name;
  std::vector<std::string> arguments;
  int exitCode;
  const char* message = "";
};

class RecordUsage : public QuietTest, public testing::WithParamInterface<Usage> {};

TEST_P(RecordUsage, EndsWithItsExitCode) {
  std::vector<std::string> command = GetParam().arguments;
  command.insert(command.begin(), FE_DB_RECORD_PROGRAM);
  const ProgramResult result = runProgram(command, {.directory = path("")});
  EXPECT_EQ(result.exitCode, GetParam().exitCode);
  EXPECT_EQ(result.errors.empty(), GetParam().exitCode == 0) << result.errors;
  EXPECT_EQ(result.output.empty(), GetParam().exitCode != 0) << result.output;
  EXPECT_THAT(result.errors, HasSubstr(GetParam().message));
  if (GetParam().exitCode != 0) {
    EXPECT_THAT(result.errors, MatchesRegex("fe_db_record: [^\n]*; [^\n]*\n"));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, RecordUsage,
    testing::Values(
        Usage{"Help", {"--help"}, 0}, Usage{"Nothing", {}, 2},
        Usage{"NoOutput", {"--", "gcc", "a.c"}, 2},
        Usage{"NeitherCommandNorDatabase", {"-o", "out"}, 2},
        Usage{"Both", {"-o", "out", "-p", ".", "--", "gcc", "a.c"}, 2},
        Usage{"EmptyCommand", {"-o", "out", "--"}, 2},
        Usage{"NoSource", {"-o", "out", "--", "gcc", "a.o"}, 2},
        Usage{"UnknownOption", {"--bogus"}, 2, "unknown option --bogus; "},
        Usage{"NoValue", {"-p", ".", "-o"}, 2, "--output"},
        Usage{"NoJobs", {"-o", "out", "-j", "0", "-p", "."}, 2, "-j 0: give a number"},
        Usage{"ManyJobs", {"-o", "out", "-j", "100000", "-p", "."}, 2, "from 1 to 1024"},
        Usage{"JobsInWords", {"-o", "out", "-j2x", "-p", "."}, 2, "-j 2x: "},
        Usage{"Timeout", {"-o", "out", "--timeout", "-1", "-p", "."}, 2, "--timeout"},
        Usage{"OutputBelowAFile",
              {"-o", "/dev/null/out", "-p", "."},
              1,
              "/dev/null/out: cannot be created (Not a directory)"},
        Usage{"OutputIsAFile", {"-o", "/dev/null", "-p", "."}, 1, "/dev/null: cannot be"},
        Usage{"NoDatabase", {"-o", "out", "-p", "."}, 1}),
    caseName);

TEST_F(RecordProgram, ArgumentsForClangAlone_AreAddedLastAndRemovedWithTheirValues) {
  write("good.c", "int good = A + B;\n");
  write("forced.h", "#error forced\n");
  recordQuietly({"--keep-preprocessed",
                 "--extra-arg",
                 "-DA=2",
                 "--extra-arg=-DB=3",
                 "--remove-arg",
                 "-include*",
                 "--remove-arg=-U?",
                 "--remove-arg",
                 "-I inner",
                 "--remove-arg",
                 "-isystem",
                 "--",
                 "gcc",
                 "-DA=1",
                 "-include",
                 "forced.h",
                 "-U",
                 "B",
                 "-UB",
                 "-I",
                 "inner",
                 "-isystem",
                 "inner",
                 "-c",
                 "good.c"});
  EXPECT_THAT(readFile(outputEnding(".i")), HasSubstr("int good = 2 + 3;"));
  // They are no part of the unit's name, but they decide what is recorded.
  recordQuietly({"--extra-arg=-DA=5", "--extra-arg=-DB=3", "--keep-preprocessed",
                 "--remove-arg=-inc*", "--remove-arg=-U*", "--", "gcc", "-DA=1", "-include",
                 "forced.h", "-U", "B", "-UB", "-I", "inner", "-isystem", "inner", "-c", "good.c"});
  EXPECT_THAT(readFile(outputEnding(".i")), HasSubstr("int good = 5 + 3;"));
}

TEST_F(RecordProgram, MissingHeader_MayBeOneThatTheBuildMakes) {
  write("good.c", "#include \"config.h\"\n");
  EXPECT_THAT(record({"--", "gcc", "-c", "good.c"}).errors,
              HasSubstr("if the build makes config.h, build first and then record\n"));
}

TEST_F(RecordProgram, Failures_AreCountedByCause) {
  write("one.c", "int one = unknown1;\n");
  write("two.c", "int two = unknown2;\n");
  write("three.c", "int three = unknown3;\n");
  write("nested.c", "void f() { void g() {} }\n");
  write("header.c", "#include \"first.h\"\n");
  write("other.c", "#include \"second.h\"\n");
  write("crash.c", "#pragma clang __debug crash\n");
  writeDatabase({"crash.c", "nested.c", "one.c", "header.c", "two.c", "other.c", "three.c"});
  const std::string summary = record({"-j1", "-p", "."}).output;
  EXPECT_THAT(summary, HasSubstr("\n  3 failed: use of undeclared identifier 'unknown1' (first: " +
                                 (sources() / "one.c").string() + ")\n  1 failed: "));
  for (const char* cause :
       {"function definition is not allowed here (", "'first.h' file not found (",
        "'second.h' file not found (", "its process was killed ("}) {
    EXPECT_THAT(summary, HasSubstr(std::string("\n  1 failed: ") + cause));
  }
}

TEST_F(RecordProgram, WithoutATerminal_SaysAtOnceAndEveryTenSecondsHowFarItIs) {
  runProgram({"mkfifo", (sources() / "endless.h").string()});
  write("waiting.c", "#include \"endless.h\"\n");
  writeDatabase({"good.c", "waiting.c"});
  const ProgramResult result = runProgram(
      {FE_DB_RECORD_PROGRAM, "-o", output().string(), "-j1", "--timeout", "11", "-p", "."},
      {.directory = sources().string()});
  EXPECT_THAT(result.errors,
              MatchesRegex("fe_db_record: 2 units, 1 at a time\n"
                           "fe_db_record: 1 of 2 units, [^\n]* left\n[^\n]*took longer[^\n]*\n"));
}

TEST_F(RecordProgram, UnitsMerged_HaveEachFactOnce_WhateverTheOrder) {
  write("shared.h", "enum state { off, on };\nint shared(enum state s);\n");
  for (const std::string name : {"one.c", "two.c", "three.c"}) {
    const std::string function = name.substr(0, name.size() - 2);
    write(name, "#include \"shared.h\"\nint " + function + "(void) { return shared(on); }\n");
  }
  writeDatabase({"one.c", "two.c", "three.c"});
  const ProgramResult recorded = record({"-p", sources().string()});
  ASSERT_EQ(recorded.errors, "");
  std::vector<std::string> units;
  for (const std::string& name : outputs()) {
    if (name.ends_with(".comp.db")) units.push_back((output() / name).string());
  }
  ASSERT_THAT(units, SizeIs(3));
  std::vector<std::string> command{FE_DB_PROGRAM, "merge", "--jobs=3", path("merged.db")};
  command.insert(command.end(), units.begin(), units.end());
  EXPECT_EQ(runProgram(command).errors, "");
  std::vector<std::string> reversed{FE_DB_PROGRAM, "merge", "--jobs=1", path("reversed.db")};
  reversed.insert(reversed.end(), units.rbegin(), units.rend());
  EXPECT_EQ(runProgram(reversed).errors, "");
  EXPECT_EQ(runProgram({FE_DB_PROGRAM, "diff", path("merged.db"), path("reversed.db")}).output, "");
  EXPECT_EQ(
      rows(path("merged.db"),
           "SELECT Name, count(*) FROM Function JOIN Identifier USING (IdentifierId) GROUP BY "
           "Name ORDER BY Name"),
      "one|1\nshared|1\nthree|1\ntwo|1\n");
  EXPECT_EQ(rows(path("merged.db"),
                 "SELECT (SELECT count(*) FROM EnumConstant), (SELECT count(*) FROM CallPoint), "
                 "(SELECT RefCount + RefTagCount FROM Type JOIN Identifier USING (IdentifierId) "
                 "WHERE Name = 'state')"),
            "2|3|3\n");
}

}  // namespace

}  // namespace fe_db_tests
