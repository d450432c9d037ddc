// What the recorder asks compilers, with scripts in their place.
#include "compiler_inquiry.h"
#include "record/record_fixture.h"
#include "unit.h"

namespace fe_db_tests {

namespace {

using fe_db_tools::CompilerAnswer;
using fe_db_tools::CompilerInquiry;
using fe_db_tools::Unit;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

/// Prints what GCC prints. Its own directory is `own/gcc/x/12/include`, another one `target`.
constexpr char kAnswer[] = R"(
echo "$PWD $*" >> "$HERE/calls"
cat >&2 <<END
Using built-in specs.
Target: $TARGET
COLLECT_GCC_OPTIONS='-v' '-mcpu=cortex-m3' '-mfloat-abi=soft' '-mlibarch=armv7-m'
#include "..." search starts here:
#include <...> search starts here:
 $HERE/own/gcc/x/12/include
 $HERE/target
 $HERE/nowhere
End of search list.
COLLECT_GCC_OPTIONS='-v' '-mcpu=cortex-m3' '-mfloat-abi=soft' '-mlibarch=armv7-m'
END
cat <<END
#define __GNUC__ 12
#define __ARM_ARCH 7
#define __ARM_SIZEOF_MINIMAL_ENUM 1
#define __CHAR_UNSIGNED__ 1
#define __INT32_TYPE__ long int
#define __INT32_C(c) c ## L
#define __SIZEOF_LONG__ 4
#define __SIZEOF_FLOAT80__ 12
#define __STDC_VERSION__ 199901L
END
)";

class Compiler : public RecordTest {
 protected:
  Compiler() {
    std::filesystem::create_directories(path("bin"));
    std::filesystem::create_directories(path("own/gcc/x/12/include"));
    std::filesystem::create_directories(path("target"));
    environment = std::getenv("PATH");
    setenv("PATH", (path("bin") + ":" + environment).c_str(), 1);
  }
  ~Compiler() override { setenv("PATH", environment.c_str(), 1); }

  /// In a directory of the PATH.
  void install(const std::string& name, const std::string& script) const {
    const std::filesystem::path file = path("bin/" + name);
    std::ofstream(file) << "#!/bin/sh\n" << script;
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
  }
  void installAnswering(const std::string& name, const std::string& target) const {
    install(name, "HERE=" + sources().parent_path().string() + "; TARGET=" + target + kAnswer);
  }

  std::size_t calls() const {
    const std::string text = readFile(path("calls"));
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  }

  Unit unit(const std::string& compiler, std::vector<std::string> flags = {}) const {
    return {sources().string(), "unit.c", std::move(flags), compiler};
  }

  struct Asked {
    std::string refusal;
    std::string warning;
    CompilerAnswer answer;
  };
  Asked ask(CompilerInquiry& inquiry, Unit asked) const {
    Asked result;
    result.refusal = inquiry.askFor(asked, result.warning);
    if (asked.answer) result.answer = *asked.answer;
    return result;
  }

 private:
  std::string environment;
};

TEST_F(Compiler, OfAnotherMachine_GivesItsTargetPathsAbiAndDefaults) {
  installAnswering("armv7m-none-eabi-gcc", "arm-none-eabi");
  CompilerInquiry inquiry(CompilerInquiry::Memory::run);
  const CompilerAnswer answer = ask(inquiry, unit("armv7m-none-eabi-gcc")).answer;
  EXPECT_EQ(answer.target, "arm-none-eabi");
  EXPECT_THAT(answer.directories, ElementsAre(path("own/gcc/x/12/include"), path("target")));
  EXPECT_THAT(answer.defaults, ElementsAre("-mcpu=cortex-m3", "-mfloat-abi=soft", "-fshort-enums",
                                           "-std=gnu99", "-funsigned-char"));
  EXPECT_THAT(answer.macros,
              AllOf(Contains("__ARM_ARCH 7"), Contains("__INT32_C(c) c ## L"),
                    Not(Contains(HasSubstr("GNUC"))), Not(Contains(HasSubstr("FLOAT80")))));
  const auto again = CompilerAnswer::parse(answer.text());
  ASSERT_TRUE(again);
  EXPECT_EQ(again->text(), answer.text());
}

TEST_F(Compiler, OfThisMachine_GivesItsPathsAndItsStandard) {
  const std::string target = runProgram({"gcc", "-dumpmachine"}).output;
  installAnswering("cc1234", target.substr(0, target.size() - 1));
  CompilerInquiry inquiry(CompilerInquiry::Memory::run);
  const CompilerAnswer answer = ask(inquiry, unit("cc1234")).answer;
  EXPECT_EQ(answer.text(), "target \ndirectory " + path("own/gcc/x/12/include") + "\ndirectory " +
                               path("target") + "\ndefault -std=gnu99\nend\n");
}

TEST_F(Compiler, IsAskedOnceForEachSetOfFlagsThatMatters) {
  installAnswering("gcc", "arm-none-eabi");
  CompilerInquiry inquiry(CompilerInquiry::Memory::run);
  ask(inquiry, unit("gcc", {"-DA", "-O2", "-I", "-mfoo", "-Xclang", "-mbar"}));
  ask(inquiry, unit("gcc", {"-DB", "-Wall"}));
  EXPECT_EQ(calls(), 1U);
  ask(inquiry, unit("gcc", {"-mthumb", "--sysroot", "/"}));
  EXPECT_EQ(calls(), 2U);
  EXPECT_THAT(readFile(path("calls")), HasSubstr("-mthumb --sysroot / -v"));
}

TEST_F(Compiler, IsAskedAgainInAnotherDirectoryOnlyWhereThatMatters) {
  installAnswering("gcc", "arm-none-eabi");
  CompilerInquiry inquiry(CompilerInquiry::Memory::run);
  for (const char* flag : {"--sysroot=/", "--sysroot=.."}) {
    for (const std::string& directory : {path(""), sources().string()}) {
      Unit asked = unit("gcc", {flag});
      asked.directory = directory;
      ask(inquiry, asked);
    }
  }
  EXPECT_EQ(calls(), 3U);
}

TEST_F(Compiler, AnswersAreKeptForOtherProcessesUntilTheProgramChanges) {
  installAnswering("gcc", "arm-none-eabi");
  std::string first;
  for (int process = 0; process < 2; ++process) {
    CompilerInquiry inquiry(CompilerInquiry::Memory::lasting);
    const CompilerAnswer answer = ask(inquiry, unit("gcc")).answer;
    EXPECT_EQ(answer.target, "arm-none-eabi");
    EXPECT_EQ(process == 0 ? answer.text() : first, answer.text());
    first = answer.text();
  }
  EXPECT_EQ(calls(), 1U);
  installAnswering("gcc", "armv7m-none-eabi");
  CompilerInquiry inquiry(CompilerInquiry::Memory::lasting);
  EXPECT_EQ(ask(inquiry, unit("gcc")).answer.target, "armv7m-none-eabi");
  std::filesystem::remove(path("target"));
  CompilerInquiry later(CompilerInquiry::Memory::lasting);
  EXPECT_THAT(ask(later, unit("gcc")).answer.directories, SizeIs(1));
}

TEST_F(Compiler, BehindACacheOfItsName_IsFoundAndTheCacheIsNotRun) {
  install("ccache", "echo called >> " + path("calls"));
  std::filesystem::create_directories(path("cached"));
  std::filesystem::create_symlink(path("bin/ccache"), path("cached/armv7m-none-eabi-gcc"));
  installAnswering("armv7m-none-eabi-gcc", "arm-none-eabi");
  CompilerInquiry inquiry(CompilerInquiry::Memory::run);
  EXPECT_EQ(ask(inquiry, unit(path("cached/armv7m-none-eabi-gcc"))).answer.target, "arm-none-eabi");
  EXPECT_THAT(readFile(path("calls")), Not(HasSubstr("called")));
}

TEST_F(Compiler, IsAskedInAnEnvironmentThatChangesNothing) {
  install("gcc", "echo \"$LC_ALL ${CPATH:-unset} ${DEPENDENCIES_OUTPUT:-unset}\" > " +
                     path("seen") + "; read line && echo input >> " + path("seen"));
  setenv("CPATH", "/usr", 1);
  setenv("DEPENDENCIES_OUTPUT", path("written").c_str(), 1);
  CompilerInquiry inquiry(CompilerInquiry::Memory::run);
  ask(inquiry, unit("gcc"));
  unsetenv("CPATH");
  unsetenv("DEPENDENCIES_OUTPUT");
  EXPECT_EQ(readFile(path("seen")), "C unset unset\n");
}

struct Silent {
  const char* name;
  const char* script;  ///< empty: not installed
  const char* problem;
};

class SilentCompiler : public Compiler, public testing::WithParamInterface<Silent> {};

TEST_P(SilentCompiler, OfThisMachineIsNamedOnce_OfAnotherCostsItsUnits) {
  for (const char* name : {"cc1234", "armv7m-none-eabi-gcc"}) {
    if (*GetParam().script != '\0') install(name, GetParam().script);
  }
  CompilerInquiry inquiry(CompilerInquiry::Memory::run, std::chrono::milliseconds(500));
  const Asked first = ask(inquiry, unit("cc1234"));
  EXPECT_EQ(first.refusal, "");
  EXPECT_THAT(first.warning, AllOf(HasSubstr("cc1234"), HasSubstr(GetParam().problem)));
  EXPECT_EQ(ask(inquiry, unit("cc1234", {"-m32"})).warning, "");
  const Asked foreign = ask(inquiry, unit("armv7m-none-eabi-gcc"));
  EXPECT_EQ(foreign.warning, "");
  EXPECT_THAT(foreign.refusal, AllOf(HasSubstr("armv7m-none-eabi"), HasSubstr(GetParam().problem)));
}

INSTANTIATE_TEST_SUITE_P(
    Scripts, SilentCompiler,
    testing::Values(
        Silent{"Missing", "", "not found"}, Silent{"Hangs", "sleep 1000 & sleep 1000", "too long"},
        Silent{"ClosesItsOutputAndHangs", "exec >&- 2>&-; sleep 1000", "does not answer"},
        Silent{"Endless", "exec yes nonsense", "does not answer"},
        Silent{"Nonsense", "head -c 100000 /dev/urandom", "does not answer"},
        Silent{"HalfAList", "echo '#include <...> search starts here:' >&2", "does not answer"},
        Silent{"Crashes", "kill -SEGV $$", "does not answer"}),
    caseName);

TEST_F(Compiler, ThatHangs_IsEndedWithWhatItStarted) {
  install("gcc", "sleep 1000 & echo $! > " + path("started") + "; wait");
  CompilerInquiry inquiry(CompilerInquiry::Memory::run, std::chrono::milliseconds(500));
  ask(inquiry, unit("gcc"));
  const std::string state =
      runProgram({"sh", "-c", "ps -o stat= -p $(cat " + path("started") + ")"}).output;
  EXPECT_TRUE(state.empty() || state[0] == 'Z') << state;
}

TEST(MacrosOfCompiler, ReplaceClangsAndLeaveTheCommandLine) {
  CompilerAnswer answer;
  answer.macros = {"__ARM_ARCH 7", "__INT32_TYPE__ long int"};
  EXPECT_EQ(withMacrosOf(answer,
                         "# 1 \"<built-in>\" 3\n#define __INT32_TYPE__ int\n#define __ILP32__ 1\n"
                         "#define __ARM_ACLE 200\n#define __GNUC__ 4\n# 1 \"<command line>\" 1\n"
                         "#define __ILP32__ 2\n"),
            "# 1 \"<built-in>\" 3\n#define __ARM_ACLE 200\n#define __GNUC__ 4\n"
            "#define __ARM_ARCH 7\n#define __INT32_TYPE__ long int\n# 1 \"<command line>\" 1\n"
            "#define __ILP32__ 2\n");
}

/// The whole program, with a compiler for another machine.
class ForeignUnit : public Compiler {
 protected:
  ForeignUnit() {
    write("unit.c",
          "#include <own.h>\n"
          "#include <stddef.h>\n"
          "_Static_assert(sizeof(long) == 4 && sizeof(enum { one }) == 1 && (char)-1 > 0, \"\");\n"
          "__INT32_TYPE__ number = __ARM_ARCH;\n"
          "#if defined __x86_64__ || !defined __arm__ || __STDC_VERSION__ != 199901L\n"
          "#error wrong machine\n"
          "#endif\n");
    std::ofstream(path("own/gcc/x/12/include/own.h")) << "int own;\n";
    std::ofstream(path("own/gcc/x/12/include/stddef.h")) << "#error not for Clang\n";
    install("armv7m-none-eabi-gcc",
            "HERE=" + path("") + "; TARGET=arm-none-eabi" + kAnswer + "echo '#define __arm__ 1'\n");
  }
};

TEST_F(ForeignUnit, IsRecordedForItsMachine_AskedOnceInARun) {
  write("other.c", "int other;\n");
  write("compile_commands.json", R"([
    {"directory": ".", "file": "unit.c", "command": "armv7m-none-eabi-gcc -c unit.c"},
    {"directory": ".", "file": "other.c", "command": "ccache armv7m-none-eabi-gcc -DA -c other.c"}])");
  const ProgramResult result = record({"-p", ".", "--keep-preprocessed"});
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, HasSubstr("2 of 2 units recorded"));
  EXPECT_EQ(calls(), 1U);
  std::string texts;
  for (const std::string& name : outputs()) {
    if (name.ends_with(".i")) texts += readFile(output() / name);
  }
  EXPECT_THAT(texts, HasSubstr("long int number = 7;"));
}

TEST_F(ForeignUnit, PredefinedMacrosOfItsCompilerAreNoneOfTheCommandLine) {
  recordQuietly({"--", "armv7m-none-eabi-gcc", "-D__COMMAND", "-c", "unit.c"});
  EXPECT_EQ(rows(outputEnding(".pp.db"),
                 "SELECT Name, Text, DeclColNum FROM Macro JOIN Identifier USING "
                 "(IdentifierId) WHERE Name IN ('__ARM_ARCH', '__COMMAND') ORDER BY Name"),
            "__ARM_ARCH|7|3\n__COMMAND|1|1\n");
}

TEST_F(ForeignUnit, IsReusedWhileItsCompilerAnswersTheSame) {
  write("compile_commands.json", R"([
    {"directory": ".", "file": "unit.c", "command": "armv7m-none-eabi-gcc -c unit.c"}])");
  recordQuietly({"-p", "."});
  EXPECT_THAT(record({"-p", "."}).output, HasSubstr("1 reused"));
  std::ofstream(path("bin/armv7m-none-eabi-gcc"), std::ios::app) << "echo '#define __ARM_FP 4'\n";
  EXPECT_THAT(record({"-p", "."}).output, Not(HasSubstr("reused")));
}

TEST_F(ForeignUnit, WithAndWithoutPrefixIsTwoUnits) {
  write("unit.c", "int unit;\n");
  write("compile_commands.json", R"([
    {"directory": ".", "file": "unit.c", "command": "armv7m-none-eabi-gcc -c unit.c"},
    {"directory": ".", "file": "unit.c", "command": "gcc -c unit.c"}])");
  EXPECT_THAT(record({"-p", "."}).output, HasSubstr("2 of 2 units recorded"));
}

struct Refusal {
  const char* name;
  const char* target;  ///< empty: the compiler is not there
  const char* more;    ///< appended to the compiler
  const char* reason;
};

class RefusedForeignUnit : public ForeignUnit, public testing::WithParamInterface<Refusal> {};

TEST_P(RefusedForeignUnit, IsOneClearLineAndNoFiles) {
  const Refusal& test = GetParam();
  std::filesystem::remove(path("bin/armv7m-none-eabi-gcc"));
  if (*test.target != '\0') {
    installAnswering("armv7m-none-eabi-gcc", test.target);
    std::ofstream(path("bin/armv7m-none-eabi-gcc"), std::ios::app) << test.more;
  }
  write("compile_commands.json", R"([
    {"directory": ".", "file": "unit.c", "command": "armv7m-none-eabi-gcc -c unit.c"}])");
  for (const bool isDatabase : {true, false}) {
    const ProgramResult result =
        isDatabase ? record({"-p", "."}) : record({"--", "armv7m-none-eabi-gcc", "-c", "unit.c"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, testing::MatchesRegex("fe_db_record: [^\n]*unit.c: [^\n]*\n"));
    EXPECT_THAT(result.errors, HasSubstr(test.reason));
    EXPECT_THAT(outputs(), IsEmpty());
    if (isDatabase) {
      EXPECT_THAT(result.output, HasSubstr(test.reason));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Reasons, RefusedForeignUnit,
    testing::Values(Refusal{"NoCompiler", "", "", "armv7m-none-eabi-gcc cannot be asked"},
                    Refusal{"TargetThatClangLacks", "sh4-linux-gnu", "", "Clang has no target sh4"},
                    Refusal{"OtherSizes", "arm-none-eabi", "echo '#define __SIZEOF_INT__ 2'\n",
                            "__SIZEOF_INT__ is 2 for the compiler and 4 for Clang"}),
    caseName);

TEST_F(Compiler, OfThisMachine_LendsHeadersThatClangLacksAndNoOther) {
  write("unit.c", "#include <omp.h>\n#include <stdarg.h>\nint unit;\n");
  recordQuietly({"--", "gcc", "-fopenmp", "-c", "unit.c"});
  EXPECT_EQ(rows(outputEnding(".pp.db"),
                 "SELECT Kind, Path LIKE '%/gcc/%' OR Path LIKE '%/clang/%' "
                 "FROM File WHERE Path LIKE '%/omp.h'"),
            "3|1\n");
  EXPECT_EQ(rows(outputEnding(".pp.db"),
                 "SELECT Path LIKE '%/clang/%' FROM File WHERE Path LIKE '%/stdarg.h'"),
            "1\n");
}

}  // namespace

}  // namespace fe_db_tests
