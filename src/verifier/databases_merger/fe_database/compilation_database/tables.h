#pragma once

#include <set>
#include <tuple>
#include <vector>

#include "fe_database/compilation_database/id_cache.h"
#include "fe_database/compilation_database/table_statement.h"

namespace orvalesca::databases_merger {

/// What a database has of one element class.
template <class T>
struct Table {
  TableDescription<T> description;
  std::vector<TableStatement<T>> statements;  ///< indexed by StatementKind; empty without columns
  IdCache<T> idCache;
  bool isThere = true;                ///< in the file; known once it is connected
  std::set<long long> idsWithoutRow;  ///< of idCache, those whose element has no row
};

template <class... T>
using TableTuple = std::tuple<Table<T>...>;

/// The tables of a database. All are named; those of its kind have columns and statements.
struct Tables : AllElements::Apply<TableTuple> {
  explicit Tables(DatabaseKind kind);

  template <class T>
  Table<T>& of() {
    return std::get<Table<T>>(*this);
  }
  template <class T>
  const Table<T>& of() const {
    return std::get<Table<T>>(*this);
  }
  template <class T>
  TableStatement<T>& statement(StatementKind kind) {
    return of<T>().statements[static_cast<std::size_t>(kind)];
  }
};

}  // namespace orvalesca::databases_merger
