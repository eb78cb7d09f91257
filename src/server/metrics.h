// Counts answers for the operator's monitoring. Knows no person, text or sum.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace kivo::server {

/// Counters since the start of the process. Not thread-safe.
class Metrics {
 public:
  /// Counts an answer of `status` on `route`, a name of the program's own.
  void countAnswer(const std::string& route, int status);
  /// Counts a request that waits for `pause`.
  void countPause(std::chrono::milliseconds pause);
  /// Counts a step that answered requests together and took `time`.
  void countStep(std::chrono::steady_clock::duration time);

  /// Returns them in Prometheus' text format.
  [[nodiscard]] std::string text() const;

 private:
  std::map<std::pair<std::string, int>, std::int64_t> answers_;
  std::int64_t pauses_ = 0;
  double pausedSeconds_ = 0;
  std::int64_t steps_ = 0;
  double stepSeconds_ = 0;
};

}  // namespace kivo::server
