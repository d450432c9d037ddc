#pragma once

#include <memory>
#include <string>
#include <type_traits>

#include "fe_database/compilation_database/columns.h"
#include "fe_db/compilation_database.h"

struct sqlite3_stmt;

/// Field descriptors: each moves one value between a member of an element and a compiled
/// statement. Table descriptions pair them with their columns.
namespace orvalesca::databases_merger {

/// The descriptor of one column of table T.
template <class T>
class GenericDataField {
 public:
  virtual ~GenericDataField() = default;
  /// Binds the element's value to a parameter; parameters count from 1. Text is bound without a
  /// copy: the element stays alive and unchanged until the statement has run.
  virtual void bind(T& element, FrontendDatabase& db, sqlite3_stmt* statement, int index) = 0;
  /// Stores a column of the current row into the element; result columns count from 0.
  virtual void column(T& element, FrontendDatabase& db, sqlite3_stmt* statement, int index) = 0;
  virtual std::unique_ptr<GenericDataField> clone() const = 0;
};

/// How a value of type U passes to and from SQLite; column_value.h has the seven kinds.
template <class U>
struct ColumnValue;

/// Reports a bind that SQLite refused; the statement then runs with the parameter as it was.
void checkBind(int rc, sqlite3_stmt* statement);

/// The descriptor of a member of type U, reached through accessors that pass it by value or by
/// reference; one pair is set, the other null.
template <class T, class U>
class DataField : public GenericDataField<T> {
 public:
  using ValueGetter = U (T::*)() const;
  using ValueSetter = void (T::*)(U);
  using ReferenceGetter = const U& (T::*)() const;
  using ReferenceSetter = void (T::*)(const U&);

  DataField(ValueGetter getter, ValueSetter setter) : getValue(getter), setValue(setter) {
    static_assert(!std::is_same_v<U, std::string>,
                  "text is bound without a copy: use the accessors that pass it by reference");
  }
  DataField(ReferenceGetter getter, ReferenceSetter setter)
      : getReference(getter), setReference(setter) {}

  void bind(T& element, FrontendDatabase&, sqlite3_stmt* statement, int index) override {
    const int rc = getValue != nullptr
                       ? ColumnValue<U>::bind(statement, index, (element.*getValue)())
                       : ColumnValue<U>::bind(statement, index, (element.*getReference)());
    if (rc != 0) checkBind(rc, statement);
  }

  void column(T& element, FrontendDatabase& db, sqlite3_stmt* statement, int index) override {
    if constexpr (isEntity<U>) {
      // Two columns make the description; this one completes what the element holds already.
      (element.*
       setReference)(ColumnValue<U>::column(db, statement, index, (element.*getReference)()));
    } else if constexpr (std::is_same_v<U, std::string>) {
      ColumnValue<U>::column(db, statement, index, text);
      (element.*setReference)(text);
    } else if constexpr (ExtensionElements::has<T> && std::is_pointer_v<U>) {
      (element.*setValue)(ColumnValue<U>::known(db, statement, index));
    } else if (setValue != nullptr) {
      (element.*setValue)(ColumnValue<U>::column(db, statement, index));
    } else {
      (element.*setReference)(ColumnValue<U>::column(db, statement, index));
    }
  }

  std::unique_ptr<GenericDataField<T>> clone() const override {
    return std::make_unique<DataField>(*this);
  }

 private:
  ValueGetter getValue = nullptr;
  ValueSetter setValue = nullptr;
  ReferenceGetter getReference = nullptr;
  ReferenceSetter setReference = nullptr;
  std::string text;  ///< the latest row's, for the sake of its memory: most texts fit into that
};

}  // namespace orvalesca::databases_merger
