#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <csignal>
#include <set>
#include <sstream>

#include "record/record_fixture.h"

/// What a power failure and a killed run leave of a unit.
namespace fe_db_tests {

namespace {

using testing::IsEmpty;

/// What was there before a run. A manifest that is removed may come back with a power failure, as
/// long as its directory is not synchronised.
enum class OldManifest { never, present, removed };

/// Reads the calls of a run as the disk does that loses the most: what is not synchronised may be
/// there, or not, each by itself.
class PowerFailure {
 public:
  PowerFailure(std::string directory, OldManifest old)
      : directory(std::move(directory)),
        mayHaveOldManifest(old != OldManifest::never),
        isWithdrawn(old == OldManifest::removed) {}

  void see(const std::string& line) {
    std::istringstream words(line);
    std::string call, path, newPath;
    words >> call >> path >> newPath;
    if (call == "write") unsynced.insert(path);
    if (call == "sync" && path != directory) unsynced.erase(path);
    if (call == "sync" && path == directory) {
      unsyncedNames.clear();
      mayHaveOldManifest = mayHaveOldManifest && !isWithdrawn;
    }
    if (call == "remove") isWithdrawn = isWithdrawn || path.ends_with(".manifest");
    const std::string& name = call == "rename" ? newPath : path;
    const bool isOfUnit = std::filesystem::path(name).parent_path() == directory;
    if ((call != "rename" && call != "remove") || !isOfUnit) return;
    EXPECT_FALSE(unsynced.contains(path)) << "content that may be lost: " << line;
    if (name.ends_with(".manifest")) {
      if (call == "remove") return;
      EXPECT_THAT(unsyncedNames, IsEmpty()) << line;
      ++manifests;
    } else if (!name.ends_with(".fe_db-new")) {
      EXPECT_FALSE(mayHaveOldManifest) << "the old manifest may be there: " << line;
      unsyncedNames.insert(name);
    }
  }
  int manifests = 0;

 private:
  const std::string directory;
  bool mayHaveOldManifest;
  bool isWithdrawn;
  std::set<std::string> unsynced;
  std::set<std::string> unsyncedNames;
};

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
  /// What a power failure may leave is never taken for whole. Returns the exit code.
  int runLosingPower(const std::vector<std::string>& options, OldManifest old,
                     int manifests) const {
    const int exitCode = run(options, "FILE_CALLS_LOG", path("log")).exitCode;
    PowerFailure disk(output().string(), old);
    std::ifstream log(path("log"));
    for (std::string line; std::getline(log, line);) disk.see(line);
    EXPECT_EQ(disk.manifests, manifests);
    return exitCode;
  }
  std::string leftover() const {
    const std::string manifest = outputEnding(".manifest");
    const std::string unit = std::filesystem::path(manifest).stem().string();
    return (output() / ("." + unit + ".fe_db-new")).string();
  }
};

struct Recorded {
  const char* name;
  OldManifest old;
  std::vector<std::string> earlier;  ///< options of the recording before
  std::vector<std::string> options;
};

class ManifestPromise : public Durable, public testing::WithParamInterface<Recorded> {};

TEST_P(ManifestPromise, HoldsWheneverThePowerFails) {
  const OldManifest old = GetParam().old;
  if (old != OldManifest::never) {
    std::vector<std::string> options = GetParam().earlier;
    options.insert(options.end(), {"--", "gcc", "-c", "unit.c"});
    recordQuietly(options);
  }
  if (old == OldManifest::removed) std::filesystem::remove(outputEnding(".manifest"));
  EXPECT_EQ(runLosingPower(GetParam().options, old, 1), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Recordings, ManifestPromise,
    testing::Values(
        Recorded{"First", OldManifest::never, {}, {"--keep-preprocessed"}},
        Recorded{"Again", OldManifest::present, {}, {"--force"}},
        Recorded{"WithText", OldManifest::present, {}, {"--force", "--keep-preprocessed"}},
        Recorded{"WithoutTextNow", OldManifest::present, {"--keep-preprocessed"}, {"--force"}},
        Recorded{"AfterAKilledRun", OldManifest::removed, {"--keep-preprocessed"}, {}}),
    caseName);

TEST_F(Durable, SourceThatDoesNotParse_TakesTheManifestAwayFirst) {
  recordQuietly({"--", "gcc", "-c", "unit.c"});
  write("unit.c", "int unit = ;\n");
  EXPECT_EQ(runLosingPower({}, OldManifest::present, 0), 1);
  EXPECT_THAT(outputs(), IsEmpty());
}

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
