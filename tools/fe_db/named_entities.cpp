#include "named_entities.h"

#include <fnmatch.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "canonical_text.h"
#include "entity_name.h"
#include "entity_views.h"
#include "nearest_word.h"
#include "record_kinds.h"

namespace fe_db_tools {
namespace {

using orvalesca::databases_merger::IdentifierKind;

/// Rows of one thing have one identifier; a static object's is qualified by its file elsewhere.
std::vector<NamedEntity> findOfKind(const FactsFile& file, const AskedName& asked,
                                    const EntityView& of) {
  const bool isFunction = of.kind == IdentifierKind::Function;
  const std::string identifier = isFunction ? "identifier" : "name";
  const std::string rows = "SELECT " + std::string(of.id) + ", name, " + identifier +
                           ", scope FROM " + file.viewByName(of.view) + " WHERE ";
  std::string sql = rows + "name=?1";
  if (isFunction) sql += " UNION " + rows + "identifier=?2";
  const Statement statement = file.prepare(sql);
  const auto bind = [&](int at, const std::string& text) {
    sqlite3_bind_text(statement.get(), at, text.data(), static_cast<int>(text.size()),
                      SQLITE_STATIC);
  };
  bind(1, asked.last);
  if (isFunction) bind(2, asked.text);
  std::map<std::pair<std::string, std::string>, NamedEntity> found;
  while (file.step(statement)) {
    const std::string_view name = textOf(statement, 1), id = textOf(statement, 2);
    const std::string display = qualifiedName(textOf(statement, 3), name, isFunction ? id : "");
    if (id != asked.text && !matches(asked, name, display)) continue;
    NamedEntity& entity = found[{display, std::string(id)}];
    entity.kind = of.kind;
    entity.display = display;
    entity.identifier = id;
    entity.ids.push_back(sqlite3_column_int64(statement.get(), 0));
  }
  std::vector<NamedEntity> entities;
  for (auto& [key, entity] : found) entities.push_back(std::move(entity));
  return entities;
}

std::vector<NamedEntity> findAll(const FactsFile& file, const AskedName& asked,
                                 IdentifierKind kinds) {
  std::vector<NamedEntity> entities;
  for (const EntityView& of : kEntityViews) {
    if ((kinds::numberOf(kinds) & kinds::numberOf(of.kind)) == 0) continue;
    std::ranges::move(findOfKind(file, asked, of), std::back_inserter(entities));
  }
  return entities;
}

constexpr auto kAnyKind = static_cast<IdentifierKind>(0xff);

}  // namespace

std::vector<NamedEntity> findEntities(const FactsFile& file, const std::string& name,
                                      IdentifierKind kinds) {
  const AskedName asked = parseName(name);
  std::vector<NamedEntity> entities = findAll(file, asked, kinds);
  if (!entities.empty()) return entities;
  const std::string start = file.getPath() + ": nothing of this kind is named \"" + name + '"';
  if (const auto others = findAll(file, asked, kAnyKind); !others.empty()) {
    throw UnknownName(start + "; there is the " + std::string(wordOf(others.front().kind)) + ' ' +
                      others.front().display);
  }
  if (const auto plain = findAll(file, parseName(asked.last), kinds); !plain.empty()) {
    std::string list;
    for (std::size_t i = 0; i < plain.size() && i < 5; ++i) {
      list += (i == 0 ? "" : ", ") + plain[i].display;
    }
    throw UnknownName(start + "; there is " + list);
  }
  const std::string known =
      "SELECT Name FROM Identifier WHERE Kind & " + std::to_string(kinds::numberOf(kinds)) +
      " UNION SELECT Name FROM Identifier JOIN (SELECT DISTINCT SourceNameId FROM Function)"
      " ON SourceNameId=IdentifierId";
  throw UnknownName(file.getPath() + ": nothing is named \"" + name + '"' +
                    suggestion(asked.last, file.texts(known)));
}

std::vector<long long> idsOf(const std::vector<NamedEntity>& entities, IdentifierKind kind) {
  std::vector<long long> ids;
  for (const NamedEntity& entity : entities) {
    if (entity.kind == kind) ids.insert(ids.end(), entity.ids.begin(), entity.ids.end());
  }
  return ids;
}

std::vector<long long> findFiles(const FactsFile& file, const std::string& asked) {
  namespace fs = std::filesystem;
  const bool isGlob = asked.find_first_of("*?[") != std::string::npos;
  std::string absolute = fs::absolute(asked).lexically_normal().string();
  while (absolute.size() > 1 && absolute.ends_with('/')) absolute.pop_back();
  std::string plain = fs::path(asked).lexically_normal().string();
  while (plain.size() > 1 && plain.ends_with('/')) plain.pop_back();
  const auto isMeant = [&](const std::string& path) {
    if (isGlob) {
      return fnmatch(asked.c_str(), path.c_str(), 0) == 0 ||
             fnmatch(absolute.c_str(), path.c_str(), 0) == 0 ||
             fnmatch(("*/" + asked).c_str(), path.c_str(), 0) == 0;
    }
    const auto isBelow = [&path](const std::string& directory) {
      return path == directory || path.starts_with(directory == "/" ? "/" : directory + "/");
    };
    return plain == "." ? isBelow(absolute) || !path.starts_with('/')
                        : isBelow(absolute) || isBelow(plain) || path.ends_with("/" + plain);
  };
  std::vector<long long> ids;
  std::vector<std::string> names;
  const Statement files = file.prepare("SELECT FileId, Path FROM File");
  while (file.step(files)) {
    const std::string path(textOf(files, 1));
    if (isMeant(path)) ids.push_back(sqlite3_column_int64(files.get(), 0));
    names.push_back(path.substr(path.rfind('/') + 1));
  }
  if (ids.empty()) {
    throw UnknownName(file.getPath() + ": no file of it is \"" + asked + '"' +
                      suggestion(fs::path(asked).filename().string(), names));
  }
  return ids;
}

}  // namespace fe_db_tools
