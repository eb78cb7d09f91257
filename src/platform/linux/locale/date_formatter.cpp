#include "platform/foundation/date_formatter.h"

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <memory>

#include <unicode/calendar.h>
#include <unicode/numsys.h>
#include <unicode/simpletz.h>

#include "platform/foundation/fatal_stop.h"
#include "platform/linux/locale/device_locale.h"

namespace kivo::platform {
namespace {

// The device's UTC offset at `moment`. The C library computes it, since it reads the time zone
// again each time and supports every form of TZ; ICU's own lookup supports zone names only.
icu::SimpleTimeZone deviceTimeZone(Moment moment) {
  const std::time_t time = wholeSecondsSince1970(moment);
  std::tm local = {};
  tzset();
  localtime_r(&time, &local);
  return {static_cast<std::int32_t>(local.tm_gmtoff * 1000), icu::UnicodeString()};
}

// std::isalpha would depend on the locale.
bool isPatternLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

// The calendar field of a pattern's symbol.
UCalendarDateFields fieldOf(char symbol) {
  switch (symbol) {
    case 'y':
      return UCAL_YEAR;
    case 'M':
      return UCAL_MONTH;
    case 'd':
      return UCAL_DATE;
    case 'H':
      return UCAL_HOUR_OF_DAY;
    case 'm':
      return UCAL_MINUTE;
    case 's':
      return UCAL_SECOND;
    default:
      fatalStop("unknown symbol in a date format");
  }
}

// Formats `value` in `digits`, which lists the digits from zero to nine, with leading zeros up to
// `width`.
std::string inDigits(std::int32_t value, std::size_t width, const icu::UnicodeString& digits) {
  std::string decimal = std::to_string(value);
  if (decimal.size() < width) decimal.insert(0, width - decimal.size(), '0');
  std::string text;
  for (const char digit : decimal) {
    icu::UnicodeString(digits.char32At(digits.moveIndex32(0, digit - '0'))).toUTF8String(text);
  }
  return text;
}

}  // namespace

// ICU's own formatter also supports names of days, months, eras and zones; creating it takes longer
// than the rest of a run's own work.
std::string DateFormatter::string(Moment moment) const {
  const icu::Locale inLocale((locale ? *locale : linux_platform::deviceLocale("LC_TIME")).c_str());
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::Calendar> calendar(
      icu::Calendar::createInstance(deviceTimeZone(moment), inLocale, status));
  const std::unique_ptr<icu::NumberingSystem> numbers(
      icu::NumberingSystem::createInstance(inLocale, status));
  if (U_FAILURE(status)) fatalStop("calendar data cannot be read");
  calendar->setTime(secondsSince1970(moment) * 1000, status);

  std::string text;
  for (std::size_t at = 0; at < dateFormat.size();) {
    const char symbol = dateFormat[at];
    if (!isPatternLetter(symbol)) {
      text += symbol;
      ++at;
      continue;
    }
    const std::size_t end = std::min(dateFormat.find_first_not_of(symbol, at), dateFormat.size());
    const UCalendarDateFields field = fieldOf(symbol);
    const std::int32_t counted = calendar->get(field, status) + (field == UCAL_MONTH ? 1 : 0);
    text += inDigits(counted, end - at, numbers->getDescription());
    at = end;
  }
  if (U_FAILURE(status)) fatalStop("the device's calendar cannot represent a date");
  return text;
}

}  // namespace kivo::platform
