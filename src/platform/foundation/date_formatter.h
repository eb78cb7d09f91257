// Calendar dates as text. Parses none.
#pragma once

#include <optional>
#include <string>

#include "platform/foundation/date.h"

namespace kivo::platform {

/// Formats moments in the device's present time zone, which is looked up anew for each text.
struct DateFormatter {
  /// The pattern, in Unicode's date field symbols, for example "yyyy-MM-dd": those for year, month,
  /// day, hour of 24, minute and second, as numbers. Another letter stops the process.
  std::string dateFormat;
  /// An identifier such as "en_US_POSIX", which decides calendar and digits; none for the device's
  /// current locale (LC_ALL, LC_TIME, LANG).
  std::optional<std::string> locale = std::nullopt;

  /// The text of `moment`, UTF-8.
  [[nodiscard]] std::string string(Moment moment) const;
};

}  // namespace kivo::platform
