#include <set>

#include "record/record_fixture.h"

namespace fe_db_tests {

namespace {

class Launcher : public RecordTest {
 protected:
  /// In a directory of its own, which has the same few files each time.
  ProgramResult run(const std::string& name, const std::vector<std::string>& command) const {
    std::filesystem::create_directories(path(name) + "/objects");
    runProgram({"sh", "-c",
                "echo 'int good(void) { return 1; }' > good.c; echo 'int main() {}' > main.c;"
                "echo 'int bad = ;' > bad.c; echo 'void f() { void g() {} g(); }' > gnu.c;"
                "echo nop > code.S; echo '-c good.c main.c' > two.rsp"},
               {.directory = path(name)});
    return runProgram(command, {.directory = path(name)});
  }

  std::set<std::string> files(const std::string& name) const {
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path(name))) {
      found.insert(std::filesystem::relative(entry.path(), path(name)).string());
    }
    return found;
  }
};

struct Launch {
  const char* name;
  std::vector<std::string> command;
  std::set<std::string> objects = {};  ///< recorded
  std::string errors = {};             ///< of the recorder, a pattern
};

class Launched : public Launcher, public testing::WithParamInterface<Launch> {};

TEST_P(Launched, CommandDoesWhatItDoesAlone_AndFactsOfWhatItCompiledAreBesideTheObjects) {
  std::vector<std::string> command = GetParam().command;
  const ProgramResult alone = run("alone", command);
  command.insert(command.begin(), FE_DB_RECORD_PROGRAM);
  const ProgramResult launched = run("launched", command);
  EXPECT_EQ(launched.exitCode, alone.signal == 0 ? alone.exitCode : 128 + alone.signal);
  EXPECT_EQ(launched.output, alone.output);
  ASSERT_EQ(launched.errors.substr(0, alone.errors.size()), alone.errors);
  EXPECT_THAT(launched.errors.substr(alone.errors.size()),
              testing::MatchesRegex(GetParam().errors));
  std::set<std::string> expected = files("alone");
  for (const std::string& object : GetParam().objects) {
    for (const char* ending : {".comp.db", ".manifest", ".pp.db"}) expected.insert(object + ending);
  }
  EXPECT_EQ(files("launched"), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, Launched,
    testing::Values(
        Launch{"Compile", {"gcc", "-c", "good.c", "-o", "objects/g.o"}, {"objects/g.o"}},
        Launch{"NoOutputNamed", {"gcc", "-c", "./good.c"}, {"good.o"}},
        Launch{"ResponseFile", {"gcc", "@two.rsp"}, {"good.o", "main.o"}},
        Launch{"CompileAndLink", {"gcc", "good.c", "main.c", "-o", "p"}, {"p-good.c", "p-main.c"}},
        Launch{"ToAssembler", {"gcc", "-S", "good.c"}, {"good.s"}},
        Launch{"CompilationFails", {"gcc", "-c", "bad.c"}},
        Launch{"LinkFails", {"gcc", "-nostdlib", "-Wl,--fatal-warnings", "good.c", "-o", "p"}},
        Launch{"Link", {"gcc", "-shared", "-o", "libempty.so"}},
        Launch{"Assembler", {"gcc", "-c", "code.S"}},
        Launch{"Preprocessor", {"gcc", "-E", "good.c", "-o", "good.i"}},
        Launch{"Dependencies", {"gcc", "-MM", "good.c"}}, Launch{"Version", {"gcc", "--version"}},
        Launch{"Question", {"gcc", "-c", "good.c", "-o", "/dev/null"}},
        Launch{"Killed", {"sh", "-c", "kill -KILL $$"}},
        Launch{"RecorderFails",
               {"gcc", "-c", "gnu.c"},
               {},
               "fe_db_record: [^\n]*gnu\\.c: [^\n]*error: [^\n]*\n"}),
    caseName);

TEST_F(Launcher, MissingCompiler_IsNamed) {
  const ProgramResult result = run("here", {FE_DB_RECORD_PROGRAM, "no-such-compiler", "good.c"});
  EXPECT_EQ(result.exitCode, 127);
  EXPECT_THAT(result.errors, testing::HasSubstr("no-such-compiler: "));
}

TEST_F(Launcher, ManyAtOnceIntoOneDirectory_AllAreWhole) {
  const std::string loop =
      "export FE_DB_RECORD_OUTPUT=../facts; for i in 1 2 3; do "
      "for s in good main; do " FE_DB_RECORD_PROGRAM
      " gcc -c $s.c -o objects/$s$i.o & done; done; wait";
  EXPECT_EQ(run("here", {"sh", "-c", loop}).errors, "");
  EXPECT_EQ(files("facts").size(), 6U);
  for (const std::string& name : files("facts")) {
    if (!name.ends_with(".db")) continue;
    EXPECT_EQ(integrity(path("facts/") + name), "ok\n") << name;
  }
}

}  // namespace

}  // namespace fe_db_tests
