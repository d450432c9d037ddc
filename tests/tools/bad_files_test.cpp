#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <future>
#include <map>
#include <thread>

#include "fe_db_fixture.h"
#include "whole_content.h"

namespace fe_db_tests {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

void database(Path path) { compilationFile(path, wholeContent(1, 0)); }

struct BadCase : NamedCase {
  std::function<void(Path path)> spoil;  ///< a good database
  const char* read;                      ///< the message of what reads it, a regular expression
  const char* merged = "";               ///< is in the message of a merge
  bool isFindingOfCheck = false;
};

constexpr const char* kUnreadable = "Unreadable";
constexpr const char* kTaken = nullptr;  ///< in place of a message: it is no failure

auto run(const char* sql) {
  return [sql](Path path) { execute(path, sql); };
}

void putZeros(Path path) {
  run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 30000) INSERT INTO "
      "Label (IdentifierId, DeclLineNum, DeclColNum) SELECT 1, i, i FROM n")(path);
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(-3 * 32768, std::ios::end).write(std::string(32768, '\0').data(), 32768);
}

// clang-format off
const BadCase kBadCases[] = {
    {"Missing", [](Path path) { fs::remove(path); }, "No such file or directory"},
    {"Directory", [](Path path) { fs::remove(path), fs::create_directory(path); },
     "it is a directory, not a file"},
    {"Pipe", [](Path path) { fs::remove(path), mkfifo(path.c_str(), 0600); },
     "it is not a regular file"},
    {kUnreadable, [](Path path) { chmod(path.c_str(), 0); }, "Permission denied", "Permission denied"},
    {"Empty", [](Path path) { fs::resize_file(path, 0); },
     "it is empty; create a database with fe_db init"},
    {"NoDatabase", [](Path path) { std::ofstream(path) << std::string(5000, 'x'); },
     "cannot read it: file is not a database; use a file created .*"},
    {"CutInHalf", [](Path path) { fs::resize_file(path, fs::file_size(path) / 2); },
     "cannot read it: database disk image is malformed; the file is .*"},
    {"CutInTheHeader", [](Path path) { fs::resize_file(path, 50); },
     "cannot read it: database disk image is malformed; .*"},
    {"PageOfZeros", putZeros, kTaken, "Label"},
    {"Preprocessing", [](Path path) { fs::remove(path), preprocessingFile(path, ""); }, kTaken,
     "preprocessing database"},
    {"RowIdZero", run("INSERT INTO Type (TypeId) VALUES (0)"), kTaken, "Type"},
    {"OtherDatabase", [](Path path) { fs::remove(path), run("CREATE TABLE Other (x)")(path); },
     "it has no table File; use a file created .*", "File", true},
    {"NoTable", run("DROP TABLE Field"), "it has no table Field; use a file created .*", "Field", true},
    {"NoColumn", run("ALTER TABLE Variable DROP COLUMN Linkage"),
     "its table Variable has no column Linkage; use .*", "Variable", true},
    {"NoKeyColumn", run("ALTER TABLE Label RENAME COLUMN LabelId TO Id"),
     "its table Label has no column LabelId; use .*", "Label", true},
    {"View", run("ALTER TABLE Label RENAME TO L; CREATE VIEW label AS SELECT * FROM L"),
     "its Label is a view, not a table; use .*", "Label", true},
    {"GeneratedColumn",
     run("DROP TABLE Label; CREATE TABLE Label (LabelId INTEGER PRIMARY KEY, IdentifierId, "
         "DeclFileId, DeclLineNum, declcolnum AS (1))"),
     "the column DeclColNum of its table Label is generated, not stored; use .*", "Label", true},
    {"NoRowIds",
     run("DROP TABLE TypeReference; CREATE TABLE TypeReference (DeclaredType PRIMARY KEY, "
         "ReferencedType) WITHOUT ROWID"),
     "its table TypeReference has no row ids; use .*", "TypeReference", true},
};
// clang-format on

struct BadFile : FeDbProgram, testing::WithParamInterface<BadCase> {
  BadFile() {
    for (const char* folder : {"bad", "merged"}) fs::create_directory(path(folder));
    database(bad), database(good);
    GetParam().spoil(bad);
  }

  const std::string bad = path("bad/x.db"), good = path("good.db");
};

TEST_P(BadFile, FailsWithItsNameAndReason_AndStaysAsItWas) {
  if (GetParam().read == kTaken) return;
  const fs::file_status status = fs::status(bad);
  const std::string before = bytesOf(bad);
  std::vector<Words> commands = {
      {"stats", bad}, {"dump", bad}, {"diff", bad, good}, {"diff", good, bad}};
  if (!GetParam().isFindingOfCheck) commands.push_back({"check", bad});
  for (const Words& command : commands) {
    const ProgramResult result = feDb(command);
    EXPECT_EQ(result.exitCode, 1) << command[0];
    EXPECT_EQ(result.output, "") << command[0];
    EXPECT_THAT(result.errors, MatchesRegex("fe_db: " + bad + ": " + GetParam().read + "\n"));
  }
  EXPECT_EQ(fs::status(bad).type(), status.type());
  EXPECT_TRUE(bytesOf(bad) == before);
}

TEST_P(BadFile, AsASource_StopsAMergeOrIsSkipped_AsATarget_StaysAsItIs) {
  const std::string target = path("merged/t"), before = bytesOf(bad);
  const auto expectFailure = [&](Words words) {
    words.insert(words.begin(), "merge");
    const ProgramResult result = feDb(words);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors,
                testing::ContainsRegex("fe_db: " + bad + ": [^\n]*" + GetParam().merged));
  };
  expectFailure({target, good, bad});
  EXPECT_EQ(entries(path("merged")), 0);
  fs::copy_file(good, target);
  expectFailure({target, bad, good});
  EXPECT_TRUE(bytesOf(target) == bytesOf(good));
  fs::remove(target);
  expectFailure({"--keep-going", target, bad, good});
  outputOf({"merge", path("expected"), good});
  EXPECT_EQ(outputOf({"dump", target}), outputOf({"dump", path("expected")}));
  if (!fs::exists(bad)) return;
  expectFailure({"--keep-going", bad, good});
  EXPECT_TRUE(bytesOf(bad) == before);
  EXPECT_EQ(entries(path("bad")), 1);
}

/// Root may read everything.
std::vector<BadCase> badCases() {
  std::vector<BadCase> cases(std::begin(kBadCases), std::end(kBadCases));
  if (geteuid() == 0) std::erase_if(cases, [](auto& c) { return c.name == kUnreadable; });
  return cases;
}
INSTANTIATE_TEST_SUITE_P(Cases, BadFile, testing::ValuesIn(badCases()), caseName);

/// Files that SQLite would read with their write-ahead log: files, and the log's index, change then
/// although nobody writes. `f` is a folder with a good database x.db.
struct WalCase : NamedCase {
  void (*make)(Path f);
  const char* message;
};

constexpr char kLogBeside[] = "it has a write-ahead log beside it \\([^\n]*/x.db-wal\\), .*";

void setWal(Path f) { rows(f + "/x.db", "PRAGMA journal_mode=WAL"); }

/// As a killed writer leaves it.
void killWriter(Path f) {
  setWal(f);
  const RawConnection writer(f + "/x.db");
  writer.rows("DELETE FROM CallPoint");
  fs::copy(f, f + "2");
  fs::remove_all(f);
  fs::rename(f + "2", f);
}

constexpr WalCase kWalCases[] = {
    {"AtRest", setWal, "it is in WAL mode, .*"},
    {"Killed", killWriter, kLogBeside},
    {"KilledAndItsIndexLost", [](Path f) { killWriter(f), fs::remove(f + "/x.db-shm"); },
     kLogBeside},
    {"LogOfAFileOfAnotherMode",
     [](Path f) {
       killWriter(f);
       std::fstream(f + "/x.db", std::ios::in | std::ios::out).seekp(18).write("\1\1", 2);
     },
     kLogBeside},
    {"LogThatIsNone", [](Path f) { std::ofstream(f + "/x.db-wal") << 'x'; }, kLogBeside},
};

struct WalFile : FeDbProgram, testing::WithParamInterface<WalCase> {
  std::map<std::string, std::string> filesBeside() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(path("f"))) {
      files[entry.path().filename()] = bytesOf(entry.path());
    }
    return files;
  }
};

TEST_P(WalFile, IsRefusedWithWhatToDo_AndNothingChanges) {
  const std::string x = path("f/x.db"), good = path("good.db");
  fs::create_directory(path("f"));
  database(x), database(good);
  GetParam().make(path("f"));
  const auto before = filesBeside();
  for (const Words& command : std::vector<Words>{{"stats", x},
                                                 {"dump", x},
                                                 {"check", x},
                                                 {"find", x, "types"},
                                                 {"diff", x, good},
                                                 {"diff", good, x},
                                                 {"merge", path("new.db"), x},
                                                 {"merge", x, good},
                                                 {"index", x}}) {
    const ProgramResult result = feDb(command);
    EXPECT_EQ(result.exitCode, 1) << command[0];
    EXPECT_THAT(result.errors, MatchesRegex("fe_db: " + x + ": " + GetParam().message +
                                            "sqlite3 FILE 'PRAGMA journal_mode=DELETE'.*\n"));
    EXPECT_TRUE(filesBeside() == before) << command[0];
  }
  rows(x, "PRAGMA journal_mode=DELETE");  // what the message says
  outputOf({"stats", x});
}

INSTANTIATE_TEST_SUITE_P(Cases, WalFile, testing::ValuesIn(kWalCases), caseName);

/// What SQLite would find out when all sources are read and the first page is written.
struct NoPermission : FeDbProgram, testing::WithParamInterface<const char*> {
  /// As a user whom permissions hold.
  static ProgramResult asUser(Words command) {
    if (geteuid() == 0) {
      command.insert(command.begin(),
                     {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"});
    }
    return runProgram(command);
  }
};

TEST_P(NoPermission, ToWrite_IsARefusalBeforeAnyWork) {
  const bool isFile = GetParam() == std::string("File");
  fs::create_directory(path("f"));
  const std::string x = path("f/x.db"), good = path("good.db");
  database(x), database(good);
  chmod(path(".").c_str(), 0755), chmod(good.c_str(), 0644);
  chmod(x.c_str(), isFile ? 0444 : 0666), chmod(path("f").c_str(), isFile ? 0777 : 0555);
  if (asUser({FE_DB_PROGRAM, "--help"}).exitCode != 0) GTEST_SKIP() << "others may not run it";
  const std::string before = bytesOf(x);
  for (const Words& command :
       std::vector<Words>{{FE_DB_PROGRAM, "merge", x, good}, {FE_DB_PROGRAM, "index", x}}) {
    const ProgramResult result = asUser(command);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, MatchesRegex("fe_db: " + x +
                                            ": it[^\n]* cannot be written[^\n]*: "
                                            "Permission denied; [^\n]*\n"));
    EXPECT_TRUE(bytesOf(x) == before);
    EXPECT_EQ(entries(path("f")), 1);
  }
  EXPECT_EQ(asUser({FE_DB_PROGRAM, "stats", x}).exitCode, 0);
  chmod(path("f").c_str(), 0755);  // so that it can be removed
}

INSTANTIATE_TEST_SUITE_P(Cases, NoPermission, testing::Values("File", "Directory"),
                         [](const auto& test) { return test.param; });

struct ReadOnly : FeDbProgram {};

TEST_F(ReadOnly, Reading_ChangesAndCreatesNothing) {
  fs::create_directory(path("d"));
  database(path("d/x.db"));
  const std::string before = bytesOf(path("d/x.db"));
  for (const char* command : {"dump", "stats"}) outputOf({command, path("d/x.db")});
  outputOf({"diff", path("d/x.db"), path("d/x.db")});
  EXPECT_EQ(bytesOf(path("d/x.db")), before);
  EXPECT_EQ(entries(path("d")), 1);
}

TEST_F(ReadOnly, NameThatLooksLikeAUri_IsAFileName) {
  fs::create_directory(path("d"));
  database(path("d/file:x.db?mode=memory"));
  const ProgramResult result = feDb({"dump", "file:x.db?mode=memory"}, {.directory = path("d")});
  EXPECT_EQ(result.output, outputOf({"dump", path("d/file:x.db?mode=memory")}));
}

TEST_F(ReadOnly, FileThatAWriterHolds_FailsWhenTheWaitIsOver) {
  database(path("x.db"));
  const RawConnection writer(path("x.db"));
  writer.rows("BEGIN EXCLUSIVE");
  expectRefusal({"dump", "--wait", "0", path("x.db")},
                path("x.db") + ": cannot read it: database is locked; ");
}

TEST_F(ReadOnly, FileThatAWriterHolds_IsReadWhenTheWriterIsDone) {
  database(path("x.db"));
  const RawConnection writer(path("x.db"));
  writer.rows("BEGIN EXCLUSIVE; DELETE FROM Label");
  auto run = std::async(std::launch::async, [&] {
    return feDb({"dump", "--table", "Label", path("x.db")});
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  writer.rows("COMMIT");
  const ProgramResult result = run.get();
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, "");
}

/// What a writer that is killed in the middle of a transaction leaves: pages of it in the file, and
/// a journal beside it that says how they were.
TEST_F(ReadOnly, HalfDoneWriteOfAKilledWriter_IsNotSeen) {
  database(path("x.db"));
  const std::string before = outputOf({"dump", path("x.db")});
  const RawConnection writer(path("x.db"));
  writer.rows(
      "PRAGMA cache_spill=1; BEGIN; DELETE FROM CallPoint; UPDATE File SET Path='gone' || "
      "FileId");
  ASSERT_EQ(sqlite3_db_cacheflush(writer.get()), SQLITE_OK);
  fs::copy_file(path("x.db"), path("killed.db"));
  fs::copy_file(path("x.db-journal"), path("killed.db-journal"));
  ASSERT_THAT(bytesOf(path("killed.db")), HasSubstr("gone"));
  EXPECT_EQ(outputOf({"dump", path("killed.db")}), before);
}

}  // namespace
}  // namespace fe_db_tests
