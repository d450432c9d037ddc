#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "descriptor.h"

namespace fe_db_tools {

/// Where a product, one file or several, is built before it gets its name: a directory beside it,
/// ".NAME.fe_db-new". Everything in it has a name that begins with "fe_db-"; what does not, or
/// another thing of the directory's name, was made by somebody else and is never touched. So a
/// killed run's leftover is recognised by names alone, whatever a power failure has left of the
/// contents. The directory is locked while the object lives, and goes away with it.
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
  /// The name of the product that a directory of this name is for; empty when the name is another.
  static std::string productNameOf(const std::string& directoryName);

  /// For a run that finds the product made: removes what a killed run has left. What is in use, or
  /// somebody else's, is not in the way then and stays.
  static void removeLeftover(const std::string& product);

  /// All that is there while a database is built, in an order in which it can be removed.
  std::vector<std::string> contents() const;

 private:
  bool take(std::chrono::steady_clock::time_point deadline);

  std::string product_;
  std::string path_;
  std::string lockPath_;
  Descriptor lock_;
};

}  // namespace fe_db_tools
