// Formats calendar dates.
#pragma once

#include <optional>
#include <string>

#include "platform/foundation/date.h"

namespace kivo::platform {

/// Formats in the device's time zone, which is looked up for each text.
struct DateFormatter {
  /// A pattern of Unicode date field symbols, for example "yyyy-MM-dd". Supported are y, M, d, H, m
  /// and s, each written as a number; any other letter stops the process.
  std::string dateFormat;
  /// A locale identifier such as "en_US_POSIX", which decides calendar and digits; nullopt for the
  /// device's locale (LC_ALL, LC_TIME, LANG).
  std::optional<std::string> locale = std::nullopt;

  /// Returns `moment` as UTF-8 text.
  [[nodiscard]] std::string string(Moment moment) const;
};

}  // namespace kivo::platform
