// Reads the times of CSV files.
#pragma once

#include <optional>
#include <string_view>

#include "platform/foundation/date.h"

namespace kivo::old_messages {

/// Reads an ISO 8601 date (2026-11-21), which may be followed by T or a blank and a time (10:05,
/// 10:05:30 or 10:05:30.250) and an offset (Z, +02:00, +0200 or +02), or milliseconds since 1970. A
/// time without an offset is in the device's time zone; a date without a time is noon there.
/// Returns nullopt for any other text, and for dates and times that do not exist.
std::optional<platform::Moment> momentFromCsv(std::string_view text);

}  // namespace kivo::old_messages
