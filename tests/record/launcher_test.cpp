#include <map>
#include <set>

#include "record/record_fixture.h"

namespace fe_db_tests {

namespace {

/// Files by their names in a directory.
using Files = std::map<std::string, std::string>;

class Launcher : public RecordTest {
 protected:
  /// In a new directory, the same each time: objects may have its path in them.
  ProgramResult run(const std::vector<std::string>& command, const RunOptions& more = {}) const {
    RunOptions options = more;
    options.directory = path("build");
    std::filesystem::remove_all(options.directory);
    std::filesystem::create_directories(options.directory + "/objects");
    runProgram({"sh", "-c",
                "echo 'int good(void) { return 1; }' > good.c; echo 'int main() {}' > main.c;"
                "echo 'int bad = ;' > bad.c; echo 'void f() { void g() {} g(); }' > gnu.c;"
                "echo nop > code.S; echo '-c good.c main.c' > two.rsp; echo '#include <stdarg.h>' "
                "> forced.h; echo 'int question;' > conftest.c;"
                "printf '#!/bin/sh\\nexec \"$@\"\\n' > ccache;"
                "printf '#!/bin/sh\\nexec gcc -DSCRIPT \"$@\"\\n' > cc; chmod +x cc ccache"},
               options);
    return runProgram(command, options);
  }

  Files files() const {
    Files found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path("build"))) {
      const std::string name = std::filesystem::relative(entry.path(), path("build")).string();
      found[name] = entry.is_regular_file() ? readFile(entry.path()) : "";
    }
    return found;
  }

  /// Takes the facts out. What is left are the names of their units.
  static std::set<std::string> removeFacts(Files& files) {
    std::set<std::string> objects;
    for (const auto& [name, content] : files) {
      if (name.ends_with(".comp.db")) objects.insert(name.substr(0, name.size() - 8));
    }
    for (const std::string& object : objects) {
      for (const char* ending : {".comp.db", ".manifest", ".pp.db"}) files.erase(object + ending);
    }
    return objects;
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
  const ProgramResult alone = run(command);
  const Files expected = files();
  command.insert(command.begin(), FE_DB_RECORD_PROGRAM);
  const ProgramResult launched = run(command);
  EXPECT_EQ(launched.exitCode, alone.signal == 0 ? alone.exitCode : 128 + alone.signal);
  EXPECT_EQ(launched.output, alone.output);
  ASSERT_EQ(launched.errors.substr(0, alone.errors.size()), alone.errors);
  EXPECT_THAT(launched.errors.substr(alone.errors.size()),
              testing::MatchesRegex(GetParam().errors));
  Files made = files();
  EXPECT_EQ(removeFacts(made), GetParam().objects);
  EXPECT_EQ(made, expected);
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
        Launch{"KernelStyle",
               {"gcc", "-Wp,-MD,objects/.g.o.d", "-include", "./forced.h", "-D__KERNEL__",
                "-Wp,-D_X=1", "-std=gnu11", "-fno-common", "-fno-pie", "-mcmodel=kernel",
                "-mindirect-branch=thunk-extern", "-DKBUILD_BASENAME=\"g\"", "-c", "-o",
                "objects/g.o", "good.c"},
               {"objects/g.o"}},
        Launch{
            "DependenciesPastTheDriver",
            {"gcc", "-Xpreprocessor", "-MD", "-Xpreprocessor", "x.d", "-Wp,-MT,y", "-c", "good.c"},
            {"good.o"}},
        Launch{"DependenciesByLongName",
               {"gcc", "--write-dependencies", "--output=objects/g.o", "-c", "good.c"},
               {"objects/g.o"}},
        Launch{"DependenciesBeside",
               {"gcc", "-g", "-MMD", "-MP", "-MF", "g.d", "-c", "good.c", "-oobjects/g.o"},
               {"objects/g.o"}},
        Launch{"SavedTemporaries",
               {"gcc", "-save-temps=obj", "-c", "good.c", "-o", "objects/g.o"},
               {"objects/g.o"}},
        Launch{"SavedTemporariesByLongName", {"gcc", "--save-temps", "-c", "good.c"}, {"good.o"}},
        Launch{"NameWithBlanks",
               {"gcc", "-c", "good.c", "-o", "objects/a good one.o"},
               {"objects/a good one.o"}},
        Launch{"Script", {"./cc", "-c", "good.c"}, {"good.o"}},
        Launch{"CacheBefore", {"./ccache", "gcc", "-c", "good.c"}, {"good.o"}},
        Launch{"QuestionOfAutoconf", {"gcc", "-c", "conftest.c"}},
        Launch{"NoSourceOfTheProject",
               {"gcc", "-c", "-x", "c", "/dev/null", "-o", "objects/null.o"}},
        Launch{"Killed", {"sh", "-c", "kill -KILL $$"}},
        Launch{"RecorderFails",
               {"gcc", "-c", "gnu.c"},
               {},
               "fe_db_record: [^\n]*gnu\\.c: [^\n]*error: [^\n]*\n"}),
    caseName);

TEST_F(Launcher, MissingCompiler_IsNamed) {
  const ProgramResult result = run({FE_DB_RECORD_PROGRAM, "no-such-compiler", "good.c"});
  EXPECT_EQ(result.exitCode, 127);
  EXPECT_THAT(result.errors, testing::HasSubstr("no-such-compiler: "));
}

TEST_F(Launcher, EndOfChildrenIgnoredByTheCaller_LosesNoExitCode) {
  const auto exitCodeOf = [this](const std::string& source) {
    return run({"env", "--ignore-signal=CHLD", FE_DB_RECORD_PROGRAM, "gcc", "-c", source}).exitCode;
  };
  EXPECT_EQ(exitCodeOf("bad.c"), 1);
  EXPECT_EQ(exitCodeOf("good.c"), 0);
  Files made = files();
  EXPECT_THAT(removeFacts(made), testing::ElementsAre("good.o"));
}

TEST_F(Launcher, OptionsInTheEnvironment_HoldForItsRecordings) {
  const ProgramResult result =
      run({FE_DB_RECORD_PROGRAM, "gcc", "-DB", "-c", "good.c"},
          {.environment = {{"FE_DB_RECORD_OPTIONS",
                            "--keep-preprocessed --extra-arg '-Dgood=bad' --remove-arg -D*"}}});
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(files()["good.o.i"], testing::HasSubstr("int bad(void)"));
}

TEST_F(Launcher, ManyAtOnceIntoOneDirectory_AllAreWhole) {
  const std::string loop =
      "export FE_DB_RECORD_OUTPUT=../facts; for i in 1 2 3; do "
      "for s in good main; do " FE_DB_RECORD_PROGRAM
      " gcc -c $s.c -o objects/$s$i.o & done; done; wait";
  EXPECT_EQ(run({"sh", "-c", loop}).errors, "");
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(path("facts"))) {
    ++count;
    if (entry.path().extension() != ".db") continue;
    EXPECT_EQ(integrity(entry.path().string()), "ok\n") << entry.path();
  }
  EXPECT_EQ(count, 6U);
}

/// `make -j2` with a compiler given on its command line.
class LauncherInMake : public Launcher, public testing::WithParamInterface<const char*> {
 protected:
  static constexpr char kMakefile[] = R"(
objects = objects/good.o objects/main.o objects/in\ a\ response\ file.o
program: $(objects)
	$(CC) -o $@ objects/*.o
objects/%.o: %.c
	$(CC) -g -MMD -MP -Wp,-MD,$@.deps -save-temps=obj -c $< -o $@
objects/in\ a\ response\ file.o: forced.h
	echo '-x c -c forced.h -o "objects/in a response file.o"' > file.rsp
	$(CC) @file.rsp
clean:
	rm -rf objects/* program file.rsp
)";
};

TEST_P(LauncherInMake, BuildsTheSameFiles) {
  Files made[2];
  for (const std::string launcher : {"", FE_DB_RECORD_PROGRAM " "}) {
    const std::string make = "cat > Makefile <<'END'\n" + std::string(kMakefile) +
                             "END\nmake -j2 CC='" + launcher + GetParam() +
                             "' && make clean && make -j2 CC='" + launcher + GetParam() + "'";
    const ProgramResult result = run({"sh", "-c", make}, {.environment = {{"MAKEFLAGS", ""}}});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    made[launcher.empty() ? 0 : 1] = files();
  }
  EXPECT_THAT(
      removeFacts(made[1]),
      testing::ElementsAre("objects/good.o", "objects/in a response file.o", "objects/main.o"));
  EXPECT_EQ(made[1], made[0]);
}

INSTANTIATE_TEST_SUITE_P(Compilers, LauncherInMake,
                         testing::Values("gcc", "./cc", "./ccache gcc", "gcc -std=gnu99 -DX"));

}  // namespace

}  // namespace fe_db_tests
