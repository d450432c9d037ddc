#include "questions.h"

#include <algorithm>

#include "entity_views.h"
#include "number_words.h"
#include "record_kinds.h"

namespace fe_db_tools {
namespace {

using orvalesca::databases_merger::IdentifierKind;

constexpr auto kNothing = IdentifierKind{0};
constexpr IdentifierKind kEverything = IdentifierKind::Type | IdentifierKind::Function |
                                       IdentifierKind::Variable | IdentifierKind::Macro |
                                       IdentifierKind::EnumConstant | IdentifierKind::Field |
                                       IdentifierKind::Label;
constexpr IdentifierKind kDeclared = IdentifierKind::Type | IdentifierKind::Function |
                                     IdentifierKind::Variable | IdentifierKind::Macro;

// --- The attributes of an answer, one JSON object.

enum class Form { text, flag, number };
struct Attribute {
  std::string_view name;
  std::string_view column;
  Form form = Form::text;
};

std::string jsonSql(std::span<const Attribute> attributes) {
  std::string sql;
  for (const auto& [name, column, form] : attributes) {
    const std::string value(column);
    sql += (sql.empty() ? "json_object('" : ", '") + std::string(name) + "', ";
    if (form == Form::flag) sql += "json(iif(" + value + ", 'true', 'false'))";
    if (form == Form::text) sql += "escaped(" + value + ")";
    if (form == Form::number) sql += value;
  }
  return sql + ")";
}

constexpr Attribute kOfFunctions[] = {{"id", "nullif(identifier, name)"},
                                      {"linkage", "linkage"},
                                      {"defined", "defined", Form::flag},
                                      {"special", "special", Form::flag},
                                      {"effect", "effect"},
                                      {"refs", "refs", Form::number},
                                      {"flags", "flags"}};
constexpr Attribute kOfVariables[] = {{"linkage", "linkage"},
                                      {"defined", "defined", Form::flag},
                                      {"type", "type"},
                                      {"refs", "refs", Form::number},
                                      {"flags", "flags"}};
constexpr Attribute kOfTypes[] = {{"form", "form"},
                                  {"unnamed", "unnamed", Form::flag},
                                  {"local", "local", Form::flag},
                                  {"incomplete", "incomplete", Form::flag},
                                  {"refs", "refs", Form::number},
                                  {"tagRefs", "tag_refs", Form::number},
                                  {"flags", "flags"}};
constexpr Attribute kOfMacros[] = {{"shape", "shape"},
                                   {"empty", "text=''", Form::flag},
                                   {"refs", "refs", Form::number},
                                   {"flags", "flags"}};
constexpr Attribute kOfFields[] = {
    {"owner", "owner"}, {"refs", "refs", Form::number}, {"flags", "flags"}};
constexpr Attribute kOfOthers[] = {{"flags", "flags"}};

std::span<const Attribute> attributesOf(IdentifierKind kind) {
  switch (kind) {
    case IdentifierKind::Function:
      return kOfFunctions;
    case IdentifierKind::Variable:
      return kOfVariables;
    case IdentifierKind::Type:
      return kOfTypes;
    case IdentifierKind::Macro:
      return kOfMacros;
    case IdentifierKind::Field:
      return kOfFields;
    default:
      return kOfOthers;
  }
}

// --- Conditions.

void require(std::string& condition, const std::string& also) {
  condition += (condition.empty() ? " WHERE " : " AND ") + also;
}

std::string quoted(std::string_view text) {
  std::string sql = "'";
  for (const char c : text) sql += c == '\'' ? "''" : std::string(1, c);
  return sql + "'";
}

void requireFile(std::string& condition, const Request& request) {
  if (request.filter.fileGlob) require(condition, "file_id IN " + idList(request.inFiles));
}

std::string filterOf(const Request& request, IdentifierKind kind) {
  const FindFilter& filter = request.filter;
  const bool isFunction = kind == IdentifierKind::Function;
  std::string condition;
  if (filter.name) {
    require(condition,
            std::string(entityViewOf(kind).id) + " IN " + idList(idsOf(request.entities, kind)));
  }
  if (filter.minLength) {
    require(condition, std::string("length(") + (isFunction ? "identifier" : "name") +
                           ")>=" + std::to_string(*filter.minLength));
  }
  if (kind == IdentifierKind::Type && (filter.minLength || filter.refCount)) {
    require(condition, "NOT unnamed AND form<>'builtin'");
  }
  if (filter.refCount) require(condition, "refs=" + std::to_string(*filter.refCount));
  if (filter.linkage) {
    const auto& words = vocabularyOf("Function", "Linkage").words;
    const auto known = std::ranges::find(words, *filter.linkage, &NumberWord::number);
    require(condition, "linkage=" + quoted(known != words.end() ? std::string(known->word)
                                                                : std::to_string(*filter.linkage)));
  }
  if (filter.defined) {
    require(condition, kind == IdentifierKind::Type ? "NOT incomplete" : "defined");
  }
  requireFile(condition, request);
  return condition;
}

// --- Questions about entities.

std::string entitySelect(const Request& request, IdentifierKind kind,
                         const std::string& condition) {
  const std::string identifier = kind == IdentifierKind::Function ? "identifier" : "''";
  const std::string_view view = entityViewOf(kind).view;
  return "SELECT path, line, column, '" + std::string(wordOf(kind)) +
         "' AS kind, name, qualified(scope, name, " + identifier + ") AS qualified, " +
         jsonSql(attributesOf(kind)) + " AS attributes FROM " +
         (request.filter.minLength ? request.file.viewByName(view) : request.file.view(view)) +
         condition;
}

template <IdentifierKind kKind>
std::string entities(const Request& request) {
  return entitySelect(request, kKind, filterOf(request, kKind));
}

std::string unite(const std::vector<std::string>& selects) {
  std::string sql;
  for (const std::string& select : selects) sql += (sql.empty() ? "" : " UNION ALL ") + select;
  return sql;
}

/// Of each kind that the name can mean, with a condition of the kind on top of the name.
template <class Condition>
std::string namedRows(const Request& request, Condition conditionOf) {
  std::vector<std::string> selects;
  for (const EntityView& of : kEntityViews) {
    const std::vector<long long> ids = idsOf(request.entities, of.kind);
    if (ids.empty()) continue;
    std::string condition;
    require(condition, std::string(of.id) + " IN " + idList(ids));
    if (const std::string also = conditionOf(of.kind); !also.empty()) require(condition, also);
    requireFile(condition, request);
    selects.push_back(entitySelect(request, of.kind, condition));
  }
  return unite(selects);
}

std::string definitions(const Request& request) {
  return namedRows(request, [](IdentifierKind kind) {
    return kind == IdentifierKind::Macro  ? ""
           : kind == IdentifierKind::Type ? "NOT incomplete"
                                          : "defined";
  });
}

std::string declarations(const Request& request) {
  return namedRows(request, [](IdentifierKind kind) {
    return kind == IdentifierKind::Macro  ? "0"
           : kind == IdentifierKind::Type ? "incomplete"
                                          : "NOT defined";
  });
}

std::string members(const Request& request) {
  std::vector<std::string> selects;
  for (const EntityView& of : kEntityViews) {
    std::string condition;
    require(condition, "owner_id IN " + idList(idsOf(request.entities, IdentifierKind::Type)));
    requireFile(condition, request);
    if (of.kind != IdentifierKind::Macro && of.kind != IdentifierKind::Label) {
      selects.push_back(entitySelect(request, of.kind, condition));
    }
  }
  return unite(selects);
}

std::string longNames(const Request& request) {
  return unite(
      {entities<IdentifierKind::Function>(request), entities<IdentifierKind::Variable>(request),
       entities<IdentifierKind::Type>(request), entities<IdentifierKind::Macro>(request),
       entities<IdentifierKind::Field>(request), entities<IdentifierKind::EnumConstant>(request),
       entities<IdentifierKind::Label>(request)});
}

std::string externals(const Request& request) {
  std::string condition;
  if (request.filter.name) require(condition, "name=" + quoted(*request.filter.name));
  requireFile(condition, request);
  constexpr Attribute kAttributes[] = {{"entity", "entity"}};
  const std::string from = request.filter.name ? request.file.viewByName("fe_externals")
                                               : request.file.view("fe_externals");
  return "SELECT path, line, column, 'external' AS kind, name, name AS qualified, " +
         jsonSql(kAttributes) + " AS attributes FROM " + from + condition;
}

// --- Calls and other uses.

std::string callSelect(const Request& request, std::string condition) {
  const std::string caller = "qualified(caller_scope, caller, caller_identifier)";
  const std::string callee = "qualified(callee_scope, callee, callee_identifier)";
  const Attribute attributes[] = {{"caller", caller}, {"callee", callee}, {"value", "value"}};
  requireFile(condition, request);
  return "SELECT path, line, column, 'call' AS kind, caller || ' -> ' || callee AS name, " +
         caller + " || ' -> ' || " + callee + " AS qualified, " + jsonSql(attributes) +
         " AS attributes FROM " + request.file.view("fe_calls") + condition;
}

std::string idsOfFunctions(const Request& request) {
  return idList(idsOf(request.entities, IdentifierKind::Function));
}

std::string callers(const Request& request) {
  return callSelect(request, " WHERE callee_id IN " + idsOfFunctions(request));
}

std::string callees(const Request& request) {
  return callSelect(request, " WHERE caller_id IN " + idsOfFunctions(request));
}

std::string calls(const Request& request) {
  if (!request.filter.name) return callSelect(request, "");
  const std::string ids = idsOfFunctions(request);
  return callSelect(request, " WHERE (callee_id IN " + ids + " OR caller_id IN " + ids + ")");
}

/// The definition of a name says what each of its declarations does.
std::string noEffectCalls(const Request& request) {
  return callSelect(
      request,
      " WHERE value='dropped' AND callee_id IN (SELECT d.FunctionId FROM Function AS d"
      " JOIN Function AS e ON e.IdentifierId=d.IdentifierId"
      " WHERE e.isDefined=1 AND e.Effect=0)");
}

/// One SELECT for a kind, however many entities have the name; each finds its references by its id.
std::string uses(const Request& request) {
  const Vocabulary& roles = vocabularyOf("Reference", "Roles");
  std::vector<std::string> selects;
  for (const EntityView& of : kEntityViews) {
    std::string named;
    for (const NamedEntity& entity : request.entities) {
      if (entity.kind != of.kind) continue;
      for (const long long id : entity.ids) {
        named += (named.empty() ? "(" : ", (") + std::to_string(id) + ", " +
                 quoted(entity.display) + ")";
      }
    }
    if (named.empty()) continue;
    std::string condition;
    if (!request.filter.role.empty()) {
      require(condition, "x.Roles & " + std::to_string(bitOf(roles, request.filter.role)));
    }
    if (request.filter.fileGlob) require(condition, "x.FileId IN " + idList(request.inFiles));
    const std::string kind = quoted(wordOf(of.kind)), words = wordSql(roles, "x.Roles");
    const Attribute attributes[] = {{"of", kind}, {"roles", words}};
    selects.push_back(
        "SELECT f.Path AS path, x.LineNum AS line, x.ColNum AS column, 'use' AS kind, n.column2 AS"
        " name, n.column2 AS qualified, " +
        jsonSql(attributes) + " AS attributes FROM (VALUES " + named +
        ") AS n CROSS JOIN Reference AS x ON x.EntityId=n.column1 AND x.EntityKind=" +
        std::to_string(kinds::numberOf(of.kind)) + " LEFT JOIN File AS f ON f.FileId=x.FileId" +
        condition);
  }
  return unite(selects);
}

/// A reference of this role is at the name of the function that overrides.
std::string overrides(const Request& request) {
  const auto bit = bitOf(vocabularyOf("Reference", "Roles"), "override");
  std::string condition =
      " WHERE function_id IN (SELECT o.FunctionId FROM Reference AS r JOIN Function AS o"
      " ON o.DeclFileId=r.FileId AND o.DeclLineNum=r.LineNum AND o.DeclColNum=r.ColNum"
      " WHERE r.EntityKind=" +
      std::to_string(kinds::numberOf(IdentifierKind::Function)) + " AND r.EntityId IN " +
      idsOfFunctions(request) + " AND r.Roles & " + std::to_string(bit) + ")";
  requireFile(condition, request);
  return entitySelect(request, IdentifierKind::Function, condition);
}

// --- Files and units.

std::string includeSelect(const Request& request, const std::string& condition) {
  constexpr Attribute kAttributes[] = {{"included", "included"}, {"by", "kind"}};
  return "SELECT path, line, NULL AS column, 'include' AS kind, included AS name,"
         " included AS qualified, " +
         jsonSql(kAttributes) + " AS attributes FROM " + request.file.view("fe_includes") +
         condition;
}

std::string includers(const Request& request) {
  std::string condition = " WHERE included_id IN " + idList(request.files);
  requireFile(condition, request);
  return includeSelect(request, condition);
}

std::string includes(const Request& request) {
  std::string condition = " WHERE file_id IN " + idList(request.files);
  requireFile(condition, request);
  return includeSelect(request, condition);
}

std::string units(const Request& request) {
  constexpr Attribute kAttributes[] = {{"directory", "directory"}, {"output", "output"},
                                       {"command", "command"},     {"recorder", "recorder"},
                                       {"options", "options"},     {"digest", "digest"}};
  std::string condition;
  if (!request.filter.words.empty()) {
    require(condition, "unit_id IN (SELECT UnitId FROM UnitFile WHERE FileId IN " +
                           idList(request.files) + ")");
  }
  requireFile(condition, request);
  return "SELECT path, NULL AS line, NULL AS column, 'unit' AS kind, name, name AS qualified, " +
         jsonSql(kAttributes) + " AS attributes FROM " + request.file.view("fe_units") + condition;
}

// --- Unused entities.

std::string unused(const Request& request) {
  const auto isAsked = [&words = request.filter.words](const char* kind) {
    return words.empty() || std::ranges::find(words, kind) != words.end();
  };
  std::vector<std::string> selects;
  const auto add = [&](const char* kind, IdentifierKind of, std::string condition) {
    condition = " WHERE " + condition;
    requireFile(condition, request);
    if (isAsked(kind)) selects.push_back(entitySelect(request, of, condition));
  };
  std::vector<long long> tagKinds;
  for (const auto kind : kinds::kTagged) tagKinds.push_back(kinds::numberOf(kind));
  const std::string tags = "('enum', 'struct', 'union', 'class')";
  add("macros", IdentifierKind::Macro, "refs=0 AND path IS NOT NULL");
  add("types", IdentifierKind::Type,
      "refs=0 AND NOT unnamed AND form<>'builtin' AND form NOT IN " + tags);
  // A forward declaration is a separate row; uses count for it or for the type that it declares.
  add("tags", IdentifierKind::Type,
      "refs=0 AND tag_refs=0 AND NOT unnamed AND form IN " + tags +
          " AND type_id NOT IN (SELECT t.TypeId FROM Type AS t JOIN Type AS u"
          " ON u.IdentifierId=t.IdentifierId WHERE (t.Incomplete OR u.Incomplete)"
          " AND u.Kind IN " +
          idList(tagKinds) + " AND (u.RefCount<>0 OR u.RefTagCount<>0))");
  // External rows of one name are one variable; internal ones are if they are in one file.
  add("variables", IdentifierKind::Variable,
      "refs=0 AND variable_id NOT IN (SELECT v.VariableId FROM Variable AS v JOIN Variable AS u"
      " ON u.IdentifierId=v.IdentifierId AND u.Linkage=v.Linkage"
      " WHERE u.RefCount<>0 AND (v.Linkage=1 OR v.Linkage>1 AND u.DeclFileId=v.DeclFileId))");
  add("fields", IdentifierKind::Field, "refs=0");
  return unite(selects);
}

constexpr auto kF = IdentifierKind::Function;
constexpr auto kT = IdentifierKind::Type;
constexpr auto kV = IdentifierKind::Variable;

// clang-format off
constexpr Question kQuestions[] = {
    {"functions", Argument::none, "", "--name --min-length --ref-count --linkage --defined", kF, "", entities<kF>},
    {"variables", Argument::none, "", "--name --min-length --ref-count --linkage --defined", kV, "", entities<kV>},
    {"types", Argument::none, "", "--name --min-length --ref-count --defined", kT, "", entities<kT>},
    {"macros", Argument::none, "", "--name --min-length --ref-count", IdentifierKind::Macro, "", entities<IdentifierKind::Macro>},
    {"fields", Argument::none, "", "--name --min-length --ref-count", IdentifierKind::Field, "", entities<IdentifierKind::Field>},
    {"enum-constants", Argument::none, "", "--name --min-length", IdentifierKind::EnumConstant, "", entities<IdentifierKind::EnumConstant>},
    {"labels", Argument::none, "", "--name --min-length", IdentifierKind::Label, "", entities<IdentifierKind::Label>},
    {"calls", Argument::none, "", "--name", kF, "", calls},
    {"externals", Argument::none, "", "--name", kNothing, "", externals},
    {"units", Argument::fileOrNone, "", "", kNothing, "Unit", units},
    {"unused", Argument::kinds, "macros types tags variables fields", "--sarif", kNothing, "", unused},
    {"no-effect-calls", Argument::none, "", "--sarif", kNothing, "", noEffectCalls},
    {"long-names", Argument::none, "", "--min-length --sarif", kNothing, "", longNames},
    {"definition", Argument::name, "", "", kDeclared, "", definitions},
    {"declarations", Argument::name, "", "", kDeclared, "", declarations},
    {"uses", Argument::name, "", "--role", kEverything, "Reference", uses},
    {"callers", Argument::name, "", "--depth", kF, "", callers},
    {"callees", Argument::name, "", "--depth", kF, "", callees},
    {"members", Argument::name, "", "", kT, "Property", members},
    {"overrides", Argument::name, "", "", kF, "Reference", overrides},
    {"includers", Argument::file, "", "--depth", kNothing, "Include", includers},
    {"includes", Argument::file, "", "--depth", kNothing, "Include", includes},
};
// clang-format on

}  // namespace

std::span<const Question> findQuestions() { return kQuestions; }

}  // namespace fe_db_tools
