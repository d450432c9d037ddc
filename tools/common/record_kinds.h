#pragma once

#include "fe_db/kinds.h"

/// What the numbers of the stored kinds mean when this front end writes them. DO NOT CHANGE a
/// value: older files hold it.
namespace fe_db_tools::kinds {

namespace dm = orvalesca::databases_merger;

inline constexpr dm::FileKind kMainSource{1};
inline constexpr dm::FileKind kUserHeader{2};
inline constexpr dm::FileKind kSystemHeader{3};
inline constexpr dm::FileKind kForcedInclude{4};  ///< by -include

inline constexpr results_api::LanguageKind kC{1};
inline constexpr results_api::LanguageKind kCpp{2};

inline constexpr dm::TypeKind kBuiltin = dm::TypeKind::None;
inline constexpr dm::TypeKind kEnum = dm::TypeKind::Tagged4;
inline constexpr dm::TypeKind kStruct = dm::TypeKind::Tagged64;
inline constexpr dm::TypeKind kUnion = dm::TypeKind::Tagged128;
inline constexpr dm::TypeKind kClass = dm::TypeKind::Tagged256;
inline constexpr dm::TypeKind kTypedef = dm::TypeKind::Named512;

inline constexpr dm::LinkageKind kNoLinkage = dm::LinkageKind::None;
inline constexpr dm::LinkageKind kExternalLinkage = dm::LinkageKind::External;
inline constexpr dm::LinkageKind kInternalLinkage{2};

inline constexpr dm::EffectKind kHasEffects{1};

/// Columns that tell the origin of what stands in no file.
inline constexpr unsigned kCommandLineColumn = 1;
inline constexpr unsigned kPredefinedColumn = 3;

}  // namespace fe_db_tools::kinds
