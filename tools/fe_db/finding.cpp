#include "finding.h"

#include <tuple>

#include "canonical_text.h"

namespace fe_db_tools {
namespace {

/// In the order of the alternatives of Finding.
constexpr std::string_view kKinds[] = {"function",      "variable", "type", "macro",   "field",
                                       "enum-constant", "label",    "call", "external"};
static_assert(std::size(kKinds) == std::variant_size_v<Finding>);

std::string textOf(const dm::Identifier* identifier) {
  return identifier == nullptr ? "?" : identifier->getName();
}

template <class T>
std::string shownName(const T& element) {
  if constexpr (std::is_same_v<T, dm::CallPoint>) {
    return nameOf(element.getCaller()) + " -> " + nameOf(element.getCallee());
  } else if constexpr (std::is_same_v<T, dm::Function>) {
    return nameOf(&element);
  } else {
    return textOf(element.getIdentifier());
  }
}

using Words = std::initializer_list<std::pair<unsigned, const char*>>;
constexpr Words kLinkages = {{0, "none"}, {1, "external"}, {2, "internal"}};
constexpr Words kEffects = {{0, "none"}, {1, "some"}, {2, "unknown"}};
constexpr Words kEntities = {{0, "variable"}, {1, "function"}, {~0U, "none"}};
constexpr Words kForms = {{0, "builtin"}, {4, "enum"},    {64, "struct"},
                          {128, "union"}, {256, "class"}, {512, "typedef"}};

/// The word for a stored number, or the number.
template <class Kind>
std::string worded(Kind kind, Words words) {
  for (const auto& [known, word] : words) {
    if (static_cast<unsigned>(kind) == known) return word;
  }
  return std::to_string(static_cast<unsigned>(kind));
}

template <class T>
nlohmann::ordered_json describe(const T& element) {
  auto said = nlohmann::ordered_json::object();
  constexpr bool kIsFunction = std::is_same_v<T, dm::Function>;
  if constexpr (kIsFunction) {
    const std::string id = textOf(element.getIdentifier());
    if (id != nameOf(&element)) said["id"] = shown(id);
  }
  if constexpr (std::is_base_of_v<dm::LinkedElement, T>) {
    said["linkage"] = worded(element.getLinkage(), kLinkages);
    said["defined"] = element.getIsDefined();
  }
  if constexpr (kIsFunction) {
    said["special"] = element.getIsSpecial();
    said["effect"] = worded(element.getEffect(), kEffects);
  } else if constexpr (std::is_same_v<T, dm::Variable>) {
    if (element.getType() != nullptr) said["type"] = shown(shownName(*element.getType()));
  } else if constexpr (std::is_same_v<T, dm::Type>) {
    said["form"] = worded(element.getKind(), kForms);
    said["unnamed"] = element.getUnnamed();
    said["local"] = element.getLocal();
    said["incomplete"] = element.getIncomplete();
  } else if constexpr (std::is_same_v<T, dm::Macro>) {
    said["shape"] = element.getIsObjectLike() ? "object" : "function";
    said["empty"] = element.getText().empty();
  } else if constexpr (std::is_same_v<T, dm::CallPoint>) {
    said["value"] = element.getIsValueUsed() ? "used" : "dropped";
  } else if constexpr (std::is_same_v<T, dm::ExternalIdentifier>) {
    said["entity"] = worded(element.getEntityKind(), kEntities);
  }
  constexpr bool kHasNoCount = std::is_same_v<T, dm::EnumConstant> || std::is_same_v<T, dm::Label>;
  if constexpr (std::is_base_of_v<dm::NamedElement, T> && !kHasNoCount) {
    said["refs"] = element.getRefCount();
  }
  if constexpr (std::is_same_v<T, dm::Type>) said["tagRefs"] = element.getRefTagCount();
  return said;
}

const dm::Localization& placeOf(const dm::LocatedElement& element) {
  return element.getLocalization();
}

const dm::Localization& placeOf(const dm::ExternalIdentifier& external) {
  static const dm::Localization nowhere;
  const dm::LinkedElement* entity = external.getDescription().entity;
  return entity == nullptr ? nowhere : entity->getLocalization();
}

}  // namespace

std::string_view kindOf(const Finding& finding) { return kKinds[finding.index()]; }

const dm::Localization& positionOf(const Finding& finding) {
  return std::visit(
      [](auto* element) -> auto& { return placeOf(*element); }, finding);
}

std::string_view pathOf(const Finding& finding) {
  const dm::File* file = positionOf(finding).file;
  return file == nullptr ? std::string_view() : file->getPath();
}

std::string nameOf(const Finding& finding) {
  return std::visit([](auto* element) { return shownName(*element); }, finding);
}

std::string nameOf(const dm::Function* function) {
  if (function == nullptr) return "?";
  const dm::Identifier* written = function->getSourceName();
  return textOf(written != nullptr ? written : function->getIdentifier());
}

std::string shown(std::string_view bytes) {
  std::string text;
  appendEscaped(text, bytes, Colons::plain);
  return text;
}

nlohmann::ordered_json attributesOf(const Finding& finding) {
  return std::visit([](auto* element) { return describe(*element); }, finding);
}

bool isBefore(const Finding& a, const Finding& b) {
  const auto key = [](const Finding& finding) {
    const dm::Localization& at = positionOf(finding);
    return std::tuple(pathOf(finding), at.line, at.column, kindOf(finding));
  };
  const auto left = key(a), right = key(b);
  return left != right ? left < right : nameOf(a) < nameOf(b);
}

bool hasTag(const dm::Type& type) {
  const auto kind = static_cast<unsigned>(type.getKind());
  return kind == 4 || kind == 64 || kind == 128 || kind == 256;
}

std::size_t charactersIn(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++count) {
    const bool isLead = static_cast<unsigned char>(text[i++]) >= 0xc0;
    while (isLead && i < text.size() && (text[i] & 0xc0) == 0x80) ++i;
  }
  return count;
}

}  // namespace fe_db_tools
