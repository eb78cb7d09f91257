#include "book/current_day.h"

#include <ctime>

#include "platform/foundation/date_formatter.h"

namespace kivo::book {

money::Day currentDay() {
  const platform::DateFormatter formatter{.dateFormat = "yyyy-MM-dd", .locale = "en_US_POSIX"};
  return money::Day::fromText(formatter.string(platform::Date::now())).value();
}

// Without ICU, for 100,000 messages at a time.
std::optional<money::Day> dayOf(platform::Moment moment) {
  const std::time_t time = platform::wholeSecondsSince1970(moment);
  std::tm local = {};
  if (localtime_r(&time, &local) == nullptr) return std::nullopt;
  char text[32];
  if (std::strftime(text, sizeof text, "%Y-%m-%d", &local) == 0) return std::nullopt;
  return money::Day::fromText(text);
}

money::Month currentMonth() { return currentDay().month(); }

}  // namespace kivo::book
