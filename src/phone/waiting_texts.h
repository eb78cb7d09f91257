// Describes how many texts are queued and why.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/date.h"
#include "platform/linux/http/last_exchange.h"
#include "queue/pending_sms_item.h"

namespace kivo::WaitingTexts {

/// Returns why the last exchange failed, as a clause: "the backend answered with HTTP status 503",
/// "The host name was not found". Nullopt for status 200.
std::optional<std::string> failureOf(const linux_platform::LastExchange& last);

/// Returns one line: how many of `items` wait, and why and how long before `now` the exchange
/// `last` failed; "none" when there are none.
std::string sentence(const std::vector<PendingSmsItem>& items,
                     const std::optional<linux_platform::LastExchange>& last, platform::Moment now);

}  // namespace kivo::WaitingTexts
