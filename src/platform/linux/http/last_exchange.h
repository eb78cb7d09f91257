// Records the outcome of the last exchange with the backend, to explain why messages wait. Contains
// no message, user or address.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "platform/foundation/date.h"
#include "platform/foundation/errors.h"
#include "platform/foundation/url_session.h"

namespace kivo::linux_platform {

/// The outcome of an exchange: the HTTP status, or the error when there was no response.
using ExchangeOutcome = std::variant<int, platform::URLError>;

/// Returns the status of `answer`; badServerResponse when it is not HTTP.
ExchangeOutcome outcomeOf(const platform::URLAnswer& answer);

struct LastExchange {
  /// Rounded down to the second.
  platform::Moment endedAt;
  /// The HTTP status; nullopt when there was no response.
  std::optional<int> statusCode;
  /// Why there was no response, as a sentence without its full stop; otherwise empty.
  std::string failure;
};

/// A session that delegates exchanges to another one and writes the outcome and time of each to
/// $XDG_STATE_HOME/kivo/last-exchange (0600), replacing the previous one. Written without an fsync;
/// skipped when the file cannot be written. Of two exchanges that end at once, in any process,
/// either may be kept.
class RememberingURLSession : public platform::URLSession {
 public:
  /// `exchanging` must outlive every task.
  explicit RememberingURLSession(platform::URLSession& exchanging) : exchanging_(exchanging) {}

  platform::Task<platform::URLAnswer> data(platform::URLRequest request) override;

 private:
  platform::URLSession& exchanging_;
};

/// Returns the last recorded exchange; nullopt when none was recorded or it cannot be read.
std::optional<LastExchange> lastExchange();

}  // namespace kivo::linux_platform
