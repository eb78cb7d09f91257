// A clock that a test sets. It moves only when it is set.
#pragma once

#include <chrono>

#include "platform/foundation/date.h"

namespace kivo::testkit {

/// Stops the clock of the process while it lives. There is one at a time.
class SetClock {
 public:
  explicit SetClock(platform::Moment moment);
  ~SetClock();
  SetClock(const SetClock&) = delete;
  SetClock& operator=(const SetClock&) = delete;

  /// Thread-safe, as is the clock.
  void set(platform::Moment moment);
  void advance(std::chrono::microseconds by);
};

/// The moment of a date and time of day in UTC.
constexpr platform::Moment utc(int year, unsigned month, unsigned day, int hour = 0, int minute = 0,
                               int second = 0) {
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                         std::chrono::day(day)};
  return std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
         std::chrono::seconds(second);
}

}  // namespace kivo::testkit
