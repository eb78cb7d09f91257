// Tells whether a backend can be reached, by a request that carries nothing of a person.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/linux/http/last_exchange.h"

namespace kivo {

/// What was found of a backend.
struct BackendFindings {
  /// The base URL as stored.
  std::string base;
  /// What a GET of the extraction endpoint came to.
  linux_platform::ExchangeOutcome outcome;

  [[nodiscard]] bool answers() const { return outcome.index() == 0; }
};

namespace BackendCheck {

/// Sends a GET without a body to the extraction endpoint below `base` and blocks until it is
/// answered or has failed, 5 s at most. The base URL must parse.
BackendFindings find(const std::string& base);

/// What a person should know of `findings`, as sentences: whether the endpoint answers, what is
/// wrong with host, connection or certificate, and whether messages would cross a network in clear
/// text.
std::vector<std::string> sentences(const BackendFindings& findings);

}  // namespace BackendCheck
}  // namespace kivo
