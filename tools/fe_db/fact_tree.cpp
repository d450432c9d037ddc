#include "fact_tree.h"

#include <nlohmann/json.hpp>
#include <unordered_set>

#include "answers.h"
#include "output.h"

namespace fe_db_tools {
namespace {

/// A function is all rows of its identifier.
struct Node {
  long long key;
  std::string name;
  std::string place = {};
};

/// Columns: key of the answer, its name, path, line, column; ?1 is the key asked for.
std::string stepsSql(const Request& request, std::string_view question) {
  const bool isUp = question == "callers";
  if (isUp || question == "callees") {
    const std::string from = isUp ? "callee" : "caller", to = isUp ? "caller" : "callee";
    return "SELECT t.IdentifierId, qualified(" + to + "_scope, " + to + ", " + to +
           "_identifier), path, line, column FROM " + request.file.view("fe_calls") +
           " JOIN Function AS t ON t.FunctionId=" + to + "_id WHERE " + from +
           "_id IN (SELECT FunctionId FROM Function WHERE IdentifierId=?1) ORDER BY path, line, "
           "column";
  }
  const std::string from = question == "includers" ? "included_id" : "file_id";
  const std::string to = question == "includers" ? "file_id" : "included_id";
  return "SELECT " + to + ", " + (question == "includers" ? "path" : "included") +
         ", path, line, NULL FROM " + request.file.view("fe_includes") + " WHERE " + from +
         "=?1 ORDER BY path, line";
}

std::vector<Node> rootsOf(const Request& request) {
  std::vector<Node> roots;
  const auto add = [&](const std::string& sql, const std::string& name) {
    const Statement rows = request.file.prepare(sql);
    while (request.file.step(rows)) {
      roots.push_back({sqlite3_column_int64(rows.get(), 0),
                       name.empty() ? std::string(textOf(rows, 1)) : name});
    }
  };
  for (const NamedEntity& entity : request.entities) {
    add("SELECT DISTINCT IdentifierId FROM Function WHERE FunctionId IN " + idList(entity.ids),
        entity.display);
  }
  if (!request.files.empty()) {
    add("SELECT FileId, Path FROM File WHERE FileId IN " + idList(request.files) + " ORDER BY Path",
        "");
  }
  return roots;
}

class Tree {
 public:
  Tree(const Request& request, const Question& question, unsigned depth, bool json)
      : file(request.file),
        steps(file.prepare(stepsSql(request, question.text))),
        most(depth),
        json(json) {}

  void print(const Node& node, unsigned depth, const std::string& parent) {
    const std::vector<Node> children = depth < most ? childrenOf(node) : std::vector<Node>();
    const bool isRepeated = !children.empty() && !expanded.insert(node.key).second;
    printNode(node, depth, parent, isRepeated);
    if (isRepeated) return;
    for (const Node& child : children) print(child, depth + 1, node.name);
  }

 private:
  /// Each once, with the first of its places.
  std::vector<Node> childrenOf(const Node& node) {
    sqlite3_reset(steps.get());
    sqlite3_bind_int64(steps.get(), 1, node.key);
    std::vector<Node> children;
    std::unordered_set<long long> known;
    while (file.step(steps)) {
      const long long key = sqlite3_column_int64(steps.get(), 0);
      if (isNull(steps, 1) || !known.insert(key).second) continue;
      children.push_back({key, std::string(textOf(steps, 1)), placeText(steps, 2, 3, 4)});
    }
    return children;
  }

  void printNode(const Node& node, unsigned depth, const std::string& parent, bool isRepeated) {
    if (json) {
      nlohmann::ordered_json object = {{"version", 1}, {"depth", depth}};
      object["name"] = escapedText(node.name);
      if (depth > 0) object["parent"] = escapedText(parent);
      if (depth > 0) object["place"] = node.place;
      object["repeated"] = isRepeated;
      return fe_db_tools::print(object.dump() + '\n');
    }
    std::string line(2 * static_cast<std::size_t>(depth), ' ');
    line += escapedText(node.name);
    if (depth > 0) line += "  " + node.place;
    fe_db_tools::print(line + (isRepeated ? "  (shown above)\n" : "\n"));
  }

  const FactsFile& file;
  Statement steps;
  unsigned most;
  bool json;
  std::unordered_set<long long> expanded;
};

}  // namespace

void printTree(const Request& request, const Question& question, unsigned depth, bool json) {
  Tree tree(request, question, depth, json);
  for (const Node& root : rootsOf(request)) tree.print(root, 0, "");
}

bool hasTree(const Question& question) {
  return question.options.find("--depth") != std::string_view::npos;
}

}  // namespace fe_db_tools
