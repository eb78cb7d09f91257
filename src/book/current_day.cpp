#include "book/current_day.h"

#include "platform/foundation/date_formatter.h"

namespace kivo::book {

money::Day currentDay() {
  const platform::DateFormatter formatter{.dateFormat = "yyyy-MM-dd", .locale = "en_US_POSIX"};
  return money::Day::fromText(formatter.string(platform::Date::now())).value();
}

money::Month currentMonth() { return currentDay().month(); }

}  // namespace kivo::book
