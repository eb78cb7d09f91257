// How long a request waits, so that one hasty person slows nobody else down. Refuses nothing: a
// refused message counts as a failure on the phone, and ten failures drop it.
#pragma once

#include <chrono>
#include <string>
#include <unordered_map>

namespace kivo::server {

/// A limit of requests for each person and one for all. Not thread-safe.
class Pace {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// The longest wait. A phone waits 15 s for its answer.
  static constexpr std::chrono::milliseconds longestWait{8'000};

  /// Returns for how long the request of `person` that came at `now` waits. `person` is empty for
  /// one of nobody, which counts among all.
  std::chrono::milliseconds waitOf(const std::string& person, Time now);

 private:
  // The time at which the last request that came is let through.
  std::unordered_map<std::string, Time> people_;
  Time all_ = {};
};

}  // namespace kivo::server
