#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "descriptor.h"

namespace fe_db_tools {

/// Where a product, one file or several, is built before it gets its name: a directory next to it,
/// ".NAME.fe_db-new". Everything in it has a name that begins with "fe_db-"; other files, or
/// another kind of file of the directory's name, are foreign and never changed. So a
/// killed run's leftover is recognised by names alone, whatever a power failure has left of the
/// contents. The directory is locked while the object lives, and is removed with it.
class WorkDirectory {
 public:
  static constexpr int kPatient = 1'000'000;

  /// Waits while another process builds the same product, up to so many seconds: check afterwards
  /// whether it is there now. Removes what a killed run has left. Throws std::runtime_error.
  explicit WorkDirectory(std::string product, int waitSeconds = kPatient);
  ~WorkDirectory();
  WorkDirectory(const WorkDirectory&) = delete;
  WorkDirectory& operator=(const WorkDirectory&) = delete;

  /// The path of a file in the directory of this product, which need not be there yet.
  static std::string pathOf(const std::string& product, const std::string& ending = "");
  /// The name of the product that a directory of this name is for; empty for other names.
  static std::string productNameOf(const std::string& directoryName);

  /// For a run that finds the product complete: removes the leftovers of a killed run. What is in
  /// use, or foreign, does no harm then and is kept.
  static void removeLeftover(const std::string& product);

  /// All files that exist while a database is built, in an order in which it can be removed.
  std::vector<std::string> contents() const;

 private:
  bool take(std::chrono::steady_clock::time_point deadline);

  std::string product;
  std::string path;
  std::string lockPath;
  Descriptor lock;
};

}  // namespace fe_db_tools
