#pragma once

#include <memory>

#include "fe_database/compilation_database/column_value.h"
#include "fe_database/compilation_database/columns.h"
#include "fe_database/compilation_database/table_description.h"

namespace orvalesca::databases_merger {

/// The descriptor of a column of T; the accessors have the form for values or for references.
template <class T, class Column>
std::unique_ptr<GenericDataField<T>> fieldOf(const Column& column) {
  using Field = DataField<T, typename Column::Value>;
  if constexpr (std::is_convertible_v<decltype(column.get), typename Field::ValueGetter>) {
    return std::make_unique<Field>(static_cast<typename Field::ValueGetter>(column.get),
                                   static_cast<typename Field::ValueSetter>(column.set));
  } else {
    return std::make_unique<Field>(static_cast<typename Field::ReferenceGetter>(column.get),
                                   static_cast<typename Field::ReferenceSetter>(column.set));
  }
}

/// What a DatabaseColumn knows of a column's flags.
inline constexpr std::uint32_t kDescribedFlags = kId | kKey | kFirstStays;

/// Fills in the table of T from the list of columns.
template <class T>
void describe(TableDescription<T>& table) {
  table.name = TableColumns<T>::kName;
  if constexpr (requires { TableColumns<T>::kOrderBy; }) {
    table.hasOrderBy = true;
    table.orderBy = TableColumns<T>::kOrderBy;
  }
  eachColumn<T>([&table](const auto& column) {
    table.addField({column.name, column.flags & kDescribedFlags}, fieldOf<T>(column));
  });
}

}  // namespace orvalesca::databases_merger
