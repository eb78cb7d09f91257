// Formats and parses ISO 8601 date-times.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/date.h"

namespace kivo::platform {

class ISO8601DateFormatter {
 public:
  /// Returns `moment` in UTC, rounded down to the second: 2026-01-31T09:05:00Z.
  static std::string string(Moment moment);

  /// Parses YYYY-MM-DDThh:mm:ss followed by Z or an offset such as +02:00. Returns nullopt for
  /// anything else: a date alone, fractions of a second, and dates or times that do not exist.
  static std::optional<Moment> date(std::string_view text);
};

}  // namespace kivo::platform
