// Owns a file descriptor.
#pragma once

#include <utility>

#include <unistd.h>

namespace kivo::linux_platform {

/// Closes the file descriptor when destroyed. A negative number means no descriptor.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] int number() const { return number_; }

 private:
  int number_;
};

}  // namespace kivo::linux_platform
