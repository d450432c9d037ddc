#include "views.h"

#include <algorithm>

#include "entity_views.h"
#include "number_words.h"
#include "record_kinds.h"

namespace fe_db_tools {
namespace {

using orvalesca::databases_merger::IdentifierKind;

std::string bit(IdentifierKind kind) { return std::to_string(kinds::numberOf(kind)); }

constexpr EntityView kAllEntities[] = {
    {IdentifierKind::Type, "fe_types", "Type", "TypeId", "type_id"},
    {IdentifierKind::Function, "fe_functions", "Function", "FunctionId", "function_id"},
    {IdentifierKind::Variable, "fe_variables", "Variable", "VariableId", "variable_id"},
    {IdentifierKind::Macro, "fe_macros", "Macro", "MacroId", "macro_id"},
    {IdentifierKind::EnumConstant, "fe_enum_constants", "EnumConstant", "EnumConstantId",
     "enum_constant_id"},
    {IdentifierKind::Field, "fe_fields", "Field", "FieldId", "field_id"},
    {IdentifierKind::Label, "fe_labels", "Label", "LabelId", "label_id"},
};

class Views {
 public:
  Views(const std::set<std::string, std::less<>>& tables, DamagedRows damaged)
      : tables(tables), join(damaged == DamagedRows::kept ? " LEFT JOIN " : " JOIN ") {}

  std::vector<View> all() const {
    std::vector<View> views = {functions(),
                               variables(),
                               types(),
                               macros(),
                               entity(IdentifierKind::Field, {}, refs()),
                               entity(IdentifierKind::EnumConstant, {}, {}),
                               entity(IdentifierKind::Label, {}, {}),
                               calls(),
                               externals()};
    if (has("Include")) views.push_back(includes());
    if (has("Reference")) views.push_back(references());
    if (has("Unit")) views.push_back(units());
    if (has("UnitFile") && has("Unit")) views.push_back(unitFiles());
    views.push_back(numbers());
    return views;
  }

 private:
  bool has(std::string_view table) const { return tables.contains(table); }

  static std::string refs() { return ", x.RefCount AS refs"; }

  static std::string words(const char* table, const char* column, const char* from = "x.") {
    return wordSql(vocabularyOf(table, column), std::string(from) + column);
  }

  /// `name` is the column with the id of the name that the source has.
  View entity(IdentifierKind kind, const std::string& name, const std::string& columns,
              const std::string& joins = {}) const {
    const bool hasOwnName = !name.empty();
    const EntityView& of = entityViewOf(kind);
    const std::string id = "x." + std::string(of.tableId);
    std::string sql = "SELECT " + id + " AS " + std::string(of.id) +
                      ", f.Path AS path, x.DeclLineNum AS line, x.DeclColNum AS column, ";
    sql += hasOwnName ? "s.Name AS name, i.Name AS identifier" : "i.Name AS name";
    sql +=
        has("Property") ? ", p.Scope AS scope, o.Name AS owner" : ", NULL AS scope, NULL AS owner";
    sql += columns;
    if (has("Property")) {
      sql +=
          ", nullif(" + words("Property", "Flags", "p.") + ", '') AS flags, p.OwnerId AS owner_id";
    } else {
      sql += ", NULL AS flags, NULL AS owner_id";
    }
    sql += std::string(", x.DeclFileId AS file_id FROM ") + std::string(of.table) + " AS x" + join +
           "Identifier AS i ON i.IdentifierId=x.IdentifierId";
    if (hasOwnName) sql += join + "Identifier AS s ON s.IdentifierId=x." + name;
    sql += joins + " LEFT JOIN File AS f ON f.FileId=x.DeclFileId";
    if (has("Property")) {
      sql += " LEFT JOIN Property AS p ON p.EntityKind=" + bit(of.kind) + " AND p.EntityId=" + id +
             " LEFT JOIN Type AS ot ON ot.TypeId=p.OwnerId" +
             " LEFT JOIN Identifier AS o ON o.IdentifierId=ot.IdentifierId";
    }
    return {std::string(of.view), sql};
  }

  /// Nobody has counted where there are no references.
  std::string countedReferences() const {
    if (!has("Reference")) return ", NULL AS refs";
    return ", CASE WHEN EXISTS (SELECT 1 FROM Reference) THEN (SELECT count(*) FROM Reference AS r"
           " WHERE r.EntityKind=" +
           bit(IdentifierKind::Function) + " AND r.EntityId=x.FunctionId) END AS refs";
  }

  View functions() const {
    return entity(IdentifierKind::Function, "SourceNameId",
                  ", " + words("Function", "Linkage") +
                      " AS linkage, x.isDefined AS defined, x.isSpecial AS special, " +
                      words("Function", "Effect") + " AS effect" + countedReferences());
  }

  View variables() const {
    return entity(IdentifierKind::Variable, {},
                  ", t.Name AS type, " + words("Variable", "Linkage") +
                      " AS linkage, x.isDefined AS defined" + refs(),
                  " LEFT JOIN Type AS xt ON xt.TypeId=x.TypeId"
                  " LEFT JOIN Identifier AS t ON t.IdentifierId=xt.IdentifierId");
  }

  View types() const {
    return entity(IdentifierKind::Type, {},
                  ", " + words("Type", "Kind") +
                      " AS form, x.Unnamed AS unnamed, x.Local AS local, x.Incomplete AS"
                      " incomplete" +
                      refs() + ", x.RefTagCount AS tag_refs");
  }

  View macros() const {
    return entity(
        IdentifierKind::Macro, {},
        ", CASE WHEN x.IsObjectLike THEN 'object' ELSE 'function' END AS shape,"
        " x.IsVariadic AS variadic, x.IsPredefined AS predefined,"
        " x.IsCommandLineDefinition AS on_command_line, x.Value AS value, x.Text AS text" +
            refs());
  }

  View calls() const {
    const auto side = [this](const std::string& who, const std::string& id) {
      std::string sql = join + "Function AS f" + who + " ON f" + who + ".FunctionId=x." + id +
                        join + "Identifier AS " + who + " ON " + who + ".IdentifierId=f" + who +
                        ".SourceNameId" + join + "Identifier AS i" + who + " ON i" + who +
                        ".IdentifierId=f" + who + ".IdentifierId";
      if (has("Property")) {
        sql += " LEFT JOIN Property AS p" + who + " ON p" + who +
               ".EntityKind=" + bit(IdentifierKind::Function) + " AND p" + who + ".EntityId=x." +
               id;
      }
      return sql;
    };
    const std::string scopes = has("Property")
                                   ? "pa.Scope AS caller_scope, pb.Scope AS callee_scope"
                                   : "NULL AS caller_scope, NULL AS callee_scope";
    return {
        "fe_calls",
        "SELECT x.CallPointId AS call_id, f.Path AS path, x.LineNum AS line, x.ColNum AS column,"
        " a.Name AS caller, b.Name AS callee,"
        " CASE WHEN x.IsValueUsed THEN 'used' ELSE 'dropped' END AS value,"
        " ia.Name AS caller_identifier, ib.Name AS callee_identifier, " +
            scopes +
            ", x.CallerId AS caller_id, x.CalleeId AS callee_id, x.FileId AS file_id"
            " FROM CallPoint AS x" +
            side("a", "CallerId") + side("b", "CalleeId") +
            " LEFT JOIN File AS f ON f.FileId=x.FileId"};
  }

  View externals() const {
    const auto of = [](const std::string& column) {
      return "coalesce(v.Decl" + column + ", e.Decl" + column + ")";
    };
    return {"fe_externals",
            "SELECT x.ExternalIdentifierId AS external_id, f.Path AS path, coalesce(" +
                of("LineNum") + ", 0) AS line, coalesce(" + of("ColNum") +
                ", 0) AS column, i.Name AS name, " + words("ExternalIdentifier", "Kind") +
                " AS entity, " + of("FileId") + " AS file_id FROM ExternalIdentifier AS x" + join +
                "Identifier AS i ON i.IdentifierId=x.IdentifierId"
                " LEFT JOIN Variable AS v ON x.Kind=0 AND v.VariableId=x.EntityId"
                " LEFT JOIN Function AS e ON x.Kind=1 AND e.FunctionId=x.EntityId"
                " LEFT JOIN File AS f ON f.FileId=" +
                of("FileId")};
  }

  /// One SELECT for each kind, so that a condition on the name begins with the name.
  View references() const {
    std::string sql;
    for (const EntityView& of : kEntityViews) {
      sql += sql.empty() ? "" : " UNION ALL ";
      const bool isFunction = of.kind == IdentifierKind::Function;
      sql +=
          "SELECT f.Path AS path, x.LineNum AS line, x.ColNum AS column, '" +
          std::string(wordOf(of.kind)) + "' AS kind, i.Name AS name, " +
          words("Reference", "Roles") +
          " AS roles, x.Roles AS role_bits, x.EntityKind AS entity_kind, x.EntityId AS entity_id,"
          " x.FileId AS file_id FROM Reference AS x" +
          join + std::string(of.table) + " AS e ON e." + std::string(of.tableId) + "=x.EntityId" +
          join + "Identifier AS i ON i.IdentifierId=e." +
          (isFunction ? "SourceNameId" : "IdentifierId") +
          " LEFT JOIN File AS f ON f.FileId=x.FileId WHERE x.EntityKind=" + bit(of.kind);
    }
    return {"fe_references", sql};
  }

  View includes() const {
    return {"fe_includes",
            "SELECT a.Path AS path, x.LineNum AS line, b.Path AS included, " +
                words("Include", "Kind") +
                " AS kind, x.IncludingFileId AS file_id, x.IncludedFileId AS included_id"
                " FROM Include AS x" +
                join + "File AS a ON a.FileId=x.IncludingFileId" + join +
                "File AS b ON b.FileId=x.IncludedFileId"};
  }

  View units() const {
    return {
        "fe_units",
        "SELECT x.UnitId AS unit_id, x.Name AS name, f.Path AS path, x.Directory AS directory,"
        " x.Command AS command, x.Output AS output, x.Recorder AS recorder, x.Options AS options,"
        " x.Digest AS digest, x.MainFileId AS file_id FROM Unit AS x"
        " LEFT JOIN File AS f ON f.FileId=x.MainFileId"};
  }

  View unitFiles() const {
    return {"fe_unit_files",
            "SELECT u.Name AS unit, f.Path AS path, x.UnitId AS unit_id, x.FileId AS file_id"
            " FROM UnitFile AS x" +
                join + "Unit AS u ON u.UnitId=x.UnitId" + join + "File AS f ON f.FileId=x.FileId"};
  }

  static View numbers() {
    std::string sql;
    for (const Vocabulary& known : kVocabularies) {
      for (const auto& [number, word] : known.words) {
        const auto value = static_cast<std::int64_t>(number);
        sql += (sql.empty() ? "" : ", ") + ("('" + std::string(known.table)) + "', '" +
               std::string(known.column) + "', " + std::to_string(value) + ", '" +
               std::string(word) + "', " + (known.isMask ? "1" : "0") + ")";
      }
    }
    return {"fe_numbers",
            "SELECT column1 AS tbl, column2 AS col, column3 AS number,"
            " column4 AS meaning, column5 AS is_bit FROM (VALUES " +
                sql + ")"};
  }

  const std::set<std::string, std::less<>>& tables;
  const std::string join;
};

}  // namespace

const std::span<const EntityView> kEntityViews = kAllEntities;

const EntityView& entityViewOf(IdentifierKind kind) {
  return *std::ranges::find(kEntityViews, kind, &EntityView::kind);
}

std::string_view wordOf(IdentifierKind kind) {
  const auto words = vocabularyOf("Identifier", "Kind").words;
  return std::ranges::find(words, kinds::numberOf(kind), &NumberWord::number)->word;
}

std::vector<View> viewsFor(const std::set<std::string, std::less<>>& tables, DamagedRows damaged) {
  return Views(tables, damaged).all();
}

}  // namespace fe_db_tools
