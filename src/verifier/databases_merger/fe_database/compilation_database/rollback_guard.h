#pragma once

#include <exception>

#include "persistence/database.h"

namespace orvalesca::databases_merger {

/// Rolls back when an exception leaves the scope. An ordinary end of the scope is the owner's.
class RollbackOnException {
 public:
  explicit RollbackOnException(persistence::Database& db) : db(db) {}
  RollbackOnException(const RollbackOnException&) = delete;
  RollbackOnException& operator=(const RollbackOnException&) = delete;
  ~RollbackOnException() {
    if (std::uncaught_exceptions() > exceptionsBefore) db.rollbackTransaction();
  }

 private:
  persistence::Database& db;
  int exceptionsBefore = std::uncaught_exceptions();
};

}  // namespace orvalesca::databases_merger
