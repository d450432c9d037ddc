#include "facts_file.h"

#include <algorithm>

#include "canonical_text.h"
#include "entity_name.h"

namespace fe_db_tools {
namespace {

std::string_view textOf(sqlite3_value* value) {
  const auto* text = static_cast<const char*>(sqlite3_value_blob(value));
  if (text == nullptr) return {};
  return {text, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

/// What `make` gives for the arguments; NULL if the argument at `needed` is.
template <auto kMake, int kNeeded>
void answer(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  if (sqlite3_value_type(values[kNeeded]) == SQLITE_NULL) return sqlite3_result_null(context);
  try {
    const std::string text = kMake(values);
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  }
}

std::string makeQualified(sqlite3_value** values) {
  return qualifiedName(textOf(values[0]), textOf(values[1]), textOf(values[2]));
}

std::string makeEscaped(sqlite3_value** values) {
  std::string text;
  appendEscaped(text, textOf(values[0]), Colons::plain);
  return text;
}

const std::string& selectOf(const std::vector<View>& views, std::string_view name) {
  const auto view = std::ranges::find(views, name, &View::name);
  if (view == views.end()) throw std::logic_error("no view " + std::string(name));
  return view->select;
}

}  // namespace

FactsFile::FactsFile(const std::string& path, int waitSeconds) : file(path, waitSeconds) {
  if (!file.isCompilationDatabase()) {
    throw std::runtime_error(path +
                             ": it is a preprocessing database; give a compilation database");
  }
  constexpr int kPure = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY;
  sqlite3* connection = file.getConnection();
  sqlite3_create_function_v2(connection, "qualified", 3, kPure, nullptr, answer<makeQualified, 1>,
                             nullptr, nullptr, nullptr);
  sqlite3_create_function_v2(connection, "escaped", 1, kPure, nullptr, answer<makeEscaped, 0>,
                             nullptr, nullptr, nullptr);
  for (std::string& name : texts("SELECT name FROM sqlite_schema WHERE type='table'")) {
    tables.insert(std::move(name));
  }
  views = viewsFor(tables, DamagedRows::kept);
  viewsOfNames = viewsFor(tables, DamagedRows::leftOut);
}

bool FactsFile::hasRows(std::string_view table) const {
  return hasTable(table) &&
         file.number("SELECT EXISTS (SELECT 1 FROM " + std::string(table) + ")") != 0;
}

std::string FactsFile::view(std::string_view name) const {
  return "(" + selectOf(views, name) + ")";
}

std::string FactsFile::viewByName(std::string_view name) const {
  return "(" + selectOf(viewsOfNames, name) + ")";
}

Statement FactsFile::bound(const std::string& sql, std::string_view parameter) const {
  Statement statement = prepare(sql);
  if (sqlite3_bind_parameter_count(statement.get()) > 0) {
    sqlite3_bind_text(statement.get(), 1, parameter.data(), static_cast<int>(parameter.size()),
                      SQLITE_TRANSIENT);
  }
  return statement;
}

std::vector<long long> FactsFile::numbers(const std::string& sql,
                                          std::string_view parameter) const {
  const Statement statement = bound(sql, parameter);
  std::vector<long long> found;
  while (step(statement)) found.push_back(sqlite3_column_int64(statement.get(), 0));
  return found;
}

std::vector<std::string> FactsFile::texts(const std::string& sql,
                                          std::string_view parameter) const {
  const Statement statement = bound(sql, parameter);
  std::vector<std::string> found;
  while (step(statement)) found.emplace_back(fe_db_tools::textOf(statement, 0));
  return found;
}

std::string_view textOf(const Statement& row, int column) {
  const auto* text = static_cast<const char*>(sqlite3_column_blob(row.get(), column));
  if (text == nullptr) return {};
  return {text, static_cast<std::size_t>(sqlite3_column_bytes(row.get(), column))};
}

bool isNull(const Statement& row, int column) {
  return sqlite3_column_type(row.get(), column) == SQLITE_NULL;
}

std::string idList(const std::vector<long long>& ids) {
  std::string list = "(";
  for (const long long id : ids) list += (list.size() == 1 ? "" : ",") + std::to_string(id);
  return list + ")";
}

}  // namespace fe_db_tools
