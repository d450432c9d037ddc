#pragma once

#include <chrono>
#include <string>

namespace persistence {

/// An exclusive advisory lock on a file, by which writers of one database queue up.
class QueueLock {
 public:
  QueueLock() = default;
  QueueLock(const QueueLock&) = delete;
  QueueLock& operator=(const QueueLock&) = delete;
  ~QueueLock() { release(); }

  /// Waits for the lock until the deadline. False with `reason` set when it could not be had.
  bool take(const std::string& path, std::chrono::steady_clock::time_point deadline,
            std::string& reason);
  void release();

 private:
  int descriptor = -1;
};

}  // namespace persistence
