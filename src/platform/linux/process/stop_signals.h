// The signals by which a person or the system ends a program.
#pragma once

#include <functional>

namespace kivo::linux_platform {

/// SIGTERM, SIGINT and SIGHUP no longer end the process: while this object lives they call `stop`,
/// and after its end they are ignored, so that the program ends as it wants to. Once in a process.
class StopSignals {
 public:
  /// `stop` runs in the signal handler, so it must be async-signal-safe.
  explicit StopSignals(std::function<void()> stop = [] {});
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// Whether one has come.
  [[nodiscard]] static bool came();
};

}  // namespace kivo::linux_platform
