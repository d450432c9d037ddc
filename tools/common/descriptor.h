#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace fe_db_tools {

/// What open() gave; closed in the end. Leaves `errno` alone.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() {
    if (number_ < 0) return;
    const int error = errno;
    close(number_);
    errno = error;
  }

  int get() const { return number_; }
  bool isOpen() const { return number_ >= 0; }

 private:
  int number_ = -1;
};

}  // namespace fe_db_tools
