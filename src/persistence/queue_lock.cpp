#include "queue_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <thread>

namespace persistence {

bool QueueLock::take(const std::string& path, std::chrono::steady_clock::time_point deadline,
                     std::string& reason) {
  using namespace std::chrono_literals;
  descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (descriptor < 0) {
    reason = std::strerror(errno);
    return false;
  }
  // Advisory locks have no timed wait. Polling starts fast, for short queues, and slows down.
  auto pause = std::chrono::milliseconds(1);
  while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    const bool isHeld = errno == EWOULDBLOCK || errno == EINTR;
    const auto now = std::chrono::steady_clock::now();
    if (!isHeld || now >= deadline) {
      reason = isHeld ? "still held by another process" : std::strerror(errno);
      release();
      return false;
    }
    std::this_thread::sleep_for(
        std::min<std::chrono::steady_clock::duration>(pause, deadline - now));
    pause = std::min(pause * 2, 50ms);
  }
  return true;
}

void QueueLock::release() {
  if (descriptor < 0) return;
  ::close(descriptor);
  descriptor = -1;
}

}  // namespace persistence
