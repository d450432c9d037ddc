// What GCC compiles with a warning or none is recorded.
#include "record/record_fixture.h"

namespace fe_db_tests {

namespace {

struct Accepted {
  const char* name;
  const char* source;
  bool isCpp = false;
};

class AcceptedByGcc : public RecordTest, public testing::WithParamInterface<Accepted> {};

TEST_P(AcceptedByGcc, IsRecordedWithoutAWord) {
  const std::string compiler = GetParam().isCpp ? "g++" : "gcc";
  const std::string source = GetParam().isCpp ? "unit.cc" : "unit.c";
  write(source, GetParam().source);
  ASSERT_EQ(runProgram({compiler, "-c", source}, {.directory = sources().string()}).exitCode, 0);
  recordQuietly({"--", compiler, "-c", source});
  EXPECT_EQ(outputs().size(), 3U);
}

INSTANTIATE_TEST_SUITE_P(
    Sources, AcceptedByGcc,
    testing::Values(
        Accepted{"ReturnWithoutValue", "int f(int x) { if (x) return; return 1; }"},
        Accepted{"ReturnWithValue", "void f(void) { return 1; }"},
        Accepted{"ImplicitFunction", "int f(void) { return g(1); }"},
        Accepted{"ImplicitFunctionDefinedLater", "void f(void) { g(); }\nvoid g(void) {}"},
        Accepted{"ImplicitInt", "f(x) { return x; }\nstatic y = 3;"},
        Accepted{"PointerFromInteger", "char *f(void) { return 5; }\nint g(char *p) { return p; }"},
        Accepted{"OtherPointer", "int x;\nchar *p = &x;\nvoid f(int);\nvoid (*q)(char *) = f;"},
        Accepted{"VariableNamedLikeAFunction", "int index, log;\nint f(void) { return index; }"},
        Accepted{"AttributeWithArguments",
                 "void d(void *);\nvoid *f(int) __attribute__((malloc, malloc(d)));"},
        Accepted{"Narrowing", "void f(int x) { char a[] = {x}; (void)a; }", true},
        Accepted{"Register", "int f() { register int x = 1; return x; }", true},
        Accepted{"LiteralBeforeMacro", "#define P \"x\"\nconst char *s = \"a\"P\"b\";", true}),
    caseName);

TEST_F(RecordTest, FunctionDefinedAfterAnImplicitCall_IsCalled) {
  write("unit.c", "void f(void) { g(); }\nvoid g(void) {}\nvoid h(void) { g(); }\n");
  recordQuietly({"--", "gcc", "-c", "unit.c"});
  EXPECT_EQ(
      rows(outputEnding(".comp.db"),
           "SELECT LineNum, DeclLineNum FROM CallPoint JOIN Function ON CalleeId = FunctionId "
           "ORDER BY LineNum"),
      "1|1\n3|2\n");
}

TEST_F(RecordTest, RealErrorAmongExcusedOnes_StillFails) {
  write("unit.c", "int index;\nvoid f(void) { g(); }\nvoid g(void) {}\nint x = y;\n");
  const ProgramResult result = record({"--", "gcc", "-c", "unit.c"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, testing::HasSubstr("unit.c:4:9: error: "));
  EXPECT_THAT(result.errors, testing::Not(testing::HasSubstr("conflicting")));
}

}  // namespace

}  // namespace fe_db_tests
