#include "read_only_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>

namespace fe_db_tools {
namespace {

/// What SQLite would call "unable to open database file" or would wait on, like a pipe. Asks
/// without opening: closing a file gives up this process's locks on it.
const char* reasonNotToOpen(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::strerror(errno);
  if (S_ISDIR(status.st_mode)) return "it is a directory, not a file";
  if (!S_ISREG(status.st_mode)) return "it is not a regular file";
  if (status.st_size == 0) return "it is empty; create a database with fe_db init";
  if (faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0) return std::strerror(errno);
  return nullptr;
}

/// SQLite takes names of tables and columns in either case.
std::string lowerCase(std::string_view name) {
  std::string lower(name);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

constexpr char kUseOurs[] = "; use a file created by fe_db init or fe_db_record";
constexpr char kLeaveWal[] =
    "; close it in all programs and run: sqlite3 FILE 'PRAGMA journal_mode=DELETE', on a copy if "
    "the "
    "file must stay as it is";

/// A connection to a file in WAL mode writes even where it only reads: it makes or changes the
/// files next to it, and the last one that closes moves the log into the file. SQLite also replays
/// a log that is next to a file of another mode. Reads through the connection's own handle, before
/// the first statement: closing a second one would give up this process's locks on the file.
std::string reasonNotToRead(sqlite3* connection) {
  const std::string log = sqlite3_filename_wal(sqlite3_db_filename(connection, "main"));
  struct stat status {};
  if (stat(log.c_str(), &status) == 0 && status.st_size > 0) {
    return "it has a write-ahead log beside it (" + log + "), which reading would change";
  }
  constexpr std::string_view kMagic("SQLite format 3", 16);
  constexpr std::size_t kReadVersion = 19;
  constexpr char kWal = 2;
  char header[kReadVersion + 1];
  sqlite3_file* file = nullptr;
  const bool isRead =
      sqlite3_file_control(connection, "main", SQLITE_FCNTL_FILE_POINTER, &file) == SQLITE_OK &&
      file->pMethods != nullptr &&
      file->pMethods->xRead(file, header, sizeof header, 0) == SQLITE_OK;
  const bool isWal =
      isRead && std::string_view(header, kMagic.size()) == kMagic && header[kReadVersion] == kWal;
  return isWal ? "it is in WAL mode, and even reading would change it" : "";
}

const char* adviceFor(int code) {
  switch (code & 0xff) {
    case SQLITE_NOTADB:
      return kUseOurs;
    case SQLITE_CORRUPT:
      return "; the file is damaged: create it again or restore a copy";
    case SQLITE_BUSY:
      return "; try again when the other program has finished, or increase --wait";
    case SQLITE_READONLY:
      return "; a killed program left an incomplete write, and rolling it back requires "
             "permission to write the file and its directory";
    case SQLITE_FULL:
    case SQLITE_IOERR:
      return "; check the disk, and the free space of the directory for temporary files "
             "(SQLITE_TMPDIR)";
    default:
      return "";
  }
}

}  // namespace

ReadOnlyFile::ReadOnlyFile(std::string name, int waitSeconds, MissingSchema missing)
    : path(std::move(name)) {
  if (const char* reason = reasonNotToOpen(path)) fail(reason);
  open(SQLITE_OPEN_READONLY, waitSeconds);
  if (!begin()) {
    // A killed writer left its journal. The committed content is valid, and only a connection that
    // may write can restore it. It writes nothing else.
    if ((sqlite3_errcode(getConnection()) & 0xff) != SQLITE_READONLY) failWithReason();
    open(SQLITE_OPEN_READWRITE, waitSeconds);
    if (!begin()) failWithReason();
    sqlite3_exec(getConnection(), "PRAGMA query_only=1", nullptr, nullptr, nullptr);
  }
  readColumns();
  isCompilation = std::any_of(kTables.begin(), kTables.end(), [&](const Table& table) {
    return table.onlyInCompilation && !table.isExtension && tableExists(table.name);
  });
  if (missing == MissingSchema::accepted) return;
  if (const auto found = findMissingSchema(); !found.empty()) fail(found.front() + kUseOurs);
}

void ReadOnlyFile::open(int flags, int waitSeconds) {
  sqlite3* opened = nullptr;
  // Absolute, because a name that begins with "file:" would be taken for a URI.
  const std::string absolute = std::filesystem::absolute(path).string();
  const int code = sqlite3_open_v2(absolute.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  connection.reset(opened);
  if (code != SQLITE_OK) failWithReason();
  if (const std::string reason = reasonNotToRead(opened); !reason.empty()) fail(reason + kLeaveWal);
  sqlite3_extended_result_codes(opened, 1);
  sqlite3_busy_timeout(opened, busyTimeoutOf(waitSeconds));
}

/// The sorter works in as much memory as the page cache may have; the rest goes to temporary files.
bool ReadOnlyFile::begin() {
  return sqlite3_exec(getConnection(),
                      "PRAGMA cache_size=-32768; BEGIN; SELECT count(*) FROM sqlite_schema",
                      nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::vector<std::string> ReadOnlyFile::findMissingSchema() const {
  std::vector<std::string> lacking;
  for (const Table& table : kTables) {
    if (!has(table)) continue;
    if (!tableExists(table.name)) {
      lacking.push_back(missing(table));
      continue;
    }
    if (!hasColumn(table, table.rowId)) lacking.push_back(missing(table, table.rowId));
    for (const Column& column : table.columns) {
      if (!hasColumn(table, column.name)) lacking.push_back(missing(table, column.name));
    }
  }
  return lacking;
}

std::string ReadOnlyFile::missing(const Table& table) const {
  const std::string name(table.name);
  const bool isView = number("SELECT count(*) FROM sqlite_schema WHERE type='view' AND name='" +
                             name + "' COLLATE NOCASE") != 0;
  return isView ? "its " + name + " is a view, not a table" : "it has no table " + name;
}

std::string ReadOnlyFile::missing(const Table& table, std::string_view column) const {
  const std::string name(table.name), of = std::string(column) + " of its table " + name;
  if (column == "rowid") return "its table " + name + " has no row ids";
  const bool isGenerated =
      number("SELECT count(*) FROM pragma_table_xinfo('" + name + "') WHERE name='" +
             std::string(column) + "' COLLATE NOCASE") != 0;
  return isGenerated ? "the column " + of + " is generated, not stored"
                     : "its table " + name + " has no column " + std::string(column);
}

std::string ReadOnlyFile::reasonNotToWrite(const Table& table) const {
  const std::string name(table.name), id(table.rowId);
  const auto count = [&](const std::string& rows) {
    return number("SELECT count(*) FROM " + rows);
  };
  if (count("sqlite_schema WHERE type='table' AND rootpage=0 AND name='" + name +
            "' COLLATE NOCASE") != 0) {
    return "it is a virtual table";
  }
  // A column is an alias of the row id if it alone is the primary key and SQLite needs no index for
  // it.
  const bool isDeclared =
      count("pragma_table_info('" + name + "') WHERE name='" + id + "' COLLATE NOCASE") != 0;
  const bool isKey = count("pragma_table_info('" + name + "') WHERE pk<>0 AND name='" + id +
                           "' COLLATE NOCASE") != 0 &&
                     count("pragma_index_list('" + name + "') WHERE origin='pk'") == 0;
  const bool needsNone = id == "rowid" && !isDeclared;
  return isKey || needsNone ? "" : id + " is not the row id (not declared INTEGER PRIMARY KEY)";
}

void ReadOnlyFile::requireWritable() const {
  requirePermission();
  for (const Table& table : kTables) {
    const std::string reason = has(table) ? reasonNotToWrite(table) : "";
    if (reason.empty()) continue;
    fail("its table " + std::string(table.name) + " cannot be rewritten without data loss: " +
         reason + "; merge the file into a new one instead");
  }
}

/// SQLite would notice at the first write, when all else is done. The journal is in the real
/// directory of a file that a symbolic link points to.
void ReadOnlyFile::requirePermission() const {
  constexpr char kAdvice[] = "; change the permissions, or write to a copy elsewhere";
  const auto mayWrite = [](const std::string& path) {
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
  };
  const char* file = sqlite3_db_filename(getConnection(), "main");
  if (!mayWrite(file)) fail(std::string("it cannot be written: ") + std::strerror(errno) + kAdvice);
  const std::filesystem::path journal = sqlite3_filename_journal(file);
  if (!mayWrite(std::filesystem::exists(journal) ? journal : journal.parent_path())) {
    fail(std::string("its directory cannot be written, where SQLite needs a journal: ") +
         std::strerror(errno) + kAdvice);
  }
}

void ReadOnlyFile::require(const Table& table) const {
  if (!tableExists(table.name)) fail(missing(table) + kUseOurs);
}

/// All at once: asked column by column it would take a fortieth of a merge.
void ReadOnlyFile::readColumns() {
  std::string names;
  for (const Table& table : kTables) {
    names += (names.empty() ? "'" : ",'") + lowerCase(table.name) + "'";
  }
  const Statement statement = prepare(
      "SELECT lower(found.name), lower(own.name) FROM sqlite_schema AS found, "
      "pragma_table_info(found.name) AS own WHERE found.type='table' AND lower(found.name) IN (" +
      names + ")");
  const auto textOf = [&](int column) {
    return reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), column));
  };
  while (step(statement)) columns[textOf(0)].insert(textOf(1));
  for (auto& [table, own] : columns) {
    if (sqlite3_table_column_metadata(getConnection(), "main", table.c_str(), "rowid", nullptr,
                                      nullptr, nullptr, nullptr, nullptr) == SQLITE_OK) {
      own.insert("rowid");
    }
  }
}

bool ReadOnlyFile::tableExists(std::string_view name) const {
  return columns.contains(lowerCase(name));
}

bool ReadOnlyFile::hasColumn(const Table& table, std::string_view column) const {
  const auto found = columns.find(lowerCase(table.name));
  return found != columns.end() && found->second.contains(lowerCase(column));
}

Statement ReadOnlyFile::prepare(const std::string& sql) const {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(getConnection(), sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
    failWithReason();
  }
  return Statement(statement);
}

bool ReadOnlyFile::step(const Statement& statement) const {
  const int code = sqlite3_step(statement.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) failWithReason();
  return code == SQLITE_ROW;
}

sqlite3_int64 ReadOnlyFile::number(const std::string& sql) const {
  const Statement statement = prepare(sql);
  step(statement);
  return sqlite3_column_int64(statement.get(), 0);
}

void ReadOnlyFile::fail(const std::string& what) const {
  throw std::runtime_error(path + ": " + what);
}

void ReadOnlyFile::failWithReason() const {
  const int code = sqlite3_errcode(getConnection());
  const std::string reason = sqlite3_errmsg(getConnection());
  throw ReadError(path + ": cannot read it: " + reason + adviceFor(code), code, reason);
}

}  // namespace fe_db_tools
