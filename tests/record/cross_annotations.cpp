#include "record/cross_annotations.h"

#include <cstdint>

#include "support/sql_rows.h"

namespace fe_db_tests {

namespace {

// The bits in their order.
constexpr const char* kRoles[] = {"read",      "write",       "call",         "address",
                                  "type",      "base",        "overrides",    "jump",
                                  "offsetof",  "conditional", "implicit",     "not evaluated",
                                  "from body", "expansion",   "within itself"};

constexpr const char* kFlags[] = {
    "parameter", "local",      "static member", "unused",         "non-trivial",  "virtual",
    "overrides", "overridden", "guard",         "packed/aligned", "defaulted",    "deleted",
    "inline",    "template",   "by system",     "exported",       "weak/alias",   "returns nothing",
    "no return", "pure/const", "deprecated",    "bit-field",      "anonymous",    "catch",
    "binding",   "cleanup",    "specialised",   "of lambda",      "pure virtual", "undefined",
    "by macro",  "excluded"};

// Kind, id, name, file and line of whatever a reference or property is about.
constexpr char kEntities[] =
    "WITH Entity(EKind, Id, EName, EFile, Line, Col) AS ("
    "SELECT 1, TypeId, iif(Unnamed, 'unnamed', Name), DeclFileId, DeclLineNum, DeclColNum"
    " FROM Type JOIN Identifier USING (IdentifierId)"
    " UNION ALL SELECT 2, FunctionId, Name, DeclFileId, DeclLineNum, DeclColNum"
    " FROM Function f JOIN Identifier i ON i.IdentifierId = SourceNameId"
    " UNION ALL SELECT 4, VariableId, Name, DeclFileId, DeclLineNum, DeclColNum"
    " FROM Variable JOIN Identifier USING (IdentifierId)"
    " UNION ALL SELECT 8, MacroId, Name, DeclFileId, DeclLineNum, DeclColNum"
    " FROM Macro JOIN Identifier USING (IdentifierId)"
    " UNION ALL SELECT 32, EnumConstantId, Name, DeclFileId, DeclLineNum, DeclColNum"
    " FROM EnumConstant JOIN Identifier USING (IdentifierId)"
    " UNION ALL SELECT 64, FieldId, Name, DeclFileId, DeclLineNum, DeclColNum"
    " FROM Field JOIN Identifier USING (IdentifierId)"
    " UNION ALL SELECT 128, LabelId, Name, DeclFileId, DeclLineNum, DeclColNum"
    " FROM Label JOIN Identifier USING (IdentifierId)) ";

constexpr char kReferences[] =
    "SELECT r.LineNum, r.ColNum, length(EName), Roles, EName || iif(f.FileId = r.FileId, ':' || "
    "Line,"
    " '') FROM Reference r JOIN Entity ON EKind = EntityKind AND Id = EntityId JOIN File p ON"
    " p.FileId = r.FileId LEFT JOIN File f ON f.FileId = EFile WHERE p.Path = ?1 AND"
    " (f.FileId IS NOT NULL OR EKind <> 1)";

constexpr char kProperties[] =
    "SELECT e.Line, e.Col, length(e.EName), Flags, e.EName || iif(Scope = '', '', ' in ' || Scope)"
    " || ifnull(' of ' || o.EName, '') FROM Property JOIN Entity e ON e.EKind = EntityKind AND"
    " e.Id = EntityId JOIN File ON FileId = e.EFile LEFT JOIN Entity o ON o.EKind = 1 AND"
    " o.Id = OwnerId WHERE Path = ?1";

template <std::size_t count>
std::string words(std::uint64_t mask, const char* const (&names)[count]) {
  std::string text;
  for (std::size_t bit = 0; bit < count; ++bit) {
    if ((mask >> bit & 1) != 0) text += (text.empty() ? "" : ", ") + std::string(names[bit]);
  }
  return text;
}

template <std::size_t count>
void readRows(const RawConnection& connection, const std::string& query, const std::string& file,
              const char* title, const char* const (&names)[count],
              std::vector<Annotation>& result) {
  sqlite3_stmt* statement = nullptr;
  ASSERT_EQ(sqlite3_prepare_v2(connection.get(), query.c_str(), -1, &statement, nullptr), SQLITE_OK)
      << query << ": " << sqlite3_errmsg(connection.get());
  sqlite3_bind_text(statement, 1, file.c_str(), -1, SQLITE_STATIC);
  while (sqlite3_step(statement) == SQLITE_ROW) {
    const auto number = [&](int column) {
      return static_cast<unsigned>(sqlite3_column_int(statement, column));
    };
    const auto mask = static_cast<std::uint64_t>(sqlite3_column_int64(statement, 3));
    const std::string name = reinterpret_cast<const char*>(sqlite3_column_text(statement, 4));
    result.push_back({number(0), number(1), number(2), title + name + ": " + words(mask, names)});
  }
  sqlite3_finalize(statement);
}

}  // namespace

std::vector<Annotation> readCrossAnnotations(const std::string& compilationFile,
                                             const std::string& sourceFile, CrossFacts facts) {
  const RawConnection connection(compilationFile);
  std::vector<Annotation> result;
  if (facts == CrossFacts::references) {
    readRows(connection, std::string(kEntities) + kReferences, sourceFile, "", kRoles, result);
  } else {
    readRows(connection, std::string(kEntities) + kProperties, sourceFile, "", kFlags, result);
  }
  return result;
}

}  // namespace fe_db_tests
