// Internet date-times as text and back. Knows no other date text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/date.h"

namespace kivo::platform {

class ISO8601DateFormatter {
 public:
  /// `moment` to the whole second, in UTC: 2026-01-31T09:05:00Z.
  static std::string string(Moment moment);

  /// The moment that `text` names, or none. YYYY-MM-DDThh:mm:ss and then Z or an offset such as
  /// +02:00; a date alone, fractions of a second and days or times that do not exist do not parse.
  static std::optional<Moment> date(std::string_view text);
};

}  // namespace kivo::platform
