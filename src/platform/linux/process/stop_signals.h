// Handles the signals that ask a program to stop.
#pragma once

#include <functional>

namespace kivo::linux_platform {

/// While this object lives, SIGTERM, SIGINT and SIGHUP call `stop` instead of ending the process.
/// After its destruction they are ignored, so that the program exits by itself. At most one per
/// process.
class StopSignals {
 public:
  /// `stop` runs in the signal handler, so it must be async-signal-safe.
  explicit StopSignals(std::function<void()> stop = [] {});
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// Whether one of the signals has arrived.
  [[nodiscard]] static bool came();
};

}  // namespace kivo::linux_platform
