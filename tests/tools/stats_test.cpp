#include "fe_db_fixture.h"

namespace fe_db_tests {
namespace {

struct Stats : FeDbProgram {
  const std::string file = preprocessingFile(
      path("x.db"),
      "INSERT INTO File (Path) VALUES ('a'), ('b'); INSERT INTO Identifier (Name) VALUES ('x')");
  const std::uintmax_t size = std::filesystem::file_size(file);
};

TEST_F(Stats, Text_HasRowsPerTableSizeAndBytesPerRow) {
  std::string output = outputOf({"stats", file});
  output.erase(std::unique(output.begin(), output.end(),
                           [](char a, char b) { return a == ' ' && b == ' '; }),
               output.end());
  EXPECT_EQ(output,
            "File 2\nIdentifier 1\nMacro 0\nMacroInvocation 0\nMacroInvocationCodeOrigin "
            "0\nMacroExpansion 0\nrows 3\nfile size in bytes " +
                std::to_string(size) + "\nbytes per row " + std::to_string(size / 3) + "." +
                std::to_string(size % 3 * 10 / 3) + "\n");
}

TEST_F(Stats, Json_HasOneObjectALine) {
  execute(file, "DELETE FROM File; DELETE FROM Identifier");
  EXPECT_EQ(outputOf({"stats", "--json", file}),
            R"({"table":"File","rows":0}
{"table":"Identifier","rows":0}
{"table":"Macro","rows":0}
{"table":"MacroInvocation","rows":0}
{"table":"MacroInvocationCodeOrigin","rows":0}
{"table":"MacroExpansion","rows":0}
{"file":")" + file +
                R"(","rows":0,"bytes":)" + std::to_string(size) + ",\"bytesPerRow\":null}\n");
}

}  // namespace
}  // namespace fe_db_tests
