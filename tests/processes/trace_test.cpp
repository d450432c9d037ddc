#include "tests/processes/process_test.h"

namespace fe_db_tests {
namespace {

/// The library's traces, which are read when a process starts.
class Trace : public ProcessTest {
 protected:
  ~Trace() override { unsetenv("FE_DB_DEBUG"); }

  std::string traceOfASave(const char* level) {
    setenv("FE_DB_DEBUG", level, 1);
    const ProgramResult result = run(path(std::string(level) + ".db"), {"pp=1"});
    EXPECT_EQ(result.exitCode, 0);
    return result.errors;
  }
  /// The texts stand at the ends of lines, in this order.
  static void expectLines(const std::string& trace, const std::vector<std::string>& texts) {
    std::size_t position = 0;
    for (const std::string& text : texts) {
      const std::size_t found = trace.find(text + '\n', position);
      ASSERT_NE(found, std::string::npos) << text << "\nis missing in\n" << trace;
      position = found + text.size();
    }
  }
};

TEST_F(Trace, LevelTwo_TellsTheTablesOfASaveAndOfAReset) {
  const std::string trace = traceOfASave("2");
  expectLines(trace, {"CompilationData::saveToPpDB",
                      "saving files",
                      "saving 1 files",
                      "saving identifiers",
                      "saving 8 identifiers",
                      "saving macros",
                      "saving 2 macros",
                      "saving macro expansions",
                      "saving 0 macroExpansions",
                      "saving 0 macroInvocations",
                      "saving macro invocation code origins",
                      "saving 0 macroInvocationCodeOrigins",
                      "CompilationData::resetIds",
                      "clearing files",
                      "clearing macroInvocationCodeOrigins",
                      "clearing macroExpansions",
                      "clearing type references",
                      "clearing external identifiers",
                      "clearing enumConstants",
                      "clearing callPoints"});
  EXPECT_THAT(trace, testing::Not(testing::HasSubstr("TableStatement")));
}

TEST_F(Trace, LevelThree_TellsStatementsAndBindings) {
  const std::string insert = "INSERT INTO File (Path, Kind, Lang, Huge) VALUES (?, ?, ?, ?)";
  expectLines(traceOfASave("3"),
              {"FrontendDatabase::add()", "TableStatement::build(): building kind=0 ...",
               "TableStatement::build: add stmt=" + insert,
               "TableStatement::bind(): binding kind=0 ...", "binding Path at 1 in " + insert,
               "binding Huge at 4 in " + insert, "TableStatement::binding for add done"});
}

}  // namespace
}  // namespace fe_db_tests
