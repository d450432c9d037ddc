#pragma once

#include <string>
#include <utility>
#include <vector>

#include "fe_database/compilation_database/data_field.h"
#include "persistence/column.h"

namespace orvalesca::databases_merger {

/// One table: its columns with their descriptors. The order of the columns is the order of every
/// statement text, of the parameters, and of reading a row.
template <class T>
struct TableDescription {
  using Field = std::unique_ptr<GenericDataField<T>>;

  std::string name;
  std::vector<std::pair<persistence::DatabaseColumn, Field>> columns;
  bool hasOrderBy = false;
  std::string orderBy;  ///< a column; orders the list of ids only

  /// Appends a copy of the column and a clone of the descriptor.
  void addField(const persistence::DatabaseColumn& column, Field field) {
    columns.emplace_back(column, field->clone());
  }
};

}  // namespace orvalesca::databases_merger
