// Remembers what the last exchange with the backend came to, for a person who asks why messages
// wait. Holds nothing of a message, a user or an address.
#pragma once

#include <optional>
#include <string>

#include "platform/foundation/date.h"
#include "platform/linux/foundation/http_url_session.h"

namespace kivo::linux_platform {

struct LastExchange {
  /// To the second.
  platform::Moment endedAt;
  /// The status of the answer; none when there was no answer.
  std::optional<int> statusCode;
  /// Why there was no answer, as a sentence without its full stop; else empty.
  std::string failure;
};

/// Writes `outcome` with the present moment to $XDG_STATE_HOME/kivo/last-exchange (0600), in place
/// of the one before. Not synced. Does nothing when that cannot be written. Any thread or process;
/// of two at once, either one's stays.
void rememberExchange(const ExchangeOutcome& outcome);

/// The last one; none when there was none, or when it cannot be read.
std::optional<LastExchange> lastExchange();

}  // namespace kivo::linux_platform
