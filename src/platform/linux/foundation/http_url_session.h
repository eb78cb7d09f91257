// The HTTP session over sockets and TLS. Knows no endpoint.
#pragma once

#include <functional>
#include <memory>
#include <variant>

#include "platform/foundation/errors.h"
#include "platform/foundation/url_session.h"

namespace kivo::linux_platform {

class ServerTrust;

/// What an exchange came to: the status of the answer, or why there was none.
using ExchangeOutcome = std::variant<int, platform::URLError>;

/// One connection for each exchange, HTTP/1.1. TLS is set up at the first https request. No
/// cookies, no proxy. A task that uses it runs on a TaskExecutor that ends before it.
class HTTPURLSession : public platform::URLSession {
 public:
  /// `onEnd`, if any, is called with each outcome, on the thread of the task that asked, before
  /// that goes on. It must not throw, and bear several calls at a time.
  explicit HTTPURLSession(std::function<void(const ExchangeOutcome&)> onEnd = nullptr);
  ~HTTPURLSession() override;

  platform::Task<platform::URLAnswer> data(platform::URLRequest request) override;

 private:
  platform::Task<platform::URLAnswer> exchanged(platform::URLRequest request);

  std::function<void(const ExchangeOutcome&)> onEnd_;
  std::unique_ptr<ServerTrust> trust_;
};

}  // namespace kivo::linux_platform
