#pragma once

#include <tuple>
#include <type_traits>

#include "fe_db/call_point.h"
#include "fe_db/enum_constant.h"
#include "fe_db/external_identifier.h"
#include "fe_db/field.h"
#include "fe_db/file.h"
#include "fe_db/function.h"
#include "fe_db/identifier.h"
#include "fe_db/label.h"
#include "fe_db/macro.h"
#include "fe_db/macro_expansion.h"
#include "fe_db/macro_invocation.h"
#include "fe_db/macro_invocation_code_origin.h"
#include "fe_db/type.h"
#include "fe_db/type_reference.h"
#include "fe_db/variable.h"

namespace orvalesca::databases_merger {

template <class... T>
struct TypeList {
  /// The list as arguments of another template.
  template <template <class...> class Of>
  using Apply = Of<T...>;

  template <class U>
  static constexpr bool has = (std::is_same_v<U, T> || ...);

  /// Calls visit.operator()<T>() for each class in turn.
  template <class Visitor>
  static void each(Visitor&& visit) {
    (visit.template operator()<T>(), ...);
  }
};

/// The tables of both kinds of database, and those of a compilation database only. Whatever can
/// follow from these two lists follows from them.
using PreprocessingElements =
    TypeList<File, Identifier, Macro, MacroInvocation, MacroInvocationCodeOrigin, MacroExpansion>;
using CompilationOnlyElements = TypeList<Type, TypeReference, Variable, Function,
                                         ExternalIdentifier, Field, EnumConstant, Label, CallPoint>;

template <class... First, class... Second>
TypeList<First..., Second...> concatenate(TypeList<First...>, TypeList<Second...>);

/// The fifteen element classes, in table order.
using Elements = decltype(concatenate(PreprocessingElements{}, CompilationOnlyElements{}));

}  // namespace orvalesca::databases_merger
