// Which unit was recorded, which files it has read, and who includes whom.
#include <map>
#include <set>

#include "record/record_fixture.h"

namespace fe_db_tests {

namespace {

class Units : public RecordTest {
 protected:
  Units() {
    for (const char* directory : {"first", "second"}) {
      std::filesystem::create_directories(sources() / directory);
    }
    write("unit.c",
          "#include \"a.h\"\n"
          "#include <b.h>\n"
          "#define HEADER \"c.h\"\n"
          "#define ANGLED <b.h>\n"
          "#line 70\n"
          "#include HEADER\n"
          "#include ANGLED\n"
          "#include \"first/../a.h\"\n"
          "#include \"link.h\"\n"
          "#define PART 1\n"
          "#include \"part.h\"\n"
          "#if 0\n"
          "#include \"c.h\"\n"
          "#endif\n");
    write("a.h", "#pragma once\n#include \"c.h\"\n");
    write("first/b.h", "#ifndef B\n#define B\n#include_next <b.h>\n#endif\n");
    write("second/b.h", "");
    write("c.h", "#ifndef C\n#define C\n#endif\n");
    write("forced.h", "#include \"a.h\"\n");
    write("part.h", "#if PART\n#undef PART\n#define PART 0\n#include __FILE__\n#endif\n");
    std::filesystem::create_symlink("c.h", sources() / "link.h");
  }

  /// Paths without the directory of the sources.
  std::string facts(const std::string& sql) const {
    std::string text = rows(outputEnding(".comp.db"), sql);
    const std::string directory = sources().string() + '/';
    for (std::size_t at = 0; (at = text.find(directory, at)) != std::string::npos;) {
      text.erase(at, directory.size());
    }
    return text;
  }

  static std::vector<std::string> words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
  }

  const std::vector<std::string> flags{"-Ifirst", "-Isecond", "-include", "forced.h", "unit.c"};
};

TEST_F(Units, IncludesHaveLinesOfTheFileAndKinds) {
  std::vector<std::string> command{"--", "gcc", "-c"};
  command.insert(command.end(), flags.begin(), flags.end());
  recordQuietly(command);
  // 1 quoted, 2 angled, 4 by macro, 8 next, 16 forced
  EXPECT_EQ(facts("SELECT f.Path, LineNum, t.Path, i.Kind FROM Include i JOIN File f ON f.FileId ="
                  " IncludingFileId JOIN File t ON t.FileId = IncludedFileId ORDER BY 1, 2, 3"),
            "a.h|2|c.h|1\n"
            "first/b.h|3|second/b.h|10\n"
            "forced.h|1|a.h|1\n"
            "part.h|4|part.h|5\n"
            "unit.c|0|forced.h|16\n"
            "unit.c|1|a.h|1\n"
            "unit.c|2|first/b.h|2\n"
            "unit.c|6|c.h|5\n"
            "unit.c|7|first/b.h|6\n"
            "unit.c|8|a.h|1\n"
            "unit.c|9|c.h|1\n"
            "unit.c|11|part.h|1\n");
}

TEST_F(Units, FilesOfAUnitAreThoseThatTheCompilerLists) {
  std::vector<std::string> command{"gcc", "-ffreestanding", "-nostdinc", "-M"};
  command.insert(command.end(), flags.begin(), flags.end());
  std::set<std::string> expected;
  for (const std::string& word :
       words(runProgram(command, {.directory = sources().string()}).output)) {
    if (word != "\\" && word != "unit.o:") {
      expected.insert(std::filesystem::canonical(sources() / word).string());
    }
  }
  expected.erase("/usr/include/stdc-predef.h");  // GCC's own addition
  command[3] = "-c";
  command.insert(command.begin(), "--");
  recordQuietly(command);
  std::set<std::string> files;
  for (const std::string& path : words(
           rows(outputEnding(".comp.db"), "SELECT Path FROM UnitFile JOIN File USING (FileId)"))) {
    files.insert(path);
  }
  EXPECT_EQ(files, expected);
  EXPECT_THAT(files, testing::SizeIs(7));
}

struct Recorded {
  const char* name;
  std::vector<std::string> arguments;
  std::string unit;  ///< source, object, options
};

class UnitRow : public Units, public testing::WithParamInterface<Recorded> {};

TEST_P(UnitRow, NamesSourceObjectAndOptions) {
  write("compile_commands.json", R"([{"directory": ")" + sources().string() +
                                     R"(", "file": "a.c", "command": "gcc -DX='1 2' -c a.c -o )" +
                                     R"(objects/a.o"}])");
  write("a.c", "int a;\n");
  recordQuietly(GetParam().arguments);
  EXPECT_EQ(facts("SELECT Name, Path, Directory || '/', Output, Options FROM Unit JOIN File ON"
                  " FileId = MainFileId"),
            GetParam().unit);
  EXPECT_EQ(facts("SELECT Command FROM Unit").substr(0, 4), "gcc ");
  EXPECT_THAT(facts("SELECT Recorder FROM Unit"),
              testing::MatchesRegex("fe_db_record [0-9.]+ \\(Clang [0-9.]+\\)\n"));
}

INSTANTIATE_TEST_SUITE_P(
    Ways, UnitRow,
    testing::Values(Recorded{"FromADatabase",
                             {"-p", "."},
                             "a.c|a.c||objects/a.o|references=all system=referenced\n"},
                    Recorded{"NamedByOption",
                             {"--system=all", "--", "gcc", "-c", "a.c", "-oa.obj"},
                             "a.c|a.c||a.obj|references=all system=all\n"},
                    Recorded{"NamedAfterTheSource",
                             {"--", "gcc", "-c", "first/../a.c"},
                             "first/../a.c|a.c||a.o|references=all system=referenced\n"},
                    Recorded{"OfItsOwnProcess",
                             {"--timeout=500", "--", "gcc", "-c", "a.c"},
                             "a.c|a.c||a.o|references=all system=referenced\n"},
                    Recorded{"Linked",
                             {"--", "gcc", "a.c", "-o", "a"},
                             "a.c|a.c|||references=all system=referenced\n"},
                    Recorded{"OnlyChecked",
                             {"--", "gcc", "-fsyntax-only", "a.c"},
                             "a.c|a.c|||references=all system=referenced\n"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(Units, ALauncherKnowsTheObjectAndItsOptions) {
  write("a.c", "int a; int *b = &a;\n");
  std::filesystem::create_directories(output());
  const ProgramResult result =
      runProgram({FE_DB_RECORD_PROGRAM, "gcc", "-c", "a.c", "-o", (output() / "x.o").string()},
                 {.directory = sources().string(),
                  .environment = {{"FE_DB_RECORD_OPTIONS", "--references=none"}}});
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(facts("SELECT Output, Options, (SELECT count(*) FROM Reference) FROM Unit"),
            (output() / "x.o").string() + "|references=none system=referenced|0\n");
}

/// The same contents, wherever they are, and nothing else.
TEST_F(Units, DigestIsThatOfAllThatWasRead) {
  const auto digest = [this](const std::string& directory) {
    std::filesystem::remove_all(output());
    recordQuietly({"--", "gcc", "-c", directory + "/unit.c"});
    return facts("SELECT Digest FROM Unit");
  };
  std::set<std::string> digests;
  for (const char* directory : {"first", "second"}) {
    write(std::string(directory) + "/unit.c", "#include \"own.h\"\nint x = 1;\n");
    write(std::string(directory) + "/own.h", "int y;\n");
    digests.insert(digest(directory));
  }
  EXPECT_THAT(digests, testing::SizeIs(1));
  write("second/own.h", "int z;\n");
  digests.insert(digest("second"));
  EXPECT_THAT(digests, testing::SizeIs(2));
  EXPECT_THAT(digests, testing::Each(testing::SizeIs(17)));
}

}  // namespace

}  // namespace fe_db_tests
