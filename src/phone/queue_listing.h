// The offline queue as a person reads it. Sends and changes nothing.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "platform/foundation/date.h"
#include "queue/pending_sms_item.h"

namespace kivo::QueueListing {

/// How long ago something was: "just now" below a minute and for the future, then whole minutes,
/// hours and, from two days on, days.
std::string ageText(std::chrono::seconds age);

/// What becomes of control characters, line breaks included.
enum class Controls { asTheyAre, escaped };

/// `items` as lines with their numbers, from 1, their age at `now`, how often each was tried again
/// and their text, whose control characters are escaped and which ends where the line would pass
/// `width` columns. Says kindly that nothing waits when there are none.
std::string text(const std::vector<PendingSmsItem>& items, platform::Moment now, std::size_t width);

/// All of `item`: a line for each value that it has, an empty line, and its whole text.
std::string details(const PendingSmsItem& item, platform::Moment now, Controls controls);

}  // namespace kivo::QueueListing
