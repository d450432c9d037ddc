#include "standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace fe_db_tools {

void openStandardStreams() {
  // The wrong way round for the first two, so that using them fails. Not for standard error: the
  // program should not fail because a message cannot be printed, and LLVM would make it.
  constexpr int kModes[] = {O_WRONLY, O_RDONLY, O_WRONLY};
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) >= 0 || errno != EBADF) continue;
    // Those below are open, so this is the lowest that is free, and open() gives that one.
    if (open("/dev/null", kModes[descriptor] | O_CLOEXEC) >= 0) continue;
    const int error = errno;
    // A changed root may lack the devices. Neither reading nor writing works on this one.
    if (open("/", O_PATH | O_CLOEXEC) >= 0) continue;
    throw std::runtime_error("/dev/null: cannot be opened in place of closed descriptor " +
                             std::to_string(descriptor) + ": " + std::strerror(error));
  }
}

}  // namespace fe_db_tools
