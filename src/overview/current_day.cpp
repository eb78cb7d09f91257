#include "overview/current_day.h"

#include "platform/foundation/date_formatter.h"

namespace kivo::overview {

std::string currentMonth() { return currentDay().substr(0, 7); }

std::string currentDay() {
  const platform::DateFormatter formatter{.dateFormat = "yyyy-MM-dd", .locale = "en_US_POSIX"};
  return formatter.string(platform::Date::now());
}

}  // namespace kivo::overview
