#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <future>
#include <thread>

#include "fe_db_fixture.h"
#include "whole_content.h"

namespace fe_db_tests {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

struct BadCase {
  const char* rule;
  void (*make)(const std::string& path);
  const char* message;  ///< a regular expression of what follows the file's name
};

std::string bytesOf(const std::string& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

void nothing(const std::string&) {}
void directory(const std::string& path) { std::filesystem::create_directory(path); }
void pipeFile(const std::string& path) { mkfifo(path.c_str(), 0600); }
void empty(const std::string& path) { std::ofstream{path}; }
void text(const std::string& path) { std::ofstream(path) << std::string(5000, 'x'); }
void database(const std::string& path) { compilationFile(path, wholeContent(1, 0)); }
void cutInHalf(const std::string& path) {
  database(path);
  std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
}
void cutInTheHeader(const std::string& path) {
  database(path);
  std::filesystem::resize_file(path, 50);
}
void otherDatabase(const std::string& path) { execute(path, "CREATE TABLE Other (x)"); }
void oneTableMissing(const std::string& path) { compilationFile(path, "DROP TABLE Field"); }
void oneColumnMissing(const std::string& path) {
  compilationFile(path, "ALTER TABLE Variable DROP COLUMN Linkage");
}
void keyColumnMissing(const std::string& path) {
  compilationFile(path, "ALTER TABLE Label RENAME COLUMN LabelId TO Id");
}

constexpr BadCase kBadCases[] = {
    {"Missing", nothing, "No such file or directory"},
    {"Directory", directory, "it is a directory, not a file"},
    {"Pipe", pipeFile, "it is no regular file"},
    {"Empty", empty, "it is empty; make a database with fe_db init"},
    {"NoDatabase", text, "cannot read it: file is not a database; give a file that .*"},
    {"CutInHalf", cutInHalf, "cannot read it: database disk image is malformed; the file is .*"},
    {"CutInTheHeader", cutInTheHeader, "cannot read it: database disk image is malformed; .*"},
    {"OtherDatabase", otherDatabase, "it has no table File; give a file that .*"},
    {"OneTableMissing", oneTableMissing, "it has no table Field; give a file that .*"},
    {"OneColumnMissing", oneColumnMissing, "its table Variable has no column Linkage; give .*"},
    {"KeyColumnMissing", keyColumnMissing, "its table Label has no column LabelId; give .*"},
};

struct BadFile : FeDbProgram, testing::WithParamInterface<BadCase> {};

TEST_P(BadFile, FailsWithItsNameAndReason_AndStaysAsItWas) {
  GetParam().make(path("x.db"));
  database(path("good.db"));
  const bool regular = std::filesystem::is_regular_file(path("x.db"));
  const bool there = std::filesystem::exists(path("x.db"));
  const std::string before = regular ? bytesOf(path("x.db")) : "";
  std::vector<std::vector<std::string>> commands = {{"stats", path("x.db")},
                                                    {"dump", path("x.db")},
                                                    {"diff", path("x.db"), path("good.db")},
                                                    {"diff", path("good.db"), path("x.db")}};
  const bool hasGaps = std::string(GetParam().message).find(" has no ") != std::string::npos;
  if (!hasGaps) commands.push_back({"check", path("x.db")});
  for (const std::vector<std::string>& command : commands) {
    const ProgramResult result = feDb(command);
    EXPECT_EQ(result.exitCode, 1) << command[0];
    EXPECT_EQ(result.output, "") << command[0];
    EXPECT_THAT(result.errors,
                MatchesRegex("fe_db: " + path("x.db") + ": " + GetParam().message + "\n"));
  }
  EXPECT_EQ(std::filesystem::exists(path("x.db")), there);
  EXPECT_EQ(regular ? bytesOf(path("x.db")) : "", before);
}

INSTANTIATE_TEST_SUITE_P(Cases, BadFile, testing::ValuesIn(kBadCases), kRuleName);

struct ReadOnly : FeDbProgram {};

TEST_F(ReadOnly, NoPermission_IsTheReason) {
  if (geteuid() == 0) GTEST_SKIP() << "root may read everything";
  database(path("x.db"));
  chmod(path("x.db").c_str(), 0);
  EXPECT_EQ(feDb({"dump", path("x.db")}).errors,
            "fe_db: " + path("x.db") + ": Permission denied\n");
}

TEST_F(ReadOnly, Reading_ChangesAndCreatesNothing) {
  std::filesystem::create_directory(path("d"));
  database(path("d/x.db"));
  const std::string before = bytesOf(path("d/x.db"));
  for (const char* command : {"dump", "stats"}) outputOf({command, path("d/x.db")});
  outputOf({"diff", path("d/x.db"), path("d/x.db")});
  EXPECT_EQ(bytesOf(path("d/x.db")), before);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(path("d")), {}), 1);
}

TEST_F(ReadOnly, NameThatLooksLikeAUri_IsAFileName) {
  std::filesystem::create_directory(path("d"));
  database(path("d/file:x.db?mode=memory"));
  const ProgramResult result = feDb({"dump", "file:x.db?mode=memory"}, {.directory = path("d")});
  EXPECT_EQ(result.output, outputOf({"dump", path("d/file:x.db?mode=memory")}));
}

TEST_F(ReadOnly, FileThatAWriterHolds_FailsWhenTheWaitIsOver) {
  database(path("x.db"));
  const RawConnection writer(path("x.db"));
  writer.rows("BEGIN EXCLUSIVE");
  const ProgramResult result = feDb({"dump", "--wait", "0", path("x.db")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr(path("x.db") + ": cannot read it: database is locked; "));
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
  std::filesystem::copy_file(path("x.db"), path("killed.db"));
  std::filesystem::copy_file(path("x.db-journal"), path("killed.db-journal"));
  ASSERT_THAT(bytesOf(path("killed.db")), HasSubstr("gone"));
  EXPECT_EQ(outputOf({"dump", path("killed.db")}), before);
}

}  // namespace
}  // namespace fe_db_tests
