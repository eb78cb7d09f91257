// The exception for failures that a person has to know about.
#pragma once

#include <stdexcept>

namespace kivo::linux_platform {

/// Something failed, and a person can do something about it. `what` says why, in one sentence
/// without a full stop.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace kivo::linux_platform
