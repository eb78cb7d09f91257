// The current time. DateFormatter and ISO8601DateFormatter format it.
#pragma once

#include <chrono>
#include <cstdint>

namespace kivo::platform {

/// A point in time: microseconds since 1970-01-01 00:00 UTC.
using Moment = std::chrono::sys_time<std::chrono::microseconds>;

/// The only clock of the system. Thread-safe.
class Date {
 public:
  /// Returns the current time.
  static Moment now();

  /// Replaces the clock of this process, for tests. Null restores the system clock.
  static void setClock(Moment (*clock)());
};

/// Returns the seconds since 1970-01-01 00:00 UTC, with fractions.
double secondsSince1970(Moment moment);

/// Returns the whole seconds since 1970-01-01 00:00 UTC, rounded down, of any moment: the C++
/// library's own to_time_t goes by nanoseconds, which end in the year 2262.
std::int64_t wholeSecondsSince1970(Moment moment);

}  // namespace kivo::platform
