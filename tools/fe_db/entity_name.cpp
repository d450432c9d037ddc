#include "entity_name.h"

#include <cxxabi.h>

#include <cctype>
#include <cstdlib>
#include <memory>

namespace fe_db_tools {
namespace {

constexpr std::string_view kString =
    "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >";

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
}

/// Empty if the identifier is no mangled name.
std::string demangled(std::string_view identifier) {
  if (!identifier.starts_with("_Z")) return {};
  // A function that only its own unit sees has a path after it.
  const std::string mangled(identifier.substr(0, identifier.find('@')));
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> plain(
      abi::__cxa_demangle(mangled.c_str(), nullptr, nullptr, &status), std::free);
  if (status != 0) return {};
  std::string text = plain.get();
  replaceAll(text, kString, "std::string");
  replaceAll(text, "std::__cxx11::", "std::");
  replaceAll(text, "> >", ">>");
  return text;
}

struct Parts {
  std::string head;  ///< scope and name
  std::optional<std::string> parameters;
};

/// The parameters are in the last pair of parentheses that is not a part of operator().
Parts splitParameters(std::string_view text) {
  const std::size_t close = text.rfind(')');
  if (close == std::string_view::npos) return {std::string(text), std::nullopt};
  int depth = 0;
  std::size_t open = close + 1;
  do {
    --open;
    depth += text[open] == ')' ? 1 : text[open] == '(' ? -1 : 0;
  } while (depth > 0 && open > 0);
  const std::string_view head = text.substr(0, open);
  if (head.ends_with("operator") || head.empty()) return {std::string(text), std::nullopt};
  return {std::string(head), std::string(text.substr(open + 1, close - open - 1))};
}

/// Where the last component begins: after the last "::" outside of brackets.
std::size_t lastComponent(std::string_view head) {
  std::size_t begin = 0;
  int depth = 0;
  for (std::size_t i = 0; i < head.size(); ++i) {
    const bool isStart = i == begin;
    if (isStart && head.substr(i).starts_with("operator")) break;  // its brackets are its name
    if (head[i] == '<' || head[i] == '(') ++depth;
    if (head[i] == '>' || head[i] == ')') --depth;
    if (depth == 0 && head.substr(i).starts_with("::")) begin = ++i + 1;
  }
  return begin;
}

std::string scopeOf(std::string_view head) {
  const std::size_t begin = lastComponent(head);
  return std::string(head.substr(0, begin < 2 ? 0 : begin - 2));
}

/// Without blanks, and with `const` after its type: "const T&" is "Tconst&".
std::string normalized(std::string_view parameters) {
  std::string all;
  std::string one;
  int depth = 0;
  const auto finish = [&] {
    const std::size_t begin = one.find_first_not_of(' ');
    one.erase(0, begin == std::string::npos ? one.size() : begin);
    if (one.starts_with("const ")) {
      one.erase(0, 6);
      const std::size_t end = one.find_first_of("*&");
      one.insert(end == std::string::npos ? one.size() : end, " const");
    }
    replaceAll(one, " ", "");
    all += one;
    one.clear();
  };
  for (const char c : parameters) {
    depth += c == '<' || c == '(' ? 1 : c == '>' || c == ')' ? -1 : 0;
    if (c == ',' && depth == 0) {
      finish();
      all += ',';
    } else {
      one += c;
    }
  }
  finish();
  return all == "void" ? "" : all;
}

std::string withoutScopes(const std::string& text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 2, "::") != 0) {
      plain += text[i];
      continue;
    }
    while (!plain.empty() &&
           (std::isalnum(static_cast<unsigned char>(plain.back())) != 0 || plain.back() == '_')) {
      plain.pop_back();
    }
    ++i;
  }
  return plain;
}

/// The types as they are asked for may lack their scopes.
bool areSameParameters(std::string_view asked, std::string_view known) {
  const std::string left = normalized(asked), right = normalized(known);
  return left == right || left == withoutScopes(right);
}

}  // namespace

std::string qualifiedName(std::string_view scope, std::string_view name,
                          std::string_view identifier) {
  std::string full = demangled(identifier);
  if (!full.empty()) return full;
  if (!scope.empty()) full.append(scope).append("::");
  return full.append(name);
}

AskedName parseName(std::string text) {
  AskedName asked;
  auto [head, parameters] = splitParameters(text);
  if (head.starts_with("::")) head.erase(0, 2);
  asked.scope = scopeOf(head);
  asked.last = head.substr(lastComponent(head));
  asked.parameters = std::move(parameters);
  asked.text = std::move(text);
  return asked;
}

bool matches(const AskedName& asked, std::string_view name, const std::string& qualified) {
  if (asked.last != name) return false;
  const auto [head, parameters] = splitParameters(qualified);
  if (!asked.scope.empty()) {
    const std::string scope = scopeOf(head);
    if (!("::" + scope).ends_with("::" + asked.scope)) return false;
  }
  return !asked.parameters || (parameters && areSameParameters(*asked.parameters, *parameters));
}

}  // namespace fe_db_tools
