// Which references are recorded; their roles are in snapshots/.
#include "record/record_fixture.h"

namespace fe_db_tests {

namespace {

class References : public RecordTest {
 protected:
  References() {
    std::filesystem::create_directories(sources() / "sys");
    write("sys/sys.h",
          "#define SYS_TWO 2\n"
          "#define USER_SIZE(x) SYS_TWO + OWN\n"
          "template <class T> int measure(T t) { return t.size() + SYS_TWO; }\n"
          "inline int system_only() { return measure(1 ? 0 : 1, 0); }\n"
          "int system_call();\n");
    write("sys/first.h",
          "template <class T> int measure(T t, int) { return t + SYS_THREE; }\n"
          "#define SYS_THREE 3\n");
    write("unit.cpp",
          "#define OWN 1\n"
          "#define SYS_THREE 4\n"
          "#include <first.h>\n"
          "#undef SYS_THREE\n"
          "#include <sys.h>\n"
          "struct User { int size() const { return 1; } };\n"
          "int used = measure(User()) + USER_SIZE(0) + system_call();\n");
  }

  void recordWith(const std::vector<std::string>& options) const {
    std::filesystem::remove_all(output());
    std::vector<std::string> command = options;
    command.insert(command.end(), {"--", "g++", "-isystem", "sys", "-c", "unit.cpp"});
    recordQuietly(command);
  }

  std::string referencesIn(const std::string& file) const {
    return rows(outputEnding(".comp.db"),
                "SELECT LineNum, ColNum, Roles FROM Reference JOIN File USING (FileId) WHERE Path ="
                " '" +
                    (sources() / file).string() + "' ORDER BY 1, 2, 3");
  }
};

/// 4 a call, 512 a conditional, 8192 an expansion.
TEST_F(References, OfSystemHeadersAreThoseToTheProject_UnlessAllAreAskedFor) {
  recordWith({});
  EXPECT_EQ(referencesIn("sys/first.h"), "1|55|8192\n");  // SYS_THREE of the unit
  EXPECT_EQ(referencesIn("sys/sys.h"), "3|48|4\n");       // User::size
  const std::string ofUnit = referencesIn("unit.cpp");
  recordWith({"--system=all"});
  EXPECT_EQ(referencesIn("unit.cpp"), ofUnit);
  EXPECT_THAT(referencesIn("sys/sys.h"), testing::HasSubstr("3|57|8192\n"));
  EXPECT_THAT(referencesIn("sys/sys.h"), testing::HasSubstr("4|35|4\n"));
}

class WithAndWithout : public References, public testing::WithParamInterface<const char*> {};

TEST_P(WithAndWithout, OtherFactsAreTheSame) {
  recordWith({"--references=all", GetParam()});
  const std::string with = outputEnding(".comp.db");
  EXPECT_NE(rows(with, "SELECT count(*) FROM Reference"), "0\n");
  const std::string kept = path("with.db");
  std::filesystem::copy_file(with, kept);
  recordWith({"--references=none", GetParam()});
  const std::string without = outputEnding(".comp.db");
  EXPECT_EQ(rows(without, "SELECT count(*) FROM Reference"), "0\n");
  EXPECT_THAT(rows(without, "SELECT Options FROM Unit"), testing::StartsWith("references=none "));
  // In the order of their rows, ids included.
  for (const char* table : {"File", "Identifier", "Macro", "Type", "TypeReference", "Variable",
                            "Function", "ExternalIdentifier", "Field", "EnumConstant", "Label",
                            "CallPoint", "UnitFile", "Include", "Property"}) {
    const std::string query = std::string("SELECT rowid, * FROM ") + table;
    EXPECT_EQ(rows(without, query), rows(kept, query)) << table;
  }
}

INSTANTIATE_TEST_SUITE_P(System, WithAndWithout,
                         testing::Values("--system=referenced", "--system=all"),
                         [](const auto& test) {
                           return std::string(test.param).substr(sizeof "--system=" - 1);
                         });

/// Flags that need headers: 256 an include guard, 2147483648 named in excluded text.
TEST_F(References, HeadersAreReadEachTimeForWhatTheyLeaveOut) {
  write("guarded.h", "#ifndef GUARDED\n#define GUARDED\nint in_guarded;\n#endif\n");
  write("part.h",
        "#ifdef FIRST\nint first(int always);\n#else\nint second;\n#endif\n"
        "#if 0\nint always;\n#endif\n");
  write("late.h", ";\n#ifndef LATE\n#define LATE\nint late();\n#endif\n");
  write("sys/sys.h", "#if 0\nint late_too;\n#endif\n");
  write("unit.cpp",
        "#include \"guarded.h\"\n#include \"guarded.h\"\n#include \"late.h\"\n"
        "#include \"late.h\"\n#define FIRST\n#include \"part.h\"\n#undef FIRST\n"
        "#include \"part.h\"\n#include <sys.h>\nint always, late_too;\n");
  recordWith({});
  EXPECT_EQ(rows(outputEnding(".comp.db"),
                 "SELECT Name, Flags FROM Property JOIN Variable ON EntityKind = 4 AND EntityId ="
                 " VariableId JOIN Identifier USING (IdentifierId) ORDER BY 1"),
            "always|2147483648\nin_guarded|0\nlate_too|0\nsecond|0\n");
  EXPECT_EQ(rows(outputEnding(".comp.db"),
                 "SELECT Name, Flags FROM Property JOIN Macro ON EntityKind = 8 AND EntityId ="
                 " MacroId JOIN Identifier USING (IdentifierId) WHERE Flags <> 0 ORDER BY 1"),
            "FIRST|536870912\nGUARDED|256\n");
}

}  // namespace

}  // namespace fe_db_tests
