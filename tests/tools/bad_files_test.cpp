#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <future>
#include <map>
#include <thread>

#include "fe_db_fixture.h"
#include "whole_content.h"

namespace fe_db_tests {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

namespace fs = std::filesystem;
using Path = const std::string&;

std::string bytesOf(Path path) {
  std::ostringstream bytes;
  if (fs::is_regular_file(path)) bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

void database(Path path) { compilationFile(path, wholeContent(1, 0)); }

void leaveOnly(Path path, const std::string& sql) {
  fs::remove(path);
  execute(path, sql);
}

/// A table or a column is missing, which is what check lists.
enum class Gap { no, yes };

struct BadCase : NamedCase {
  void (*spoil)(Path path);  ///< a good database
  const char* message;       ///< a regular expression of what follows the file's name
  Gap gap = Gap::no;
};

constexpr BadCase kBadCases[] = {
    {"Missing", [](Path path) { fs::remove(path); }, "No such file or directory"},
    {"Directory", [](Path path) { fs::remove(path), fs::create_directory(path); },
     "it is a directory, not a file"},
    {"Pipe", [](Path path) { fs::remove(path), mkfifo(path.c_str(), 0600); },
     "it is not a regular file"},
    {"Empty", [](Path path) { fs::resize_file(path, 0); },
     "it is empty; create a database with fe_db init"},
    {"NoDatabase", [](Path path) { std::ofstream(path) << std::string(5000, 'x'); },
     "cannot read it: file is not a database; use a file created .*"},
    {"CutInHalf", [](Path path) { fs::resize_file(path, fs::file_size(path) / 2); },
     "cannot read it: database disk image is malformed; the file is .*"},
    {"CutInTheHeader", [](Path path) { fs::resize_file(path, 50); },
     "cannot read it: database disk image is malformed; .*"},
    {"OtherDatabase", [](Path path) { leaveOnly(path, "CREATE TABLE Other (x)"); },
     "it has no table File; use a file created .*", Gap::yes},
    {"OneTableMissing", [](Path path) { execute(path, "DROP TABLE Field"); },
     "it has no table Field; use a file created .*", Gap::yes},
    {"OneColumnMissing",
     [](Path path) { execute(path, "ALTER TABLE Variable DROP COLUMN Linkage"); },
     "its table Variable has no column Linkage; use .*", Gap::yes},
    {"KeyColumnMissing",
     [](Path path) { execute(path, "ALTER TABLE Label RENAME COLUMN LabelId TO Id"); },
     "its table Label has no column LabelId; use .*", Gap::yes},
    {"View",
     [](Path path) {
       execute(path, "ALTER TABLE Label RENAME TO L; CREATE VIEW label AS SELECT * FROM L");
     },
     "its Label is a view, not a table; use .*", Gap::yes},
    {"GeneratedColumn",
     [](Path path) {
       execute(path,
               "DROP TABLE Label; CREATE TABLE Label (LabelId INTEGER PRIMARY KEY, IdentifierId, "
               "DeclFileId, DeclLineNum, declcolnum AS (1))");
     },
     "the column DeclColNum of its table Label is generated, not stored; use .*", Gap::yes},
    {"NoRowIds",
     [](Path path) {
       execute(path,
               "DROP TABLE TypeReference; CREATE TABLE TypeReference (DeclaredType PRIMARY KEY, "
               "ReferencedType) WITHOUT ROWID");
     },
     "its table TypeReference has no row ids; use .*", Gap::yes},
};

struct BadFile : FeDbProgram, testing::WithParamInterface<BadCase> {};

TEST_P(BadFile, FailsWithItsNameAndReason_AndStaysAsItWas) {
  const std::string bad = path("x.db"), good = path("good.db");
  database(bad), database(good);
  GetParam().spoil(bad);
  const fs::file_status status = fs::status(bad);
  const std::string before = bytesOf(bad);
  std::vector<std::vector<std::string>> commands = {
      {"stats", bad}, {"dump", bad}, {"diff", bad, good}, {"diff", good, bad}};
  if (GetParam().gap == Gap::no) commands.push_back({"check", bad});
  for (const std::vector<std::string>& command : commands) {
    const ProgramResult result = feDb(command);
    EXPECT_EQ(result.exitCode, 1) << command[0];
    EXPECT_EQ(result.output, "") << command[0];
    EXPECT_THAT(result.errors, MatchesRegex("fe_db: " + bad + ": " + GetParam().message + "\n"));
  }
  EXPECT_EQ(fs::status(bad).type(), status.type());
  EXPECT_TRUE(bytesOf(bad) == before);
}

INSTANTIATE_TEST_SUITE_P(Cases, BadFile, testing::ValuesIn(kBadCases), caseName);

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
  for (const std::vector<std::string>& command :
       std::vector<std::vector<std::string>>{{"stats", x},
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
  static ProgramResult asUser(std::vector<std::string> command) {
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
  for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
           {FE_DB_PROGRAM, "merge", x, good}, {FE_DB_PROGRAM, "index", x}}) {
    const ProgramResult result = asUser(command);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, MatchesRegex("fe_db: " + x +
                                            ": it[^\n]* cannot be written[^\n]*: "
                                            "Permission denied; [^\n]*\n"));
    EXPECT_TRUE(bytesOf(x) == before);
    EXPECT_EQ(std::distance(fs::directory_iterator(path("f")), {}), 1);
  }
  EXPECT_EQ(asUser({FE_DB_PROGRAM, "stats", x}).exitCode, 0);
  chmod(path("f").c_str(), 0755);  // so that it can be removed
}

INSTANTIATE_TEST_SUITE_P(Cases, NoPermission, testing::Values("File", "Directory"),
                         [](const auto& test) { return test.param; });

struct ReadOnly : FeDbProgram {};

TEST_F(ReadOnly, NoPermission_IsTheReason) {
  if (geteuid() == 0) GTEST_SKIP() << "root may read everything";
  database(path("x.db"));
  chmod(path("x.db").c_str(), 0);
  EXPECT_EQ(feDb({"dump", path("x.db")}).errors,
            "fe_db: " + path("x.db") + ": Permission denied\n");
}

TEST_F(ReadOnly, Reading_ChangesAndCreatesNothing) {
  fs::create_directory(path("d"));
  database(path("d/x.db"));
  const std::string before = bytesOf(path("d/x.db"));
  for (const char* command : {"dump", "stats"}) outputOf({command, path("d/x.db")});
  outputOf({"diff", path("d/x.db"), path("d/x.db")});
  EXPECT_EQ(bytesOf(path("d/x.db")), before);
  EXPECT_EQ(std::distance(fs::directory_iterator(path("d")), {}), 1);
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
