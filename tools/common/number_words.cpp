#include "number_words.h"

#include <algorithm>
#include <stdexcept>

#include "record_kinds.h"

namespace fe_db_tools {
namespace {

namespace library = orvalesca::databases_merger;

template <class Kind>
constexpr NumberWord word(Kind kind, std::string_view text) {
  return {static_cast<std::uint64_t>(kind), text};
}

constexpr NumberWord kFileKinds[] = {
    word(kinds::kMainSource, "main-source"), word(kinds::kUserHeader, "header"),
    word(kinds::kSystemHeader, "system-header"), word(kinds::kForcedInclude, "forced-include")};
constexpr NumberWord kLanguages[] = {word(kinds::kC, "C"), word(kinds::kCpp, "C++")};
constexpr NumberWord kLinkages[] = {word(kinds::kNoLinkage, "none"),
                                    word(kinds::kExternalLinkage, "external"),
                                    word(kinds::kInternalLinkage, "internal")};
constexpr NumberWord kEffects[] = {word(kinds::kNoEffect, "none"), word(kinds::kHasEffects, "some"),
                                   word(kinds::kUnknownEffect, "unknown")};
constexpr NumberWord kForms[] = {
    word(kinds::kBuiltin, "builtin"), word(kinds::kEnum, "enum"),
    word(kinds::kStruct, "struct"),   word(kinds::kUnion, "union"),
    word(kinds::kClass, "class"),     word(kinds::kTypedef, "typedef")};
constexpr NumberWord kEntities[] = {word(library::EntityKind::None, "none"),
                                    word(library::EntityKind::Variable, "variable"),
                                    word(library::EntityKind::Function, "function")};

using library::IdentifierKind;
constexpr NumberWord kUses[] = {
    word(IdentifierKind::Type, "type"),         word(IdentifierKind::Function, "function"),
    word(IdentifierKind::Variable, "variable"), word(IdentifierKind::Macro, "macro"),
    word(IdentifierKind::External, "external"), word(IdentifierKind::EnumConstant, "enum-constant"),
    word(IdentifierKind::Field, "field"),       word(IdentifierKind::Label, "label")};

using library::IncludeKind;
constexpr NumberWord kIncludes[] = {
    word(IncludeKind::Quoted, "quoted"), word(IncludeKind::Angled, "angled"),
    word(IncludeKind::ByMacro, "macro"), word(IncludeKind::Next, "next"),
    word(IncludeKind::Forced, "forced")};

using library::ReferenceRoles;
constexpr NumberWord kRoles[] = {word(ReferenceRoles::Read, "read"),
                                 word(ReferenceRoles::Write, "write"),
                                 word(ReferenceRoles::Call, "call"),
                                 word(ReferenceRoles::AddressTaken, "address"),
                                 word(ReferenceRoles::TypeUse, "type"),
                                 word(ReferenceRoles::BaseClass, "base"),
                                 word(ReferenceRoles::Overrides, "override"),
                                 word(ReferenceRoles::LabelJump, "jump"),
                                 word(ReferenceRoles::OffsetOf, "offsetof"),
                                 word(ReferenceRoles::Conditional, "conditional"),
                                 word(ReferenceRoles::Expansion, "expansion"),
                                 word(ReferenceRoles::Implicit, "implicit"),
                                 word(ReferenceRoles::NotEvaluated, "not-evaluated"),
                                 word(ReferenceRoles::ThroughMacroBody, "macro-body"),
                                 word(ReferenceRoles::WithinItself, "within-itself")};

using library::PropertyFlags;
constexpr NumberWord kFlags[] = {
    word(PropertyFlags::Parameter, "parameter"),
    word(PropertyFlags::Local, "local"),
    word(PropertyFlags::StaticMember, "static-member"),
    word(PropertyFlags::PossiblyUnused, "maybe-unused"),
    word(PropertyFlags::NonTrivialClass, "non-trivial"),
    word(PropertyFlags::Virtual, "virtual"),
    word(PropertyFlags::PureVirtual, "pure"),
    word(PropertyFlags::Overrides, "overrides"),
    word(PropertyFlags::IsOverridden, "overridden"),
    word(PropertyFlags::IncludeGuard, "include-guard"),
    word(PropertyFlags::PackedOrAligned, "packed"),
    word(PropertyFlags::ImplicitOrDefaulted, "defaulted"),
    word(PropertyFlags::Deleted, "deleted"),
    word(PropertyFlags::Inline, "inline"),
    word(PropertyFlags::TemplatePattern, "template"),
    word(PropertyFlags::Specialisation, "specialisation"),
    word(PropertyFlags::CalledBySystem, "called-by-system"),
    word(PropertyFlags::ExportedOrRetained, "exported"),
    word(PropertyFlags::WeakOrAlias, "weak"),
    word(PropertyFlags::ReturnsNothing, "void"),
    word(PropertyFlags::DoesNotReturn, "noreturn"),
    word(PropertyFlags::PureOrConst, "pure-attribute"),
    word(PropertyFlags::Deprecated, "deprecated"),
    word(PropertyFlags::BitField, "bit-field"),
    word(PropertyFlags::Anonymous, "anonymous"),
    word(PropertyFlags::CatchVariable, "catch"),
    word(PropertyFlags::StructuredBinding, "structured-binding"),
    word(PropertyFlags::CleanupAttribute, "cleanup"),
    word(PropertyFlags::LambdaMember, "lambda-member"),
    word(PropertyFlags::Undefined, "undefined-again"),
    word(PropertyFlags::DeclaredByMacro, "declared-by-macro"),
    word(PropertyFlags::NamedInExcludedText, "named-in-excluded-text")};

constexpr Vocabulary kAll[] = {
    {"File", "Kind", false, kFileKinds},       {"File", "Lang", false, kLanguages},
    {"Identifier", "Kind", true, kUses},       {"Type", "Kind", false, kForms},
    {"Variable", "Linkage", false, kLinkages}, {"Function", "Linkage", false, kLinkages},
    {"Function", "Effect", false, kEffects},   {"ExternalIdentifier", "Kind", false, kEntities},
    {"Include", "Kind", true, kIncludes},      {"Reference", "EntityKind", false, kUses},
    {"Reference", "Roles", true, kRoles},      {"Property", "EntityKind", false, kUses},
    {"Property", "Flags", true, kFlags}};

/// As SQLite has it: signed.
std::string literal(std::uint64_t number) {
  return std::to_string(static_cast<std::int64_t>(number));
}

}  // namespace

const std::span<const Vocabulary> kVocabularies = kAll;

const Vocabulary& vocabularyOf(std::string_view table, std::string_view column) {
  for (const Vocabulary& known : kVocabularies) {
    if (known.table == table && known.column == column) return known;
  }
  throw std::logic_error("no words for " + std::string(table));
}

std::string wordSql(const Vocabulary& vocabulary, const std::string& number) {
  std::string sql;
  if (vocabulary.isMask) {
    for (const auto& [bit, word] : vocabulary.words) {
      sql += (sql.empty() ? "rtrim(" : " || ") + ("CASE WHEN " + number) + " & " + literal(bit) +
             " THEN '" + std::string(word) + ",' ELSE '' END";
    }
    return sql + ", ',')";
  }
  for (const auto& [value, word] : vocabulary.words) {
    sql += " WHEN " + literal(value) + " THEN '" + std::string(word) + "'";
  }
  return "CASE " + number + sql + " ELSE CAST(" + number + " AS TEXT) END";
}

std::uint64_t bitOf(const Vocabulary& vocabulary, std::string_view word) {
  const auto known = std::ranges::find(vocabulary.words, word, &NumberWord::word);
  return known == vocabulary.words.end() ? 0 : known->number;
}

}  // namespace fe_db_tools
