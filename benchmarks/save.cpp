// What a save costs against the least that SQLite needs for the same rows.
//
//   bench_save [DECLARATIONS [ROUNDS]]
//
// Each round fills a dataset with a generated translation unit and times saveToCompDB() into a new
// file; then it reads the twelve tables of that file into flat arrays and times inserting them into
// another new file, one prepared statement per table, one transaction. Printed: the processor time
// of both, medians, and the median of the rounds' ratios.
#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "compilation_schema.h"
#include "fe_db/compilation_data.h"
#include "fe_db/compilation_database.h"

using namespace orvalesca::databases_merger;

namespace {

double cpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

void fail(const std::string& what) {
  std::fprintf(stderr, "bench_save: %s\n", what.c_str());
  std::exit(1);
}

std::string newFile(const char* name) {
  std::string path = (std::filesystem::temp_directory_path() / name).string();
  std::filesystem::remove(path);
  fe_db_tools::createCompilationDatabase(path, fe_db_tools::KeyIndexes::no);
  return path;
}

/// Facts in the proportions of a C translation unit: about seven rows for each declaration.
void record(CompilationData& data, unsigned declarations) {
  const LinkageKind external = LinkageKind::External;
  Function* caller = nullptr;
  for (unsigned i = 0; i < declarations; ++i) {
    const std::string n = std::to_string(i);
    File& file = data.emplaceFile("/usr/include/project/module_" + std::to_string(i / 200) + ".h",
                                  FileKind{2}, results_api::LanguageKind{1});
    const Localization at{&file, i % 200 + 1, 5};
    Type* type = data.emplaceType("type_" + n, /*unnamed=*/false, at, TypeKind::Named512,
                                  /*accumulate=*/true, /*refCount=*/1, /*refTagCount=*/0);
    data.emplaceMacro("PROJECT_MACRO_" + n, at, /*accumulate=*/true, /*refCount=*/2);
    data.emplaceField("field_" + n, at, /*accumulate=*/true, /*refCount=*/1);
    Variable* variable = data.emplaceVariable("variable_" + n, at, type, /*isDefined=*/false,
                                              external, /*accumulate=*/true);
    Function* function =
        data.emplaceFunction("function_" + n, "function_" + n, at, /*isDefined=*/true,
                             /*isSpecial=*/false, EffectKind::Unknown, external,
                             /*accumulate=*/true);
    data.emplaceExternalIdentifier("variable_" + n, {EntityKind::Variable, variable},
                                   /*accumulate=*/true);
    if (caller != nullptr) {
      data.emplaceCallPoint(caller, function, at, /*isValueUsed=*/true, /*accumulate=*/true);
    }
    caller = function;
  }
}

double saveSeconds(const std::string& path, unsigned declarations) {
  const auto data = CompilationData::newInstance(path, "");
  data->setDataNeededForDbLink();
  record(*data, declarations);
  if (!data->getCompDb().quick_connect(/*readOnly=*/false)) fail("cannot connect");
  const double start = cpuSeconds();
  if (!data->saveToCompDB()) fail("the save failed");
  const double spent = cpuSeconds() - start;
  data->getCompDb().disconnect();
  return spent;
}

struct Cell {
  int type;
  long long number;
  std::string text;
};

struct Rows {
  std::string table;
  std::string insert;
  std::size_t columns = 0;
  std::vector<Cell> cells;
};

Rows readTable(sqlite3* db, const std::string& table) {
  Rows rows{table, "", 0, {}};
  sqlite3_stmt* select = nullptr;
  sqlite3_prepare_v2(db, ("SELECT * FROM " + table).c_str(), -1, &select, nullptr);
  rows.columns = static_cast<std::size_t>(sqlite3_column_count(select));
  rows.insert = "INSERT INTO " + table + " VALUES (?";
  for (std::size_t i = 1; i < rows.columns; ++i) rows.insert += ",?";
  rows.insert += ")";
  while (sqlite3_step(select) == SQLITE_ROW) {
    for (int i = 0; i < static_cast<int>(rows.columns); ++i) {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(select, i));
      rows.cells.push_back({sqlite3_column_type(select, i), sqlite3_column_int64(select, i),
                            text != nullptr ? text : ""});
    }
  }
  sqlite3_finalize(select);
  return rows;
}

void writeTable(sqlite3* db, const Rows& rows) {
  sqlite3_stmt* insert = nullptr;
  sqlite3_prepare_v2(db, rows.insert.c_str(), -1, &insert, nullptr);
  for (std::size_t i = 0; i < rows.cells.size(); ++i) {
    const Cell& cell = rows.cells[i];
    const int parameter = static_cast<int>(i % rows.columns) + 1;
    if (cell.type == SQLITE_TEXT) {
      sqlite3_bind_text(insert, parameter, cell.text.c_str(), -1, SQLITE_STATIC);
    } else if (cell.type == SQLITE_NULL || parameter == 1) {
      sqlite3_bind_null(insert, parameter);  // the first column is the row id, given by SQLite
    } else {
      sqlite3_bind_int64(insert, parameter, cell.number);
    }
    if (i % rows.columns + 1 != rows.columns) continue;
    if (sqlite3_step(insert) != SQLITE_DONE) fail("an insert failed");
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
}

double floorSeconds(const std::string& from, const std::string& to, std::size_t& rowCount) {
  sqlite3* db = nullptr;
  sqlite3_open(from.c_str(), &db);
  std::vector<Rows> tables;
  for (const char* table : {"File", "Identifier", "Macro", "Type", "Variable", "Function",
                            "ExternalIdentifier", "Field", "CallPoint"}) {
    tables.push_back(readTable(db, table));
    rowCount += tables.back().cells.size() / tables.back().columns;
  }
  sqlite3_close(db);
  sqlite3_open_v2(to.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  sqlite3_exec(db, "PRAGMA cache_size=-65536", nullptr, nullptr, nullptr);
  const double start = cpuSeconds();
  sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
  for (const Rows& rows : tables) writeTable(db, rows);
  sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
  const double spent = cpuSeconds() - start;
  sqlite3_close(db);
  return spent;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  const unsigned declarations = argc > 1 ? static_cast<unsigned>(std::atoi(argv[1])) : 12000;
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 9;
  std::vector<double> saves, floors, ratios;
  std::size_t rows = 0;
  persistence::GenericElement::setOptimisticInsert(true);
  for (int round = 0; round < rounds; ++round) {
    rows = 0;
    const std::string saved = newFile("fe_db_bench_save.db");
    const std::string raw = newFile("fe_db_bench_floor.db");
    saves.push_back(saveSeconds(saved, declarations));
    floors.push_back(floorSeconds(saved, raw, rows));
    ratios.push_back(saves.back() / floors.back());
    std::filesystem::remove(saved);
    std::filesystem::remove(raw);
  }
  std::printf("%zu rows, %d rounds: save %.4f s, floor_write %.4f s, ratio %.2f\n", rows, rounds,
              median(saves), median(floors), median(ratios));
}
