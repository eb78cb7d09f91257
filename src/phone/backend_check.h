// Checks whether a backend can be reached, by a request without any user data.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/linux/http/last_exchange.h"

namespace kivo {

/// The result of a check.
struct BackendFindings {
  /// The base URL as stored.
  std::string base;
  /// The outcome of a GET of the extraction endpoint.
  linux_platform::ExchangeOutcome outcome;
  /// Whether the backend is the ledger on this machine, and starting its socket would help: the
  /// socket is missing or refuses connections.
  bool ledgerIsToStart = false;

  [[nodiscard]] bool answers() const { return outcome.index() == 0; }
};

namespace BackendCheck {

/// Sends a GET without a body to the extraction endpoint below `base`. Blocks for at most 5 s. The
/// base URL must parse.
BackendFindings find(const std::string& base);

/// Describes `findings` in sentences: whether the endpoint answers, what is wrong with host,
/// connection or certificate, how to start the ledger where that would help, and whether messages
/// would cross a network unencrypted.
std::vector<std::string> sentences(const BackendFindings& findings);

}  // namespace BackendCheck
}  // namespace kivo
