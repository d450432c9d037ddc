#include "finding.h"

#include <algorithm>
#include <tuple>

#include "canonical_text.h"
#include "record_kinds.h"

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
std::string plainName(const T& element) {
  if constexpr (std::is_same_v<T, dm::CallPoint>) {
    return nameOf(element.getCaller()) + " -> " + nameOf(element.getCallee());
  } else if constexpr (std::is_same_v<T, dm::Function>) {
    return nameOf(&element);
  } else {
    return textOf(element.getIdentifier());
  }
}

template <class Kind>
using Words = std::initializer_list<std::pair<Kind, const char*>>;
constexpr Words<dm::LinkageKind> kLinkages = {{kinds::kNoLinkage, "none"},
                                              {kinds::kExternalLinkage, "external"},
                                              {kinds::kInternalLinkage, "internal"}};
constexpr Words<dm::EffectKind> kEffects = {
    {kinds::kNoEffect, "none"}, {kinds::kHasEffects, "some"}, {kinds::kUnknownEffect, "unknown"}};
constexpr Words<dm::EntityKind> kEntities = {{dm::EntityKind::Variable, "variable"},
                                             {dm::EntityKind::Function, "function"},
                                             {dm::EntityKind::None, "none"}};
constexpr Words<dm::TypeKind> kForms = {{kinds::kBuiltin, "builtin"}, {kinds::kEnum, "enum"},
                                        {kinds::kStruct, "struct"},   {kinds::kUnion, "union"},
                                        {kinds::kClass, "class"},     {kinds::kTypedef, "typedef"}};

/// The word for a stored number, or the number.
template <class Kind>
std::string toWord(Kind kind, Words<Kind> words) {
  for (const auto& [known, word] : words) {
    if (kind == known) return word;
  }
  return std::to_string(kinds::numberOf(kind));
}

template <class T>
nlohmann::ordered_json describe(const T& element) {
  auto attributes = nlohmann::ordered_json::object();
  constexpr bool kIsFunction = std::is_same_v<T, dm::Function>;
  if constexpr (kIsFunction) {
    const std::string id = textOf(element.getIdentifier());
    if (id != nameOf(&element)) attributes["id"] = escaped(id);
  }
  if constexpr (std::is_base_of_v<dm::LinkedElement, T>) {
    attributes["linkage"] = toWord(element.getLinkage(), kLinkages);
    attributes["defined"] = element.getIsDefined();
  }
  if constexpr (kIsFunction) {
    attributes["special"] = element.getIsSpecial();
    attributes["effect"] = toWord(element.getEffect(), kEffects);
  } else if constexpr (std::is_same_v<T, dm::Variable>) {
    if (element.getType() != nullptr) attributes["type"] = escaped(plainName(*element.getType()));
  } else if constexpr (std::is_same_v<T, dm::Type>) {
    attributes["form"] = toWord(element.getKind(), kForms);
    attributes["unnamed"] = element.getUnnamed();
    attributes["local"] = element.getLocal();
    attributes["incomplete"] = element.getIncomplete();
  } else if constexpr (std::is_same_v<T, dm::Macro>) {
    attributes["shape"] = element.getIsObjectLike() ? "object" : "function";
    attributes["empty"] = element.getText().empty();
  } else if constexpr (std::is_same_v<T, dm::CallPoint>) {
    attributes["value"] = element.getIsValueUsed() ? "used" : "dropped";
  } else if constexpr (std::is_same_v<T, dm::ExternalIdentifier>) {
    attributes["entity"] = toWord(element.getEntityKind(), kEntities);
  }
  constexpr bool kHasNoCount = std::is_same_v<T, dm::EnumConstant> || std::is_same_v<T, dm::Label>;
  if constexpr (std::is_base_of_v<dm::NamedElement, T> && !kHasNoCount) {
    attributes["refs"] = element.getRefCount();
  }
  if constexpr (std::is_same_v<T, dm::Type>) attributes["tagRefs"] = element.getRefTagCount();
  return attributes;
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
  return std::visit([](auto* element) { return plainName(*element); }, finding);
}

std::string nameOf(const dm::Function* function) {
  if (function == nullptr) return "?";
  const dm::Identifier* written = function->getSourceName();
  return textOf(written != nullptr ? written : function->getIdentifier());
}

std::string escaped(std::string_view bytes) {
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
  const auto& tagged = kinds::kTagged;
  return std::find(std::begin(tagged), std::end(tagged), type.getKind()) != std::end(tagged);
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
