#include "floors.h"

#include <array>
#include <deque>
#include <string_view>

#include "raw_sqlite.h"

namespace fe_db_benchmarks {

namespace {

constexpr std::array<const char*, 12> kTables = {
    "File",  "Identifier", "Function", "CallPoint",     "EnumConstant", "Type",
    "Field", "Label",      "Macro",    "TypeReference", "Variable",     "ExternalIdentifier"};

/// The columns that hold text; all others hold numbers.
bool isText(std::string_view column) {
  return column == "Path" || column == "Name" || column == "Text";
}

/// SQLite gives this one; only TypeReference does without.
bool isRowId(std::string_view column, std::string_view table) {
  return column == std::string(table) + "Id";
}

struct Column {
  std::string name;
  bool isText;
};

std::vector<Column> columnsOf(Connection& connection, const char* table, bool withRowId) {
  Statement select(connection, std::string("SELECT * FROM ") + table + " LIMIT 0");
  std::vector<Column> columns;
  for (int i = 0; i < sqlite3_column_count(select.get()); ++i) {
    const char* name = sqlite3_column_name(select.get(), i);
    if (withRowId || !isRowId(name, table)) columns.push_back({name, isText(name)});
  }
  return columns;
}

std::string listOf(const std::vector<Column>& columns) {
  std::string list;
  for (const Column& column : columns) list += (list.empty() ? "" : ",") + column.name;
  return list;
}

/// Sixteen bytes, so that the floor does not wait for its own memory.
struct Cell {
  static constexpr long long kNumber = -1, kNull = -2;

  union {
    long long number;
    const char* text;
  };
  long long length;  ///< of the text, or one of the above
};

struct Table {
  const char* name;
  std::vector<Column> columns;
  std::vector<Cell> cells;
  std::deque<std::string> texts;
};

Table readTable(Connection& connection, const char* name) {
  Table table{name, columnsOf(connection, name, /*withRowId=*/false), {}, {}};
  Statement select(connection, "SELECT " + listOf(table.columns) + " FROM " + name);
  while (select.step()) {
    for (int i = 0; i < static_cast<int>(table.columns.size()); ++i) {
      Cell cell{{select.number(i)}, select.isNull(i) ? Cell::kNull : Cell::kNumber};
      if (table.columns[static_cast<std::size_t>(i)].isText && !select.isNull(i)) {
        const std::string& text = table.texts.emplace_back(select.text(i));
        cell.text = text.data();
        cell.length = static_cast<long long>(text.size());
      }
      table.cells.push_back(cell);
    }
  }
  return table;
}

void writeTable(Connection& connection, const Table& table) {
  connection.execute(std::string("DELETE FROM ") + table.name);
  std::string parameters = "?";
  for (std::size_t i = 1; i < table.columns.size(); ++i) parameters += ",?";
  Statement insert(connection, std::string("INSERT INTO ") + table.name + " (" +
                                   listOf(table.columns) + ") VALUES (" + parameters + ")");
  for (std::size_t i = 0; i < table.cells.size();) {
    for (std::size_t column = 0; column < table.columns.size(); ++column, ++i) {
      const Cell& cell = table.cells[i];
      const int parameter = static_cast<int>(column) + 1;
      if (cell.length == Cell::kNull) {
        insert.bindNull(parameter);
      } else if (cell.length == Cell::kNumber) {
        insert.bind(parameter, cell.number);
      } else {
        insert.bind(parameter, std::string_view(cell.text, static_cast<std::size_t>(cell.length)));
      }
    }
    insert.run();
  }
}

}  // namespace

RowsSpent floorRead(const std::vector<std::string>& sources) {
  RowsSpent result;
  unsigned long long touched = 0;
  result.spent = runMeasured([&] {
    for (const std::string& source : sources) {
      Connection connection(source, SQLITE_OPEN_READONLY);
      for (const char* name : kTables) {
        const std::vector<Column> columns = columnsOf(connection, name, /*withRowId=*/true);
        Statement select(connection, "SELECT " + listOf(columns) + " FROM " + name);
        for (; select.step(); ++result.rows) {
          for (int i = 0; i < static_cast<int>(columns.size()); ++i) {
            if (columns[static_cast<std::size_t>(i)].isText) {
              const std::string_view text = select.text(i);
              touched += text.empty() ? 0 : static_cast<unsigned char>(text.back());
            } else {
              touched += static_cast<unsigned long long>(select.number(i));
            }
          }
        }
      }
    }
  });
  // Keeps the compiler from leaving the reads out.
  if (touched == 0 && result.rows > 0) throw std::runtime_error("nothing but zeros was read");
  return result;
}

RowsSpent floorWrite(const std::string& source, const std::string& target) {
  std::deque<Table> tables;  // texts stay where they are
  RowsSpent result;
  {
    Connection connection(source, SQLITE_OPEN_READONLY);
    for (const char* name : kTables) {
      tables.push_back(readTable(connection, name));
      result.rows += tables.back().cells.size() / tables.back().columns.size();
    }
  }
  Connection connection(target);
  connection.execute("PRAGMA cache_size=-65536");
  result.spent = runMeasured([&] {
    connection.execute("BEGIN IMMEDIATE");
    for (const Table& table : tables) writeTable(connection, table);
    connection.execute("COMMIT");
  });
  return result;
}

}  // namespace fe_db_benchmarks
