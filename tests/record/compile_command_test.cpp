#include "compile_command.h"

#include "compile_database.h"
#include "compiler_name.h"
#include "record/record_fixture.h"
#include "shell_words.h"

namespace fe_db_tests {

namespace {

using fe_db_tools::cleanCommand;
using fe_db_tools::CleanCommand;
using fe_db_tools::splitWords;
using testing::HasSubstr;

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

struct Cleaning {
  const char* name;
  const char* command;
  const char* flags;
  const char* sources;
  const char* refusal = "";
};

class CleanCommandTest : public testing::TestWithParam<Cleaning> {};

TEST_P(CleanCommandTest, KeepsWhatMattersToTheSourceAndChangesNothingTheSecondTime) {
  const Cleaning& test = GetParam();
  const CleanCommand clean = cleanCommand({"/", splitWords(test.command)});
  EXPECT_EQ(joined(clean.flags), test.flags);
  EXPECT_EQ(joined(clean.sources), test.sources);
  EXPECT_THAT(clean.refusal, HasSubstr(test.refusal));
  EXPECT_EQ(clean.refusal.empty(), std::string_view(test.refusal).empty());

  std::vector<std::string> again{"cc"};
  again.insert(again.end(), clean.flags.begin(), clean.flags.end());
  EXPECT_EQ(joined(cleanCommand({"/", again}).flags), test.flags);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, CleanCommandTest,
    testing::Values(
        Cleaning{"Outputs", "gcc -c -o a.o -MD -MF a.d -MTx -O2 a.c", "-O2", "a.c"},
        Cleaning{"Linking", "gcc a.c b.o -L/l -lm -Wl,-x -shared -o p", "", "a.c"},
        Cleaning{"TwoSources", "gcc -DX a.c -Iinc b.c", "-DX -Iinc", "a.c b.c"},
        Cleaning{"ValuesAreNoSources", "gcc -D a.c -I b.c -isystem c.c d.c",
                 "-D a.c -I b.c -isystem c.c", "d.c"},
        Cleaning{"CppCompiler", "/usr/bin/x86_64-linux-gnu-g++-12 -c a.c", "--driver-mode=g++",
                 "a.c"},
        Cleaning{"CompilerCache", "ccache /usr/bin/g++ -c a.c", "--driver-mode=g++", "a.c"},
        Cleaning{"CacheWithSettings", "ccache max_size=5G g++ a.c", "--driver-mode=g++", "a.c"},
        Cleaning{"LauncherWithOptions", "fe_db_record --launcher --force -- env A=B g++ a.c",
                 "--driver-mode=g++", "a.c"},
        Cleaning{"DependencyFiles",
                 "gcc -Wp,-MMD,a.d,-MT,a.o -DA -Wp,-DB=1,-U,C -Xpreprocessor -MD -Xpreprocessor "
                 "b.d -Xclang -dependency-file -Xclang c.d --write-dependencies a.c",
                 "-DA -DB=1 -U C", "a.c"},
        Cleaning{"LongNames", "gcc --compile --define-macro=A --output=a.o --language c a.txt",
                 "-D A -x c", "a.txt"},
        Cleaning{"ErrorsOfTheCompilerItself", "gcc -Wall -Werror=format -Wfatal-errors -H a.c",
                 "-Wall", "a.c"},
        Cleaning{"ForcedHeaderPastTheDriver", "gcc -include x.h -c a.c",
                 "-Xclang -include -Xclang x.h", "a.c"},
        Cleaning{"Assembler", "gcc -c a.S b.s", "", ""},
        Cleaning{"LanguageByFlag", "gcc -x c++ a.txt", "-x c++", "a.txt"},
        Cleaning{"AssemblerByFlag", "gcc -x assembler-with-cpp a.c", "-x assembler-with-cpp", ""},
        Cleaning{"PrecompilingAHeader", "g++ -x c++-header -c all.hpp -o all.hpp.gch",
                 "--driver-mode=g++ -x c++-header", ""},
        Cleaning{"PrecompiledHeader", "clang -include-pch a.pch -c a.c", "", "a.c", "-include-pch"},
        Cleaning{"PrecompiledHeaderInside", "clang -Xclang -include-pch -Xclang a.pch -c a.c",
                 "-Xclang -include-pch -Xclang a.pch", "a.c", "-include-pch"},
        Cleaning{"Modules", "g++ -fmodules-ts -c a.cc", "--driver-mode=g++", "a.cc", "modules"},
        Cleaning{"ModuleSource", "g++ -c a.cppm", "--driver-mode=g++", "", "modules"},
        Cleaning{"StandardInput", "gcc -x c -", "-x c", "", "standard input"}),
    caseName);

TEST(CleanCommand, NamesTheCompilerItself) {
  const auto compilerOf = [](const char* command) {
    return cleanCommand({"/", splitWords(command)}).compiler;
  };
  EXPECT_EQ(compilerOf("ccache /opt/x/arm-none-eabi-gcc -c a.c"), "/opt/x/arm-none-eabi-gcc");
  EXPECT_EQ(compilerOf("ccache"), "ccache");  // somebody's compiler may be called so
}

struct Target {
  const char* name;
  const char* compiler;
  const char* prefix;
};

class TargetPrefixTest : public testing::TestWithParam<Target> {};

TEST_P(TargetPrefixTest, IsWhatComesBeforeTheCompilersOwnName) {
  EXPECT_EQ(fe_db_tools::targetPrefix(GetParam().compiler), GetParam().prefix);
}

INSTANTIATE_TEST_SUITE_P(
    Compilers, TargetPrefixTest,
    testing::Values(Target{"Plain", "gcc", ""}, Target{"Version", "/usr/bin/clang++-14", ""},
                    Target{"Path", "/opt/arm-tools/bin/arm-none-eabi-g++", "arm-none-eabi"},
                    Target{"PrefixAndVersion", "x86_64-linux-gnu-gcc-12", "x86_64-linux-gnu"},
                    Target{"ThreadModel", "i686-w64-mingw32-g++-posix", "i686-w64-mingw32"},
                    Target{"OnePart", "avr-gcc", "avr"},
                    Target{"Sh", "sh4-linux-gnu-cc", "sh4-linux-gnu"},
                    Target{"Fuzzer", "afl-gcc", ""}, Target{"Library", "musl-gcc", ""},
                    Target{"NoProcessor", "armadillo-gcc", ""}),
    caseName);

TEST(Interpreter, IsNoCompilerWhateverItsVersion) {
  EXPECT_TRUE(fe_db_tools::isInterpreter("python3.11"));
  EXPECT_FALSE(fe_db_tools::isInterpreter("sh4-linux-gnu-gcc"));
}

TEST(SplitWords, QuotesAndBackslashesProtectAsInAShell) {
  EXPECT_EQ(joined(splitWords(" a  'b c'\\''d' \"e \\\" \\x\" f\\ g\n")), "a b c'd e \" \\x f g");
  EXPECT_EQ(splitWords("''").size(), 1U);
}

class CompileDatabaseTest : public RecordTest {};

TEST_F(CompileDatabaseTest, ResponseFilesAreReadFromTheDirectoryOfTheCommand) {
  write("flags.rsp", "-DX='a b' @more.rsp");
  write("more.rsp", "-O1 a.c");
  const CleanCommand clean = cleanCommand({sources().string(), {"gcc", "@flags.rsp", "@missing"}});
  EXPECT_EQ(joined(clean.flags), "-DX=a b -O1");
  EXPECT_EQ(joined(clean.sources), "a.c");
}

TEST_F(CompileDatabaseTest, SameSourceAndFlagsAreOneUnit) {
  write("compile_commands.json", R"([
    {"directory": ".", "file": "a.c", "command": "gcc -DX=\"1 2\" -o shared/a.o -c a.c"},
    {"directory": ".", "file": "./a.c", "arguments": ["gcc", "-DX=1 2", "-o", "a.o", "./a.c"]},
    {"directory": ".", "file": "a.c", "command": "gcc -c a.c"},
    {"directory": ".", "file": "b.S", "command": "gcc -c b.S"}])");
  const fe_db_tools::CompileDatabase database =
      fe_db_tools::readCompileDatabase(sources().string());
  ASSERT_EQ(database.units.size(), 2U);
  EXPECT_EQ(joined(database.units[0].flags), "-DX=1 2");
  EXPECT_EQ(database.units[1].sourcePath(), (sources() / "a.c").string());
  EXPECT_EQ(database.skipped, 1U);
}

}  // namespace

}  // namespace fe_db_tests
