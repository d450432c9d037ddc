#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace fe_db_tools {

/// A file descriptor, closed on destruction. Does not change `errno`.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number(number) {}
  Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number, other.number);
    return *this;
  }
  ~Descriptor() {
    if (number < 0) return;
    const int error = errno;
    close(number);
    errno = error;
  }

  int get() const { return number; }
  bool isOpen() const { return number >= 0; }

 private:
  int number = -1;
};

}  // namespace fe_db_tools
