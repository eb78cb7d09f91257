// Remembers what the last exchange with the backend came to, for a person who asks why messages
// wait. Holds nothing of a message, a user or an address.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "platform/foundation/date.h"
#include "platform/foundation/errors.h"
#include "platform/foundation/url_session.h"

namespace kivo::linux_platform {

/// What an exchange came to: the status of the answer, or why there was none.
using ExchangeOutcome = std::variant<int, platform::URLError>;

struct LastExchange {
  /// To the second.
  platform::Moment endedAt;
  /// The status of the answer; none when there was no answer.
  std::optional<int> statusCode;
  /// Why there was no answer, as a sentence without its full stop; else empty.
  std::string failure;
};

/// A session that leaves exchanges to another one and writes down what each came to, with the
/// moment of its end, in $XDG_STATE_HOME/kivo/last-exchange (0600), in place of the one before. Not
/// synced, and left out when it cannot be written. Of two at once, in any process, either one's
/// stays.
class RememberingURLSession : public platform::URLSession {
 public:
  /// `exchanging` outlives every task.
  explicit RememberingURLSession(platform::URLSession& exchanging) : exchanging_(exchanging) {}

  platform::Task<platform::URLAnswer> data(platform::URLRequest request) override;

 private:
  platform::URLSession& exchanging_;
};

/// The last one; none when there was none, or when it cannot be read.
std::optional<LastExchange> lastExchange();

}  // namespace kivo::linux_platform
