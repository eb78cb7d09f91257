// Formats ignored messages as a list and as JSON.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "book/ignored_message.h"
#include "platform/foundation/json_encoder.h"

namespace kivo::ledger::IgnoredListing {

/// Returns a list of `messages` for a screen of `width` columns: number, day and reason of each,
/// and under them its whole text in as many lines as that needs, with control characters escaped.
std::string list(const std::vector<book::IgnoredMessage>& messages, std::size_t width);

/// Returns `message` as a JSON object of strings: "number", "date", "text", and "reason", which is
/// "declined" or "not_a_transaction".
platform::JSONEncoder json(const book::IgnoredMessage& message);

}  // namespace kivo::ledger::IgnoredListing
