// What time it is. Does not format: that is DateFormatter and ISO8601DateFormatter.
#pragma once

#include <chrono>

namespace kivo::platform {

/// A moment, in UTC, counted from 1970-01-01 00:00.
using Moment = std::chrono::sys_time<std::chrono::microseconds>;

/// The only clock of the system.
class Date {
 public:
  /// The present moment.
  static Moment now();

  /// Makes `now` answer with `clock` in this process, until the next call. Null is the real clock.
  static void setClock(Moment (*clock)());
};

/// Seconds since 1970-01-01 00:00 UTC, with fractions.
double secondsSince1970(Moment moment);

}  // namespace kivo::platform
