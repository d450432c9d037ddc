#pragma once

#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "fe_db/compilation_data.h"

/// The results of a search and how they are printed.
namespace fe_db_tools {

namespace dm = orvalesca::databases_merger;

/// An element, owned by the dataset that found it.
using Finding = std::variant<const dm::Function*, const dm::Variable*, const dm::Type*,
                             const dm::Macro*, const dm::Field*, const dm::EnumConstant*,
                             const dm::Label*, const dm::CallPoint*, const dm::ExternalIdentifier*>;

std::string_view kindOf(const Finding& finding);
/// Of an external name, that of its entity.
const dm::Localization& positionOf(const Finding& finding);
/// Empty without a file.
std::string_view pathOf(const Finding& finding);
/// Of a function the name in the source, of a call "CALLER -> CALLEE".
std::string nameOf(const Finding& finding);
std::string nameOf(const dm::Function* function);

/// Valid UTF-8 in one line, for any output.
std::string escaped(std::string_view bytes);
/// An object of flags, numbers and escaped texts.
nlohmann::ordered_json attributesOf(const Finding& finding);

/// By path, line, column, kind and name; those without a file come first.
bool isBefore(const Finding& a, const Finding& b);

bool hasTag(const dm::Type& type);
/// As SQLite counts them.
std::size_t charactersIn(std::string_view text);

/// "path:line:column: kind name [attributes]", one line each.
void printText(std::span<const Finding> findings);
/// One object per line.
void printJson(std::span<const Finding> findings);
/// One SARIF 2.1.0 document. REQUIRES: the question's results are what a checker reports.
void printSarif(std::span<const Finding> findings, std::string_view question);

}  // namespace fe_db_tools
