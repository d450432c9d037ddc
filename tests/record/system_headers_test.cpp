// Which headers are the system's, and so are recorded only where they are used.
#include "record/record_fixture.h"

namespace fe_db_tests {

namespace {

struct Headers {
  const char* name;
  std::vector<std::string> flags;
  std::vector<std::pair<std::string, std::string>> files;
  std::string kinds;  ///< of the files in the directory of the sources, and their types
};

constexpr char kPragma[] = "#pragma GCC system_header\n";

class SystemHeader : public RecordTest, public testing::WithParamInterface<Headers> {};

TEST_P(SystemHeader, IsFoundInASystemDirectory) {
  for (const char* directory : {"own", "sys"}) {
    std::filesystem::create_directories(sources() / directory);
  }
  for (const auto& [file, text] : GetParam().files) write(file, text);
  std::vector<std::string> command{"--", "gcc", "-c", "unit.c"};
  command.insert(command.end(), GetParam().flags.begin(), GetParam().flags.end());
  recordQuietly(command);

  const std::string start = std::to_string(sources().string().size() + 2);
  EXPECT_EQ(rows(outputEnding(".comp.db"),
                 "SELECT substr(Path, " + start +
                     "), File.Kind, group_concat(Name) FROM File LEFT JOIN"
                     " Type ON FileId = DeclFileId LEFT JOIN Identifier USING (IdentifierId)"
                     " WHERE Path LIKE '" +
                     sources().string() + "/%' GROUP BY Path"),
            GetParam().kinds);
}

INSTANTIATE_TEST_SUITE_P(
    Headers, SystemHeader,
    testing::Values(
        Headers{"ByPragma_IsTheProjects",
                {"-Iown"},
                {{"unit.c", "#include <a.h>\n"},
                 {"own/a.h", kPragma + std::string("#include \"b.h\"\nstruct a { int x; };\n")},
                 {"own/b.h", "struct b { int x; };\n"}},
                "own/a.h|2|a\nown/b.h|2|b\nunit.c|1|NULL\n"},
        Headers{"WithWhatItIncludesByItself",
                {"-isystem", "sys", "-Iown"},
                {{"unit.c", "#include <a.h>\n"},
                 {"sys/a.h", "#include \"b.h\"\n#include <c.h>\nstruct a { int x; };\n"},
                 {"sys/b.h", "struct b { int x; };\n"},
                 {"own/c.h", "struct c { int x; };\n"}},
                "own/c.h|3|NULL\nsys/a.h|3|NULL\nsys/b.h|3|NULL\nunit.c|1|NULL\n"},
        Headers{"SearchedLast",
                {"-idirafter", "sys"},
                {{"unit.c", "#include <a.h>\n"}, {"sys/a.h", "struct a { int x; };\n"}},
                "sys/a.h|3|NULL\nunit.c|1|NULL\n"},
        Headers{"NextToTheSource_IsTheProjects",
                {"-isystem", ".", "-include", "f.h"},
                {{"unit.c", "#include \"a.h\"\n#include <b.h>\n"},
                 {"a.h", "struct a { int x; };\n"},
                 {"b.h", "struct b { int x; };\n"},
                 {"f.h", "struct f { int x; };\n"}},
                "a.h|2|a\nb.h|3|NULL\nf.h|4|f\nunit.c|1|NULL\n"},
        Headers{
            "FoundBothWays_IsTheProjects",
            {"-isystem", "sys"},
            {{"unit.c", "#include <a.h>\n#include \"sys/a.h\"\n"},
             {"sys/a.h", "#ifndef A\n#define A\n#include \"b.h\"\nstruct a { int x; };\n#endif\n"},
             {"sys/b.h", "struct b { int x; };\n"}},
            "sys/a.h|2|a\nsys/b.h|2|b\nunit.c|1|NULL\n"},
        Headers{"ByPrefix",
                {"-Iown", "-I.", "--system-header-prefix=own/"},
                {{"unit.c", "#include <a.h>\n#include <own/b.h>\n"},
                 {"own/a.h", "struct a { int x; };\n"},
                 {"own/b.h", "struct b { int x; };\n"}},
                "own/a.h|2|a\nown/b.h|3|NULL\nunit.c|1|NULL\n"}),
    caseName);

}  // namespace

}  // namespace fe_db_tests
