// Says how many texts wait to be sent, and why. Reads no store.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/date.h"
#include "platform/linux/http/last_exchange.h"
#include "queue/pending_sms_item.h"

namespace kivo::WaitingTexts {

/// Why the last exchange did not get a text off the queue, as a clause: "the backend answered with
/// HTTP status 503", "The host name was not found". None when it was answered with status 200.
std::optional<std::string> failureOf(const linux_platform::LastExchange& last);

/// How many of `items` wait, with the reason for which the last attempt at `last` failed and how
/// long ago at `now` that was; "none" when there are none. One line.
std::string sentence(const std::vector<PendingSmsItem>& items,
                     const std::optional<linux_platform::LastExchange>& last, platform::Moment now);

}  // namespace kivo::WaitingTexts
