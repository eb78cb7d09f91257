// The error reply to a call over the bus, as an exception.
#pragma once

#include <stdexcept>
#include <string>

namespace kivo::linux_platform {

/// The error reply to a call.
class BusRefusal : public std::runtime_error {
 public:
  /// `name` is a valid D-Bus error name, and constant.
  BusRefusal(const char* name, const std::string& words) : runtime_error(words), name_(name) {}
  [[nodiscard]] const char* name() const { return name_; }

 private:
  const char* name_;
};

}  // namespace kivo::linux_platform
