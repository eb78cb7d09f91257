// Formats the offline queue for the user.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "platform/foundation/date.h"
#include "queue/pending_sms_item.h"

namespace kivo::QueueListing {

/// Formats an age: "just now" below one minute and for the future, then whole minutes, hours and,
/// from two days on, days.
std::string ageText(std::chrono::seconds age);

/// Whether control characters, line breaks included, are escaped.
enum class Controls { asTheyAre, escaped };

/// Formats `items` as lines with their numbers, from 1, their age at `now`, their number of resends
/// and their text, which is escaped and cut to `width` columns. Says that nothing waits when there
/// are none.
std::string text(const std::vector<PendingSmsItem>& items, platform::Moment now, std::size_t width);

/// Formats all of `item`: one line for each value, an empty line, and the whole text.
std::string details(const PendingSmsItem& item, platform::Moment now, Controls controls);

}  // namespace kivo::QueueListing
