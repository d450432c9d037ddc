#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <csignal>

#include "record/record_fixture.h"

/// What a killed run leaves of a unit.
namespace fe_db_tests {

namespace {

class Durable : public RecordTest {
 protected:
  Durable() { write("unit.c", "int unit;\n"); }

  ProgramResult run(const std::vector<std::string>& options, const std::string& variable,
                    const std::string& value) const {
    std::vector<std::string> words{FE_DB_RECORD_PROGRAM, "-o", output().string()};
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), {"--", "gcc", "-c", "unit.c"});
    return runProgram(words, {.directory = sources().string(),
                              .environment = {{"LD_PRELOAD", FILE_CALLS}, {variable, value}}});
  }
  std::string leftover() const {
    const std::string manifest = outputEnding(".manifest");
    const std::string unit = std::filesystem::path(manifest).stem().string();
    return (output() / ("." + unit + ".fe_db-new")).string();
  }
};

TEST_F(Durable, KilledAtAnyCall_TheNextRunLeavesTheFilesOfTheUnitAndNothingElse) {
  recordQuietly({"--", "gcc", "-c", "unit.c"});
  const std::vector<std::string> names = outputs();
  int kills = 0;
  for (int signal = SIGKILL; signal == SIGKILL; ++kills) {
    signal = run({"--force"}, "FILE_CALLS_KILL", std::to_string(kills + 1)).signal;
    recordQuietly({"--", "gcc", "-c", "unit.c"});
    EXPECT_EQ(outputs(), names) << "killed before call " << kills + 1;
    for (const char* ending : {".pp.db", ".comp.db"}) {
      EXPECT_EQ(integrity(outputEnding(ending)), "ok\n");
    }
  }
  EXPECT_GT(kills, 8);
}

TEST_F(Durable, LeftoverOfAnUnchangedUnit_GoesUnlessItIsInUseOrSomebodyElses) {
  const std::vector<std::string> compile = {"--", "gcc", "-c", "unit.c"};
  recordQuietly(compile);
  const std::filesystem::path directory = leftover();
  const auto isLeftWith = [&](const std::string& file) {
    std::filesystem::create_directory(directory);
    std::ofstream(directory / "fe_db-lock").flush();
    std::ofstream(directory / file).flush();
    recordQuietly(compile);
    return std::filesystem::exists(directory / file);
  };
  EXPECT_FALSE(isLeftWith("fe_db-new.i.tmp"));
  EXPECT_FALSE(std::filesystem::exists(directory));
  EXPECT_TRUE(isLeftWith("notes"));
  std::filesystem::remove(directory / "notes");
  const int lock = open((directory / "fe_db-lock").c_str(), O_RDWR | O_CLOEXEC);
  flock(lock, LOCK_EX);
  EXPECT_TRUE(isLeftWith("fe_db-new.i.tmp"));
  close(lock);
}

}  // namespace

}  // namespace fe_db_tests
