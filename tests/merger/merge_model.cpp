#include "merge_model.h"

#include <sstream>

#include "support/sql_rows.h"

namespace fe_db_tests::merge_model {
namespace {

Table table(const std::string& name, const std::string& columns) {
  Table result{name, {}};
  std::istringstream words(columns);
  for (std::string word; words >> word;) {
    const std::size_t marks = word.find_first_not_of("*+|?'!"), end = word.find('>');
    result.columns.push_back({word.substr(0, marks), word.substr(marks, end - marks),
                              end == std::string::npos ? "" : word.substr(end + 1)});
  }
  return result;
}

std::string listed(const Table& table) {
  std::string list = "rowid";
  for (const Column& c : table.columns) list += "," + c.name;
  return list;
}

std::uint32_t number(const std::optional<std::string>& value) {
  return static_cast<std::uint32_t>(std::stoll(value.value_or("0")));
}

struct Reader {
  Content content;
  std::map<std::string, std::map<long long, std::string>> keys;  ///< of the rows with these ids
  const Table* table;

  /// For each row: `values` are the row id and then the columns.
  static int enter(void* to, int, char** values, char**) {
    auto& [content, keys, table] = *static_cast<Reader*>(to);
    Row row;
    std::string key = table->name, fate;
    for (int i = 0; const Column& c : table->columns) {
      const char* const stored = values[++i];
      const std::string referred = referredTable(c, number(row["Kind"]));
      std::optional<std::string>& value = row[c.name];
      if (!referred.empty()) {
        const long long id = stored != nullptr ? std::stoll(stored) : 0;
        if (keys[referred].count(id) != 0) value = keys[referred][id];
        if (!value && fate != "left out") fate = c.has('!') ? "left out" : id != 0 ? "lost" : fate;
      } else if (c.has('\'') || (c.name == "Value" && stored != nullptr)) {
        value = stored != nullptr ? stored : "";
      } else if (c.name != "Value" && c.name != "EntityId") {
        value = std::to_string(number(stored != nullptr ? stored : "0"));
        if (c.has('?') && value != "0") value = "1";
      }
      // Values hold no NUL, so that no two keys run together.
      if (c.has('*')) key += '\0' + (value ? "=" + *value : "null");
    }
    const bool needsName = table->name == "EnumConstant" || table->name == "Label";
    if (fate == "left out") {
      ++content.leftOut[table->name];
    } else if (needsName && content.rows["Identifier"][*row["IdentifierId"]]["Name"] == "") {
      fate = "nameless";
    } else {
      keys[table->name][std::stoll(values[0])] = key;
      content.hasDuplicates |= !content.rows[table->name].emplace(key, row).second;
    }
    if (!fate.empty()) content.reports.insert(table->name + " " + fate);
    return 0;
  }
};

void use(Content& content, const Row& row, std::uint32_t kind, std::uint32_t count) {
  Row& name = content.rows["Identifier"].at(*row.at("IdentifierId"));
  name["Kind"] = std::to_string(number(name["Kind"]) | kind);
  name["Count"] = std::to_string(number(name["Count"]) + count);
}

void foldRow(const Table& table, Row& target, const Row& source) {
  for (const Column& c : table.columns) {
    if (!c.has('+') && !c.has('|')) continue;
    const std::uint32_t ours = number(target[c.name]), more = number(source.at(c.name));
    target[c.name] = std::to_string(c.has('+') ? ours + more : ours | more);
  }
  if (table.name == "Macro" && !target["Value"]) {
    for (const char* c : {"Value", "ValueIsSigned"}) target[c] = source.at(c);
  }
}

}  // namespace

// A list of its own on purpose: a mistake in the library's must not be in the model too.
const std::vector<Table>& tables() {
  // clang-format off
  const std::string position = "*DeclLineNum *DeclColNum *!IdentifierId>Identifier ";
  const std::string place = "*DeclFileId>File " + position;
  static const std::vector<Table> kTables = {
      table("File", "*'Path Kind Lang ?Huge"), table("Identifier", "*'Name +Count |Kind"),
      table("Function", place + "!SourceNameId>Identifier ?isDefined ?isSpecial Effect "
                                "Linkage RefCount"),
      table("CallPoint", "*FileId>File *LineNum *ColNum *!CallerId>Function "
                         "!CalleeId>Function ?IsValueUsed"),
      table("EnumConstant", place),
      table("Type", place + "Kind |?Unnamed |?Local |?Incomplete +RefCount +RefTagCount"),
      table("Field", place + "+RefCount"), table("Label", place),
      table("Macro", place + "+RefCount Value ?ValueIsSigned ?IsObjectLike ?IsVariadic "
                             "?IsCommandLineDefinition ?IsPredefined 'Text"),
      table("TypeReference", "*DeclaredType>Type ReferencedType>Type"),
      table("Variable", "*!DeclFileId>File " + position +
                            "TypeId>Type ?isDefined Linkage +RefCount"),
      table("ExternalIdentifier", "*!IdentifierId>Identifier Kind *!EntityId>Entity")};
  // clang-format on
  return kTables;
}

std::string referredTable(const Column& column, std::uint32_t kind) {
  if (column.referred != "Entity") return column.referred;
  return kind == 0 ? "Variable" : kind == 1 ? "Function" : "";
}

Content read(const std::string& path) {
  const RawConnection db(path);
  Reader reader = {};
  for (const Table& table : tables()) {
    reader.table = &table;
    reader.content.rows[table.name];
    const std::string sql = "SELECT " + listed(table) + " FROM " + table.name + " ORDER BY rowid";
    EXPECT_EQ(sqlite3_exec(db.get(), sql.c_str(), reader.enter, &reader, nullptr), SQLITE_OK);
  }
  return reader.content;
}

Content load(const std::string& path) {
  Content content = read(path);
  for (auto& [key, row] : content.rows["Function"]) row["RefCount"] = "0";
  for (auto& [key, row] : content.rows["Macro"]) {
    if (!row["Value"]) row["ValueIsSigned"] = "0";
  }
  for (auto& [key, row] : content.rows["ExternalIdentifier"]) use(content, row, 16, 0);
  return content;
}

void fold(Content& target, const Content& source) {
  std::map<std::string, unsigned> counting = {{"EnumConstant", 32}, {"Field", 64}, {"Label", 128}};
  for (const Table& table : tables()) {
    for (auto [key, row] : source.rows.at(table.name)) {
      if (table.name == "ExternalIdentifier" && !row["EntityId"]) row["Kind"] = "4294967295";
      if (counting.count(table.name) != 0) use(target, row, counting[table.name], 1);
      const auto [it, isNew] = target.rows[table.name].emplace(key, row);
      if (!isNew) foldRow(table, it->second, row);
    }
  }
}

}  // namespace fe_db_tests::merge_model
