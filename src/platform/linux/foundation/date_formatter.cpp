#include "platform/foundation/date_formatter.h"

#include <ctime>

#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>

#include "platform/foundation/fatal_stop.h"
#include "platform/linux/foundation/device_locale.h"

namespace kivo::platform {
namespace {

// The device's zone as it is at that one moment. The C library is asked, since it reads the zone
// anew and understands every form of TZ; of those ICU's own search knows the names only.
icu::SimpleTimeZone deviceTimeZone(Moment moment) {
  const std::time_t time = std::chrono::system_clock::to_time_t(moment);
  std::tm local = {};
  tzset();
  localtime_r(&time, &local);
  return {static_cast<std::int32_t>(local.tm_gmtoff * 1000), icu::UnicodeString()};
}

}  // namespace

std::string DateFormatter::string(Moment moment) const {
  const std::string localeName = locale ? *locale : linux_platform::deviceLocale("LC_TIME");
  UErrorCode status = U_ZERO_ERROR;
  icu::SimpleDateFormat format(icu::UnicodeString::fromUTF8(dateFormat),
                               icu::Locale(localeName.c_str()), status);
  if (U_FAILURE(status)) fatalStop("the data of the calendars cannot be read");
  format.setTimeZone(deviceTimeZone(moment));

  icu::UnicodeString text;
  const double milliseconds = secondsSince1970(moment) * 1000;
  std::string utf8;
  return format.format(milliseconds, text).toUTF8String(utf8);
}

}  // namespace kivo::platform
