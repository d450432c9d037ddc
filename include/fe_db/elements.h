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
#include "fe_db/include.h"
#include "fe_db/label.h"
#include "fe_db/macro.h"
#include "fe_db/macro_expansion.h"
#include "fe_db/macro_invocation.h"
#include "fe_db/macro_invocation_code_origin.h"
#include "fe_db/property.h"
#include "fe_db/reference.h"
#include "fe_db/type.h"
#include "fe_db/type_reference.h"
#include "fe_db/unit.h"
#include "fe_db/unit_file.h"
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

/// The tables of both kinds of database, those of a compilation database only, and those that a
/// compilation database may lack: the cross-reference. Whatever can follow from these three lists
/// follows from them.
using PreprocessingElements =
    TypeList<File, Identifier, Macro, MacroInvocation, MacroInvocationCodeOrigin, MacroExpansion>;
using CompilationOnlyElements = TypeList<Type, TypeReference, Variable, Function,
                                         ExternalIdentifier, Field, EnumConstant, Label, CallPoint>;
using ExtensionElements = TypeList<Unit, UnitFile, Include, Reference, Property>;

template <class... First, class... Second>
TypeList<First..., Second...> concatenate(TypeList<First...>, TypeList<Second...>);

/// The fifteen element classes of every compilation database, in table order.
using Elements = decltype(concatenate(PreprocessingElements{}, CompilationOnlyElements{}));
using AllElements = decltype(concatenate(Elements{}, ExtensionElements{}));

}  // namespace orvalesca::databases_merger
