#pragma once

#include <string>
#include <vector>

namespace fe_db_tools {

/// While it lives, a signal that ends the program (SIGINT, SIGTERM, SIGHUP) removes these files and
/// directories first, in this order. REQUIRES: one at a time.
class RemovedOnSignal {
 public:
  explicit RemovedOnSignal(std::vector<std::string> names);
  ~RemovedOnSignal();
  RemovedOnSignal(const RemovedOnSignal&) = delete;
  RemovedOnSignal& operator=(const RemovedOnSignal&) = delete;
};

}  // namespace fe_db_tools
