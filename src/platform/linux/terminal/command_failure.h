// The exceptions by which a command fails.
#pragma once

#include <string>

#include "platform/linux/foundation/failure.h"

namespace kivo::linux_platform {

/// The exit status of a command that failed.
inline constexpr int exitFailure = 1;

/// The exit status for bad usage.
inline constexpr int exitBadUsage = 64;

/// A command failed. `runCommand` prints `what` and returns `status`. For any other Failure it
/// returns `exitFailure`.
class CommandFailure : public Failure {
 public:
  explicit CommandFailure(const std::string& sentence, int status = exitFailure)
      : Failure(sentence), status_(status) {}

  [[nodiscard]] int status() const { return status_; }

 private:
  int status_;
};

/// A command was called with arguments that it cannot take.
class BadUsage : public CommandFailure {
 public:
  explicit BadUsage(const std::string& sentence) : CommandFailure(sentence, exitBadUsage) {}
};

/// A command failed, and standard error says why already. `runCommand` prints nothing more.
struct ReportedFailure {
  int status = exitFailure;
};

}  // namespace kivo::linux_platform
