#include <algorithm>

#include "model.h"
#include "tests/support/sql_rows.h"

namespace fe_db_tests::model {
namespace {

std::vector<Column> operator+(std::vector<Column> a, const std::vector<Column>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

const std::vector<Column> kName = {{"IdentifierId", true, &Fact::name, kIdentifier}};
const std::vector<Column> kDeclaration =
    kName + std::vector<Column>{{"DeclFileId", true, &Fact::file, kFile},
                                {"DeclLineNum", true, &Fact::line},
                                {"DeclColNum", true, &Fact::column}};
const std::vector<Column> kPlace = {{"FileId", false, &Fact::file, kFile},
                                    {"LineNum", false, &Fact::line},
                                    {"ColNum", false, &Fact::column}};
const std::vector<Column> kCount = {{"RefCount", false, &Fact::count}};
const std::vector<Column> kLinked =
    kDeclaration + kCount +
    std::vector<Column>{{"isDefined", false, &Fact::defined}, {"Linkage", false, &Fact::linkage}};

// A list of its own on purpose: a mistake in the library's must not be in the model too.
// Kind stands before EntityId and Value before ValueIsSigned; otherwise the order does not matter.
const Table kTables[kClasses] = {
    {"File",
     "FileId",
     {{"Path", true, &Fact::text},
      {"Kind", false, &Fact::kind},
      {"Lang", false, &Fact::language},
      {"Huge", false, &Fact::huge}}},
    {"Identifier",
     "IdentifierId",
     {{"Name", true, &Fact::text}, {"Kind", false, &Fact::kind}, {"Count", false, &Fact::count}}},
    {"Macro", "MacroId",
     kDeclaration + kCount +
         std::vector<Column>{{"Value", false, &Fact::value},
                             {"ValueIsSigned", false, &Fact::isSigned},
                             {"IsObjectLike", false, &Fact::objectLike},
                             {"IsVariadic", false, &Fact::variadic},
                             {"IsCommandLineDefinition", false, &Fact::commandLine},
                             {"IsPredefined", false, &Fact::predefined},
                             {"Text", false, &Fact::text}}},
    {"MacroInvocation", "MacroInvocationId",
     kPlace + std::vector<Column>{{"MacroId", true, &Fact::subject, kMacro},
                                  {"ppLineNum", true, &Fact::ppLine},
                                  {"ppStartColNum", true, &Fact::ppColumn},
                                  {"ppEndColNum", false, &Fact::ppEnd}}},
    {"MacroInvocationCodeOrigin", "rowid",
     kPlace + std::vector<Column>{{"MacroInvocationId", false, &Fact::subject, kMacroInvocation},
                                  {"OffsetColumnInInvocation", false, &Fact::offset},
                                  {"EndOffsetColumnInInvocation", false, &Fact::endOffset},
                                  {"IsParameter", false, &Fact::parameter},
                                  {"TokenString", false, &Fact::text}}},
    {"MacroExpansion", "rowid",
     kPlace + std::vector<Column>{{"PpLineNum", false, &Fact::ppLine},
                                  {"PpColNum", false, &Fact::ppColumn},
                                  {"ExpandedCode", false, &Fact::text},
                                  {"MacroCall", false, &Fact::call}}},
    {"Type", "TypeId",
     kDeclaration + kCount +
         std::vector<Column>{{"Kind", true, &Fact::kind},
                             {"Unnamed", false, &Fact::unnamed},
                             {"Local", false, &Fact::local},
                             {"Incomplete", false, &Fact::incomplete},
                             {"RefTagCount", false, &Fact::tagCount}}},
    {"TypeReference",
     "rowid",
     {{"DeclaredType", true, &Fact::subject, kType},
      {"ReferencedType", false, &Fact::object, kType}}},
    {"Variable", "VariableId",
     kLinked + std::vector<Column>{{"TypeId", false, &Fact::subject, kType}}},
    {"Function", "FunctionId",
     kLinked + std::vector<Column>{{"SourceNameId", false, &Fact::subject, kIdentifier},
                                   {"isSpecial", false, &Fact::special},
                                   {"Effect", false, &Fact::effect}}},
    {"ExternalIdentifier", "ExternalIdentifierId",
     kName + std::vector<Column>{{"Kind", true, &Fact::kind},
                                 {"EntityId", true, &Fact::subject, kEntity}}},
    {"Field", "FieldId", kDeclaration + kCount},
    {"EnumConstant", "EnumConstantId", kDeclaration},
    {"Label", "LabelId", kDeclaration},
    {"CallPoint",
     "CallPointId",
     {{"FileId", true, &Fact::file, kFile},
      {"LineNum", true, &Fact::line},
      {"ColNum", true, &Fact::column},
      {"CallerId", true, &Fact::subject, kFunction},
      {"CalleeId", false, &Fact::object, kFunction},
      {"IsValueUsed", false, &Fact::used}}},
};

}  // namespace

const Table& table(int cls) { return kTables[cls]; }

std::string text(const Cell& cell) {
  if (const auto* number = std::get_if<long long>(&cell)) return std::to_string(*number);
  if (const auto* bytes = std::get_if<std::string>(&cell)) return "'" + *bytes + "'";
  return "NULL";
}

std::string keyText(const Content& content, int cls, long long id) {
  if (id == 0) return "0";
  const auto row = content[cls].find(id);
  if (row == content[cls].end()) return "!" + std::to_string(id);
  return "<" + text(content, cls, row->second, /*keyOnly=*/true) + ">";
}

std::string text(const Content& content, int cls, const Row& row, bool keyOnly) {
  std::string line;
  const auto& columns = table(cls).columns;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (keyOnly && !columns[i].key) continue;
    int target = columns[i].target;
    if (target == kEntity) {
      const auto kind = std::get<long long>(row[i - 1]);
      target = kind == 0 ? kVariable : kind == 1 ? kFunction : kNoReference;
    }
    line += std::string(line.empty() ? "" : " ") + columns[i].name + "=";
    const auto* number = std::get_if<long long>(&row[i]);
    line += number != nullptr && target != kNoReference ? keyText(content, target, *number)
                                                        : text(row[i]);
  }
  return line;
}

std::string text(const Content& content) {
  std::string all;
  for (int cls = 0; cls < kClasses; ++cls) {
    std::vector<std::string> lines;
    for (const auto& [id, row] : content[cls]) lines.push_back(text(content, cls, row));
    std::sort(lines.begin(), lines.end());
    for (const auto& line : lines) all += std::string(table(cls).name) + ": " + line + "\n";
  }
  return all;
}

Content readFile(const std::string& path, bool isCompilation) {
  Content content;
  const RawConnection connection(path);
  for (int cls = 0; cls < (isCompilation ? kClasses : kType); ++cls) {
    std::string sql = std::string("SELECT ") + table(cls).id;
    for (const Column& column : table(cls).columns) sql += std::string(", ") + column.name;
    sql += std::string(" FROM ") + table(cls).name;
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(connection.get(), sql.c_str(), -1, &statement, nullptr),
              SQLITE_OK);
    while (sqlite3_step(statement) == SQLITE_ROW) {
      Row& row = content[cls][sqlite3_column_int64(statement, 0)];
      for (int i = 1; i < sqlite3_column_count(statement); ++i) {
        switch (sqlite3_column_type(statement, i)) {
          case SQLITE_NULL:
            row.emplace_back();
            break;
          case SQLITE_INTEGER:
            row.emplace_back(sqlite3_column_int64(statement, i));
            break;
          default:
            row.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(statement, i)));
        }
      }
    }
    sqlite3_finalize(statement);
  }
  return content;
}

}  // namespace fe_db_tests::model
