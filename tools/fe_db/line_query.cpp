#include "line_query.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace fe_db_tools {
namespace {

std::string_view bytesOf(sqlite3_value* value) {
  const void* bytes = sqlite3_value_type(value) == SQLITE_BLOB ? sqlite3_value_blob(value)
                                                               : sqlite3_value_text(value);
  const int size = sqlite3_value_bytes(value);
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

void appendInteger(std::string& line, sqlite3_int64 number) {
  char text[24];
  line.append(text, std::to_chars(text, text + sizeof text, number).ptr);
}

/// With a point or an exponent, so that it is not taken for an integer.
void appendReal(std::string& line, double number) {
  char text[40];
  const std::string_view digits(text, std::to_chars(text, text + sizeof text, number).ptr - text);
  line += digits;
  if (digits.find_first_not_of("-0123456789") == std::string_view::npos) line += ".0";
}

/// A value of another type than its column has.
void appendMisplaced(std::string& line, sqlite3_value* value, Colons colons) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      line += "!integer ";
      return appendInteger(line, sqlite3_value_int64(value));
    case SQLITE_FLOAT:
      line += "!real ";
      return appendReal(line, sqlite3_value_double(value));
    case SQLITE_TEXT:
      line += "!text ";
      return appendEscaped(line, bytesOf(value), colons);
    default:
      line += "!blob ";
      return appendEscaped(line, bytesOf(value), colons);
  }
}

void appendNumber(std::string& line, sqlite3_value* value, Colons colons) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return appendInteger(line, sqlite3_value_int64(value));
    case SQLITE_FLOAT:
      return appendReal(line, sqlite3_value_double(value));
    case SQLITE_NULL:
      line += "NULL";
      return;
    default:
      return appendMisplaced(line, value, colons);
  }
}

void appendText(std::string& line, sqlite3_value* value, bool inKey, Colons colons) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_TEXT: {
      const std::string_view text = bytesOf(value);
      const bool ambiguous = text == "NULL" || text.starts_with('!') || (inKey && text == "0");
      return ambiguous ? appendFirstByteEscaped(line, text, colons)
                       : appendEscaped(line, text, colons);
    }
    case SQLITE_NULL:
      line += inKey ? "!null" : "NULL";
      return;
    default:
      return appendMisplaced(line, value, colons);
  }
}

std::string dotted(const std::string& alias, std::string_view column) {
  return alias + "." + std::string(column);
}

}  // namespace

LineQuery::LineQuery(const Table& table) : table(table) {
  const std::string alias = "t0";
  tables = std::string(table.name) + " AS " + alias;
  for (const Column& column : table.columns) {
    items.push_back(addItem(alias, column, dotted(alias, column.name)));
  }
}

/// `expression` is the value of the column in SQL.
LineQuery::Item LineQuery::addItem(const std::string& alias, const Column& column,
                                   const std::string& expression) {
  Item item{column.kind, addCell(expression), {}};
  if (column.kind == ColumnKind::reference) {
    item.targets.push_back(addTarget(column.refersTo, expression, ""));
  } else if (column.kind == ColumnKind::entity) {
    const std::string isKind = " AND " + dotted(alias, column.kindColumn) + "=";
    for (const auto& [kind, table] : column.entities) {
      item.targets.push_back(addTarget(table, expression, isKind + std::to_string(kind)));
    }
  }
  return item;
}

LineQuery::Target LineQuery::addTarget(TableId id, const std::string& reference,
                                       const std::string& condition) {
  const Table& table = tableOf(id);
  const std::string alias = 't' + std::to_string(++joinCount);
  const std::string rowId = dotted(alias, table.rowId);
  tables += " LEFT JOIN " + std::string(table.name) + " AS " + alias + " ON " + rowId + "=" +
            reference + condition;
  Target target{addCell(rowId), {}};
  for (std::size_t part = 0; part < table.key.size(); ++part) {
    target.key.push_back(
        addItem(alias, columnOf(table, table.key[part]), keyExpression(table, part, alias + ".")));
  }
  return target;
}

int LineQuery::addCell(const std::string& expression) {
  if (cellCount > 0) columns += ", ";
  columns += expression;
  return cellCount++;
}

void LineQuery::appendLine(std::string& line, sqlite3_value** cells) const {
  line += table.name;
  for (std::size_t i = 0; i < items.size(); ++i) {
    line += '\t';
    line += table.columns[i].name;
    line += '=';
    appendItem(line, items[i], cells, Place::column, Colons::plain);
  }
}

void LineQuery::appendItem(std::string& line, const Item& item, sqlite3_value** cells, Place place,
                           Colons colons) {
  switch (item.kind) {
    case ColumnKind::number:
      return appendNumber(line, cells[item.cell], colons);
    case ColumnKind::text:
      return appendText(line, cells[item.cell], place == Place::key, colons);
    case ColumnKind::reference:
    case ColumnKind::entity:
      return appendReference(line, item, cells, colons);
  }
}

void LineQuery::appendReference(std::string& line, const Item& item, sqlite3_value** cells,
                                Colons colons) {
  sqlite3_value* id = cells[item.cell];
  if (sqlite3_value_type(id) == SQLITE_NULL) {
    line += "NULL";
    return;
  }
  if (sqlite3_value_type(id) != SQLITE_INTEGER) return appendMisplaced(line, id, colons);
  const sqlite3_int64 number = sqlite3_value_int64(id);
  const auto found = std::find_if(item.targets.begin(), item.targets.end(), [&](const Target& t) {
    return sqlite3_value_type(cells[t.foundCell]) != SQLITE_NULL;
  });
  if (number != 0 && found != item.targets.end()) return appendKey(line, *found, cells, colons);
  if (number != 0) line += '!';
  appendInteger(line, number);
}

void LineQuery::appendKey(std::string& line, const Target& target, sqlite3_value** cells,
                          Colons colons) {
  if (target.key.size() > 1) colons = Colons::escaped;
  bool first = true;
  for (const Item& part : target.key) {
    if (!first) line += ':';
    first = false;
    appendItem(line, part, cells, Place::key, colons);
  }
}

}  // namespace fe_db_tools
